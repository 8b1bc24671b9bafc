#include "interchange/separator_guess.h"

#include <cstddef>

#include "interchange/characters.h"

namespace zorvel {
namespace {

// Where a line ends that begins there: at the first line break outside quotes.
std::size_t unquotedLineEnd(std::string_view text, std::size_t at) {
    bool inQuotes = false;
    for (; at < text.size(); ++at) {
        if (text[at] == '"') inQuotes = !inQuotes;
        if (!inQuotes && lineBreakLength(text, at) > 0) break;
    }
    return at;
}

// Also with decimals, grouped digits or quotes: whatever programs write for a count.
bool looksLikeNumber(std::string_view cell) {
    return cell.find_first_not_of("0123456789+-., \"") == std::string_view::npos &&
           cell.find_first_of("0123456789") != std::string_view::npos;
}

// What the lines so far say for a separator.
struct Candidate {
    char separator;
    bool onEveryLine = true;
    bool separatesNumbers = false;

    void addLine(std::string_view line) {
        std::size_t start = std::string_view::npos;  // of the cell after a separator
        bool inQuotes = false;
        for (std::size_t at = 0; at <= line.size(); ++at) {
            const bool ends = at == line.size() || (!inQuotes && line[at] == separator);
            if (ends && start != std::string_view::npos) {
                separatesNumbers |= looksLikeNumber(line.substr(start, at - start));
            }
            if (ends && at < line.size()) start = at + 1;
            if (!ends && line[at] == '"') inQuotes = !inQuotes;
        }
        onEveryLine = onEveryLine && start != std::string_view::npos;
    }
    [[nodiscard]] bool separates() const { return onEveryLine && separatesNumbers; }
};

}  // namespace

std::string_view foreignSeparator(std::string_view text) {
    Candidate semicolon{';'};
    Candidate tab{'\t'};
    Candidate comma{','};
    std::size_t at = skipLineBreaks(text, 0);
    while (at < text.size() && (semicolon.onEveryLine || tab.onEveryLine)) {
        const std::size_t end = unquotedLineEnd(text, at);
        for (Candidate* each : {&semicolon, &tab, &comma}) each->addLine(text.substr(at, end - at));
        at = skipLineBreaks(text, end);
    }
    if (comma.separates()) return {};
    if (semicolon.separates()) return "semicolons";
    return tab.separates() ? "tabs" : std::string_view();
}

}  // namespace zorvel
