// One call of the tool as its arguments state it: which command, on which files, with which
// options. Reading the arguments uses neither files nor the console.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

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
    std::string into;  // the project of an import
};

// A call that is answered without running a command: help or version on standard output, or what is
// wrong with the call on standard error.
struct Reply {
    ExitCode code = ExitCode::success;
    std::string text;  // on standard error one line, without its line feed
    std::string hint;  // on standard error the line after it
};

// As --kind names it.
const char* kindName(FileKind kind);

std::variant<Call, Reply> readCall(int argc, const char* const* argv);

}  // namespace zorvel::cli
