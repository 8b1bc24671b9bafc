#include "cmake_commands.h"

#include <algorithm>

namespace zorvel::layout {

namespace {

std::string withoutComments(std::string_view text) {
    std::string result;
    bool quoted = false;
    bool comment = false;
    for (const char c : text) {
        if (c == '"' && !comment) quoted = !quoted;
        if (c == '#' && !quoted) comment = true;
        if (c == '\n') comment = false;
        if (!comment) result += c;
    }
    return result;
}

std::vector<std::string> words(std::string_view text) {
    constexpr std::string_view separators = " \t\r\n\";()";
    std::vector<std::string> result;
    std::size_t begin = text.find_first_not_of(separators);
    while (begin != std::string_view::npos) {
        const std::size_t end = std::min(text.find_first_of(separators, begin), text.size());
        result.emplace_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(separators, end);
    }
    return result;
}

// Past the parenthesis that closes the one at open.
std::size_t closing(std::string_view text, std::size_t open) {
    int depth = 0;
    for (std::size_t i = open; i < text.size(); ++i) {
        if (text[i] == '(') ++depth;
        if (text[i] == ')' && --depth == 0) return i;
    }
    return text.size();
}

}  // namespace

std::vector<CMakeCommand> cmakeCommands(std::string_view text) {
    const std::string plain = withoutComments(text);
    const std::string_view rest = plain;
    std::vector<CMakeCommand> commands;
    std::size_t begin = 0;
    for (std::size_t open = rest.find('('); open != std::string_view::npos;
         open = rest.find('(', begin)) {
        const std::size_t close = closing(rest, open);
        const std::vector<std::string> name = words(rest.substr(begin, open - begin));
        const auto line =
            1 + std::count(rest.begin(), rest.begin() + static_cast<long>(open), '\n');
        commands.push_back({name.empty() ? std::string() : name.back(),
                            words(rest.substr(open, close - open)), static_cast<int>(line)});
        begin = std::min(close + 1, rest.size());
    }
    return commands;
}

}  // namespace zorvel::layout
