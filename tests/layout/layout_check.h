// Reads the sources below src/ of a tree and finds what the layout does not allow.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

namespace zorvel::layout {

struct Finding {
    std::string path;  // relative to the tree
    int line = 0;
    std::string message;  // what is wrong and what to do instead

    friend std::ostream& operator<<(std::ostream& out, const Finding& finding) {
        return out << finding.path << ':' << finding.line << ": " << finding.message;
    }
};

// Includes that the folder's row does not allow, or that its CMakeLists.txt does not link.
std::vector<Finding> checkIncludes(const std::filesystem::path& tree);

// Links in src/*/CMakeLists.txt that the folder's row does not allow.
std::vector<Finding> checkLinks(const std::filesystem::path& tree);

// Headers that do not open with a comment and #pragma once.
std::vector<Finding> checkHeaders(const std::filesystem::path& tree);

// Words, in sources and forms, that belong to other files.
std::vector<Finding> checkWords(const std::filesystem::path& tree);

}  // namespace zorvel::layout
