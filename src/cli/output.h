// Where a result goes: standard output, written as it comes, or a file, written whole or not at
// all. Called from the main thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/files.h"

namespace zorvel::cli {

class Output {
  public:
    // Absent or "-": standard output. A project, or a file named like one, is not replaced:
    // failed() then is true from the start.
    explicit Output(std::optional<std::string> path);

    void write(std::string_view text);
    // The whole result, written as it is produced: what is large is never held in memory.
    void write(const ByteProducer& produce);
    void write(char byte) { write(std::string_view(&byte, 1)); }

    // The result cannot be written: all that follows is dropped.
    [[nodiscard]] bool failed() const { return problem_.has_value(); }

    // Call once, last. The problem names the file; its system error is EPIPE if the reader has
    // closed the pipe.
    [[nodiscard]] std::optional<Problem> finish();

  private:
    void send(const ByteProducer& produce);
    void sendPending();

    std::string path_;
    bool streams_;  // to standard output; otherwise texts are kept until the end
    bool produced_ = false;
    std::string pending_;
    std::optional<Problem> problem_;
};

}  // namespace zorvel::cli
