#include "layout_check.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <optional>
#include <set>
#include <string_view>

#include "cmake_commands.h"
#include "layout_rules.h"

namespace zorvel::layout {

namespace {

namespace fs = std::filesystem;

struct Include {
    std::string header;
    bool angled = false;
    int line = 0;
};

std::string textOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string_view trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(" \t\r");
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(" \t\r") - begin + 1);
}

bool takeWord(std::string_view& text, std::string_view word) {
    if (!text.starts_with(word)) return false;
    text = trimmed(text.substr(word.size()));
    return true;
}

std::optional<Include> includeOf(std::string_view line, int number) {
    line = trimmed(line);
    if (!takeWord(line, "#") || !takeWord(line, "include") || line.empty()) return std::nullopt;
    const bool angled = line.front() == '<';
    const std::size_t end = line.find(angled ? '>' : '"', 1);
    if (end == std::string_view::npos) return std::nullopt;
    return Include{std::string(line.substr(1, end - 1)), angled, number};
}

std::vector<Include> includesOf(const fs::path& path) {
    std::vector<Include> includes;
    std::ifstream file(path);
    std::string line;
    for (int number = 1; std::getline(file, line); ++number) {
        if (const auto include = includeOf(line, number)) includes.push_back(*include);
    }
    return includes;
}

bool contains(const std::vector<std::string>& list, const std::string& value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

bool isHeader(const fs::path& path) {
    return path.extension() == ".h";
}
bool isSource(const fs::path& path) {
    return isHeader(path) || path.extension() == ".cpp";
}

// Sorted, so that findings come in the same order everywhere.
std::vector<fs::path> filesOf(const fs::path& tree) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(tree / "src")) {
        if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    return files;
}

// "ui/kit" for src/ui/kit/style.cpp.
std::string folderOf(const fs::path& tree, const fs::path& path) {
    return path.parent_path().lexically_relative(tree / "src").generic_string();
}

std::string joined(const std::vector<std::string>& list) {
    std::string text;
    for (const std::string& item : list) text += (text.empty() ? "" : ", ") + item;
    return text.empty() ? "nothing" : text;
}

const std::set<std::string> linkCommands = {"zorvel_library", "target_link_libraries"};

// The message about an include, or nothing where it is allowed.
class IncludeCheck {
  public:
    explicit IncludeCheck(const FolderRule& rule) : rule_(rule) {}

    [[nodiscard]] std::string operator()(const Include& include) const {
        for (const BannedHeader& banned : bannedHeaders()) {
            if (include.header.starts_with(banned.beginning)) {
                return "<" + include.header + "> is not used here: " + banned.instead;
            }
        }
        return include.angled ? aboutLibrary(include.header) : aboutFolder(include.header);
    }

  private:
    [[nodiscard]] std::string aboutLibrary(const std::string& header) const {
        const LibraryRule* library = libraryOfHeader(header);
        if (library == nullptr || mayUse(rule_, *library)) return {};
        return rule_.folder + " may not include <" + header + ">: " + library->instead;
    }

    [[nodiscard]] std::string aboutFolder(const std::string& header) const {
        if (header.find("..") != std::string::npos) {
            return "\"" + header + "\": write the path from src/, as in \"base/text.h\"";
        }
        const std::string folder = fs::path(header).parent_path().generic_string();
        if (folder.empty()) return isGenerated(header) ? "" : ownPath(header);
        if (folder == rule_.folder || contains(rule_.folders, folder)) return {};
        return rule_.folder + " may not include \"" + header + "\": it may use " +
               joined(rule_.folders) + "; pass plain values down, or an interface up";
    }

    static bool isGenerated(const std::string& header) {
        return header.starts_with("ui_") || header.ends_with(".moc");
    }

    [[nodiscard]] std::string ownPath(const std::string& header) const {
        return "\"" + header + "\": write the path from src/, \"" + rule_.folder + "/" + header +
               "\"";
    }

    const FolderRule& rule_;
};

std::string aboutLink(const FolderRule& rule, const std::string& target) {
    for (const FolderRule& other : folderRules()) {
        if (target != targetOfFolder(other.folder) || other.folder == rule.folder) continue;
        if (contains(rule.folders, other.folder)) return {};
        return rule.folder + " may not link " + target + ": it may use " + joined(rule.folders);
    }
    const LibraryRule* library = libraryOfTarget(target);
    if (library != nullptr && !mayUse(rule, *library)) {
        return rule.folder + " may not link " + target + ": " + library->instead;
    }
    if (target.starts_with("Qt6::") && library == nullptr) {
        return target + " is not used here: QtCore, QtGui and QtWidgets are enough";
    }
    return {};
}

}  // namespace

std::vector<Finding> checkIncludes(const fs::path& tree) {
    std::vector<Finding> findings;
    for (const fs::path& path : filesOf(tree)) {
        if (!isSource(path)) continue;
        const std::string name = path.lexically_relative(tree).generic_string();
        const FolderRule* rule = ruleOfFolder(folderOf(tree, path));
        if (rule == nullptr) {
            findings.push_back(
                {name, 1, "this folder has no row in tests/layout/layout_rules.cpp"});
            continue;
        }
        const IncludeCheck check(*rule);
        for (const Include& include : includesOf(path)) {
            std::string message = check(include);
            if (!message.empty()) findings.push_back({name, include.line, std::move(message)});
        }
    }
    return findings;
}

std::vector<Finding> checkLinks(const fs::path& tree) {
    std::vector<Finding> findings;
    for (const fs::path& path : filesOf(tree)) {
        const FolderRule* rule = ruleOfFolder(folderOf(tree, path));
        if (path.filename() != "CMakeLists.txt" || rule == nullptr) continue;
        for (const CMakeCommand& command : cmakeCommands(textOf(path))) {
            if (!linkCommands.contains(command.name)) continue;
            for (const std::string& word : command.words) {
                std::string message = aboutLink(*rule, word);
                if (message.empty()) continue;
                findings.push_back({path.lexically_relative(tree).generic_string(), command.line,
                                    std::move(message)});
            }
        }
    }
    return findings;
}

std::vector<Finding> checkHeaders(const fs::path& tree) {
    std::vector<Finding> findings;
    for (const fs::path& path : filesOf(tree)) {
        if (!isHeader(path)) continue;
        const std::string text = textOf(path);
        const std::string name = path.lexically_relative(tree).generic_string();
        if (!text.starts_with("//")) {
            findings.push_back({name, 1, "a header opens with what it is for"});
        }
        if (text.find("#pragma once\n") == std::string::npos) {
            findings.push_back({name, 1, "#pragma once is missing"});
        }
    }
    return findings;
}

std::vector<Finding> checkWords(const fs::path& tree) {
    std::vector<Finding> findings;
    for (const fs::path& path : filesOf(tree)) {
        if (!isSource(path) && path.extension() != ".ui") continue;
        const std::string name = path.lexically_relative(tree / "src").generic_string();
        std::ifstream file(path);
        std::string line;
        for (int number = 1; std::getline(file, line); ++number) {
            const std::string_view code =
                std::string_view(line).substr(0, isSource(path) ? line.find("//") : line.npos);
            for (const KeptWord& kept : keptWords()) {
                if (code.find(kept.word) == code.npos || contains(kept.files, name)) continue;
                findings.push_back({"src/" + name, number, kept.word + ": " + kept.instead});
            }
        }
    }
    return findings;
}

}  // namespace zorvel::layout
