// What leaves the tool: the result, as text or JSON, to standard output or a file, and the messages
// on standard error. Main thread.
#pragma once

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "base/files.h"
#include "interchange/parsers.h"

namespace zorvel::cli {

// Standard output, which is written piece by piece, or a file, which is replaced at the end or
// stays as it was.
class Output {
  public:
    // Absent or "-": standard output. A project, or a file named like one, is not replaced:
    // failed() then is true from the start.
    explicit Output(std::optional<std::string> path);

    void write(std::string_view text);
    // The whole result, written piece by piece, so that a large one is never held in memory.
    void write(const ByteProducer& produce);
    void write(char byte) { write(std::string_view(&byte, 1)); }

    // The result cannot be written; further calls of write() do nothing.
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

// Writes JSON (RFC 8259) as a stream, without a tree in memory: each element of the outermost array
// or object is on a line of its own. UTF-8 stays as it is; numbers are the shortest that read back
// the same, null if not finite. The caller must alternate keys and values and end what it begins.
class JsonWriter {
  public:
    explicit JsonWriter(Output& output) : output_(output) {}

    // '[' or '{', ']' or '}'.
    void begin(char bracket);
    void end(char bracket);

    void key(std::string_view name);
    void value(std::string_view text);
    void value(double number);
    void value(std::int64_t number);
    void value(std::same_as<bool> auto flag) { scalar(flag ? "true" : "false"); }
    void value(std::monostate /*null*/) { scalar("null"); }
    template <class T>
    void value(const std::optional<T>& optional) {
        optional ? value(*optional) : value(std::monostate());
    }

    template <class T>
    void field(std::string_view name, const T& content) {
        key(name);
        value(content);
    }

  private:
    void separate();
    void scalar(std::string_view text);
    void quote(std::string_view text);

    Output& output_;
    int depth_ = 0;
    bool first_ = true;      // the innermost array or object is empty
    bool afterKey_ = false;  // a value follows on the same line
};

// One line on standard error, by one system call if the system allows. Escaped by terminalLine():
// names and cells may contain anything.
void tell(std::string_view message);

// "FILE:LINE:CELL: MESSAGE", without the numbers that are not known.
void tellAt(std::string_view file, TextPlace place, std::string_view message);

// The name of a file in messages: "<stdin>" for "-".
std::string shownFile(const std::string& file);

// Console lines of the engine go to standard error from now on, each after the prefix.
void tellConsoleLines(std::string prefix);

}  // namespace zorvel::cli
