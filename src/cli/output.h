// Where a result goes: standard output, written as it comes, or a file, written at the end whole or
// not at all. Called from the main thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/result.h"

namespace zorvel::cli {

class Output {
  public:
    // Absent or "-": standard output. A project, or what is named like one, is no place for a
    // result: failed() then is true from the start.
    explicit Output(std::optional<std::string> path);

    void write(std::string_view text);
    void write(char byte) { write(std::string_view(&byte, 1)); }

    // True once it is known that the result cannot be written: what follows is dropped.
    [[nodiscard]] bool failed() const { return problem_.has_value(); }

    // Must be called once, last. The problem names the file; its system error is EPIPE where a
    // reader went away.
    [[nodiscard]] std::optional<Problem> finish();

  private:
    void send(std::string_view bytes);

    std::string path_;
    bool streams_;  // to standard output; otherwise all is kept until the end
    std::string pending_;
    std::optional<Problem> problem_;
};

}  // namespace zorvel::cli
