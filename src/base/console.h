// The console: one line of text at a time, to a sink that the program chooses at its start.
// Standard output unless another sink is set, there as terminalLine() makes it. May be called from
// any thread; lines never mix.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zorvel {

// Receives a line without its line feed. Called under the console's lock: it must not write to the
// console itself.
using ConsoleSink = std::function<void(std::string_view line)>;

// An empty sink restores standard output.
void setConsoleSink(ConsoleSink sink);

void writeConsoleLine(std::string_view line);

// While it lives, the lines that this thread writes are kept here and do not go to the sink, so
// that the lines of work on several threads can be written in order.
class HeldConsoleLines {
  public:
    HeldConsoleLines();
    ~HeldConsoleLines();
    HeldConsoleLines(const HeldConsoleLines&) = delete;
    HeldConsoleLines& operator=(const HeldConsoleLines&) = delete;

    std::vector<std::string> take() { return std::exchange(lines_, {}); }

  private:
    friend void writeConsoleLines(const std::vector<std::string>& lines);
    std::vector<std::string> lines_;
    HeldConsoleLines* outer_;
};

// The lines stay together, whatever other threads write.
void writeConsoleLines(const std::vector<std::string>& lines);

}  // namespace zorvel
