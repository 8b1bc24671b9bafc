// The console: one line of text at a time, to a sink that the program chooses at its start.
// Standard output unless another sink is set, there as terminalLine() makes it. May be called from
// any thread; lines never mix.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace zorvel {

// Receives a line without its line feed. Called under the console's lock: it must not write to the
// console itself.
using ConsoleSink = std::function<void(std::string_view line)>;

// An empty sink restores standard output.
void setConsoleSink(ConsoleSink sink);

void writeConsoleLine(std::string_view line);

// The lines stand together, whatever other threads write meanwhile.
void writeConsoleLines(const std::vector<std::string>& lines);

}  // namespace zorvel
