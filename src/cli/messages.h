// The messages of the tool on standard error, one line at a time, each by one system call if the
// system allows. Main thread.
#pragma once

#include <string>
#include <string_view>

#include "interchange/import_records.h"

namespace zorvel::cli {

// Escaped by terminalLine(): names and cells may contain anything.
void tell(std::string_view message);

// "FILE:LINE:CELL: MESSAGE", without the numbers that are not known.
void tellAt(std::string_view file, TextPlace place, std::string_view message);

// The name of a file in messages: "<stdin>" for "-".
std::string shownFile(const std::string& file);

// Console lines of the engine go to standard error from now on, each after the prefix.
void tellConsoleLines(std::string prefix);

}  // namespace zorvel::cli
