// The contents of exported files. Any thread: for the jobs that prepare an export.
#pragma once

#include <QString>
#include <atomic>
#include <cstddef>
#include <functional>
#include <optional>

#include "metrics/random_source.h"
#include "ui/kit/file_writing.h"

namespace zorvel {

class ObjectContext;

struct ExportedFile {
    std::function<void(const ByteSink&)> produce;  // owns all that it reads
    std::size_t censuses = 0;
    QString note;  // what the file does not hold as the project does; mostly empty
};

// Censuses by taxa, see writeCensusMatrix().
ExportedFile exportedMatrix(const ObjectContext& project);

// The metrics of every census, see buildMetricsTable(). Absent once it is cancelled.
std::optional<ExportedFile> exportedMetrics(const ObjectContext& project,
                                            const RandomSourceMaker& makeRandom,
                                            const std::atomic<bool>& cancelled);

}  // namespace zorvel
