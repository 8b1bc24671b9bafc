// What the tool says on standard error: one line at a time, each written by one system call where
// the system allows. Called from the main thread.
#pragma once

#include <string>
#include <string_view>

#include "interchange/import_records.h"

namespace zorvel::cli {

// As terminalLine() makes it: names and cells may hold anything.
void tell(std::string_view message);

// "FILE:LINE:CELL: MESSAGE", without the numbers that are not known.
void tellAt(std::string_view file, TextPlace place, std::string_view message);

// How a file is called in messages: "<stdin>" for "-".
std::string shownFile(const std::string& file);

// Console lines of the engine go to standard error from now on, each after the prefix.
void tellConsoleLines(std::string prefix);

}  // namespace zorvel::cli
