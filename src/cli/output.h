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
    // Absent or "-": standard output. A project, or what is named like one, is no place for a
    // result: failed() then is true from the start.
    explicit Output(std::optional<std::string> path);

    void write(std::string_view text);
    // The whole result, written as it is produced: what is large is never held in memory.
    void write(const ByteProducer& produce);
    void write(char byte) { write(std::string_view(&byte, 1)); }

    // True once it is known that the result cannot be written: what follows is dropped.
    [[nodiscard]] bool failed() const { return problem_.has_value(); }

    // Must be called once, last. The problem names the file; its system error is EPIPE where a
    // reader went away.
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
