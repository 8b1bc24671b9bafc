// What the user corrected of a table is kept for the next table of the same header, of a limited
// number of headers. The store is of the main thread.
#pragma once

#include <QString>
#include <functional>
#include <optional>
#include <string>

#include "tables/corrections.h"

namespace zorvel {

// One change of the corrections.
using TableCorrection = std::function<void(TableCorrections& corrections)>;

// As text and back; what cannot be read is left as the guess has it. Rows left out and the last row
// are of one file and are not written.
QString correctionsText(const TableCorrections& corrections);
TableCorrections readCorrections(const QString& text);

// header: of the table as it was guessed, see TablePreview.
std::optional<TableCorrections> keptCorrections(const std::string& header);
void keepCorrections(const std::string& header, const TableCorrections& corrections);

}  // namespace zorvel
