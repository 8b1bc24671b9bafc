// One call of the tool as its arguments state it: which command, on which files, with which
// options. Reading the arguments uses neither files nor the console.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/result.h"
#include "cli/diversity.h"
#include "cli/output.h"
#include "cli/project.h"
#include "cli/tables.h"
#include "interchange/file_kind.h"

namespace zorvel::cli {

struct Command;

enum class ExitCode { success = 0, failure = 1, wrongCall = 2 };

struct Call {
    const Command* command = nullptr;
    std::vector<std::string> files;  // one, for import at least one; "-": standard input
    std::optional<FileKind> kind;
    std::int64_t size = 50;  // specimens or censuses to rarefy to, at least 1
    double quota = 0.8;      // of SQS; finite
    std::optional<std::uint64_t> seed;
    bool json = false;
    std::optional<std::string> output;  // absent: standard output
    std::optional<std::string> census;
    bool samples = false;
    std::string into;      // the project of an import
    bool isTable = false;  // the files are tables of any layout
    TableOptions table;
    DiversityOptions diversity;
};

// The answer to a call that runs no command: help or version on standard output, or an error
// message on standard error.
struct Reply {
    ExitCode code = ExitCode::success;
    std::string text;  // on standard error one line, without its line feed
    std::string hint;  // on standard error the line after it
};

// As --kind names it.
const char* kindName(FileKind kind);

std::variant<Call, Reply> readCall(int argc, const char* const* argv);

// Each is defined in a source file named after it, those of metrics in metric_commands.cpp and
// those of records in record_commands.cpp; the table of them all is in call.cpp.
struct Command {
    const char* name;
    const char* description;
    const char* example;  // arguments of a typical call, after the program's name
    bool takesCensus = false;
    bool takesSamples = false;
    bool takesDiversity = false;
    bool refusesJson = false;
    // Writes the result; nothing is written if there is a problem.
    std::optional<Problem> (*run)(const Call& call, Project& project, Output& output) = nullptr;
    // Instead of run: stores the censuses of all files in the project of --into. False if nothing
    // was stored; then the problem is on standard error.
    bool (*import)(const Call& call) = nullptr;
};

extern const Command metricsCommand;
extern const Command summaryCommand;
extern const Command rarefactionCommand;
extern const Command diversityCommand;
extern const Command projectCommand;
extern const Command matrixCommand;
extern const Command longTableCommand;
extern const Command recordsCommand;
extern const Command importCommand;

}  // namespace zorvel::cli
