// Who may use what: the folders of src/, the folders and libraries that each may include and link,
// and the headers that nobody may include. docs/ARCHITECTURE.md tells the reasons.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zorvel::layout {

struct FolderRule {
    std::string folder;  // as in "ui/kit"
    // Besides its own. In order from the bottom up.
    std::vector<std::string> folders;
    std::vector<std::string> libraries;
};

struct LibraryRule {
    std::string name;
    std::vector<std::string> headers;  // a name, or a beginning that ends with *
    std::vector<std::string> targets;  // what CMake calls it
    std::string instead;               // what a folder that may not use it does
};

// A header that is refused in every folder.
struct BannedHeader {
    std::string beginning;
    std::string instead;
};

// A word of the code that only these files may use.
struct KeptWord {
    std::string word;
    std::vector<std::string> files;  // below src/
    std::string instead;
};

const std::vector<FolderRule>& folderRules();
const std::vector<LibraryRule>& libraryRules();
const std::vector<BannedHeader>& bannedHeaders();
const std::vector<KeptWord>& keptWords();

// Null where there is none.
const FolderRule* ruleOfFolder(std::string_view folder);
const LibraryRule* libraryOfHeader(std::string_view header);
const LibraryRule* libraryOfTarget(std::string_view target);

bool mayUse(const FolderRule& rule, const LibraryRule& library);

// The target of a folder: zorvel_ui_kit for ui/kit.
std::string targetOfFolder(std::string_view folder);

}  // namespace zorvel::layout
