// Where a result goes: standard output, written as it comes, or a file, written at the end whole or
// not at all. Called from the main thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/result.h"

namespace zorvel::cli {

// All bytes to an open file; 0, or the system's error number.
int writeAll(int descriptor, std::string_view bytes);

class Output {
  public:
    // Absent or "-": standard output.
    explicit Output(std::optional<std::string> path);

    void write(std::string_view text);
    void write(char byte) { write(std::string_view(&byte, 1)); }

    // True once standard output has refused a byte: what follows is dropped.
    [[nodiscard]] bool failed() const { return error_ != 0; }

    // Must be called once, last. A problem with system error EPIPE is a reader that went away.
    [[nodiscard]] std::optional<Problem> finish();

  private:
    void flush();

    std::optional<std::string> path_;
    std::string pending_;
    int error_ = 0;
};

}  // namespace zorvel::cli
