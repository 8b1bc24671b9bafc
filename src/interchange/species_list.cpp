#include <algorithm>

#include "interchange/characters.h"
#include "interchange/parsers.h"

namespace zorvel {
namespace {

// Bytes of the separator that begins at text[at]; 0 if none does. The space is none: it is part of
// a name.
std::size_t nameSeparatorLength(std::string_view text, std::size_t at) {
    if (text[at] == ',' || text[at] == '\t') return 1;
    return lineBreakLength(text, at);
}

}  // namespace

Parsed<std::vector<std::string>> parseSpeciesList(std::optional<std::string_view> text) {
    Parsed<std::vector<std::string>> result;
    result.value.emplace();
    if (!text) {
        result.consoleLines.emplace_back("WARNING: no names found");
        return result;
    }
    std::size_t start = 0;  // of the name under way
    for (std::size_t at = 0; at <= text->size();) {
        const bool ends = at == text->size();
        const std::size_t separator = ends ? 0 : nameSeparatorLength(*text, at);
        if ((ends || separator != 0) && at > start) {
            result.value->emplace_back(text->substr(start, at - start));
        }
        at += std::max<std::size_t>(separator, 1);
        if (separator != 0) start = at;
    }
    return result;
}

}  // namespace zorvel
