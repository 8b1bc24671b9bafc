// The commands of a CMakeLists.txt as words: enough of the language for the lists of this project.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zorvel::layout {

struct CMakeCommand {
    std::string name;
    std::vector<std::string> words;  // its arguments, unquoted
    int line = 0;                    // 1-based, where the command begins
};

std::vector<CMakeCommand> cmakeCommands(std::string_view text);

}  // namespace zorvel::layout
