// The commands of the tool. Each is defined in a source file named after it, those of metrics in
// metric_commands.cpp; the table of them all is in call.cpp.
#pragma once

#include <optional>

#include "base/result.h"
#include "cli/call.h"
#include "cli/output.h"
#include "cli/project.h"

namespace zorvel::cli {

struct Command {
    const char* name;
    const char* description;
    const char* example;  // arguments of a typical call, after the program's name
    bool takesCensus = false;
    bool takesSamples = false;
    bool refusesJson = false;
    // Writes the result. On a problem nothing of it has been written yet.
    std::optional<Problem> (*run)(const Call& call, Project& project, Output& output) = nullptr;
    // In place of run: stores what all the files hold in the project --into names. False after a
    // problem, which standard error tells; nothing has been stored then.
    bool (*import)(const Call& call) = nullptr;
};

extern const Command metricsCommand;
extern const Command summaryCommand;
extern const Command rarefactionCommand;
extern const Command projectCommand;
extern const Command matrixCommand;
extern const Command recordsCommand;
extern const Command importCommand;

}  // namespace zorvel::cli
