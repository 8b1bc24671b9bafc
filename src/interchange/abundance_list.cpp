#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

#include "interchange/characters.h"
#include "interchange/parsers.h"

namespace zorvel {
namespace {

constexpr const char* notNumericMessage =
    "File contains non-numeric characters (possibly a decimal point), but should contain only a "
    "list of integers. See help for formatting an input file.";
constexpr const char* listNotPositiveMessage =
    "File contains zero or negative abundance value, but all abundances must be positive integers. "
    "See help for formatting an input file.";
constexpr const char* noValueMessage = "No taxon abundances were added";

// Bytes of the separator that begins at text[at]; 0 if none does.
std::size_t countSeparatorLength(std::string_view text, std::size_t at) {
    if (at < text.size() && (text[at] == ' ' || text[at] == ',' || text[at] == '\t')) return 1;
    return lineBreakLength(text, at);
}

std::size_t skipSeparators(std::string_view text, std::size_t at) {
    while (const std::size_t length = countSeparatorLength(text, at)) at += length;
    return at;
}

// The line of text[at] and which of the line's entries, divided by separators, it belongs to.
TextPlace entryPlace(std::string_view text, std::size_t at) {
    TextPlace place{lineNumber(text, at), 1};
    bool inEntry = false;
    for (std::size_t i = 0; i < at;) {
        const std::size_t separator = countSeparatorLength(text, i);
        if (separator != 0 && inEntry) ++place.cell;
        if (lineBreakLength(text, i) != 0) place.cell = 1;
        inEntry = separator == 0;
        i += std::max<std::size_t>(separator, 1);
    }
    return place;
}

// An integer read from the front of a text. length 0: there is none, or its value is past the
// largest of 64 bits. A value below the smallest reads as the smallest.
struct LeadingInteger {
    std::int64_t value = 0;
    std::size_t length = 0;
};

LeadingInteger readLeadingInteger(std::string_view text) {
    // from_chars takes a minus but no plus.
    const bool plus = text.starts_with('+');
    if (text.starts_with("+-")) return {};
    const char* first = text.data() + (plus ? 1 : 0);
    LeadingInteger read;
    const auto [stop, error] = std::from_chars(first, text.data() + text.size(), read.value);
    if (error == std::errc::result_out_of_range && text.front() == '-')
        read.value = INT64_MIN;
    else if (error != std::errc{})
        return {};
    read.length = static_cast<std::size_t>(stop - text.data());
    return read;
}

}  // namespace

Parsed<MockCensus> parseAbundanceList(std::string_view text, const std::stop_token& stop,
                                      NamePool* names) {
    NamePool own;
    const SharedText taxonName = (names ? *names : own).intern("unnamed taxon");
    MockCensus census;
    census.name = importedCensusName;
    for (std::size_t at = skipSeparators(text, 0); at < text.size();) {
        if (stop.stop_requested()) return {};
        const LeadingInteger read = readLeadingInteger(text.substr(at));
        if (read.length == 0) return refused<MockCensus>(notNumericMessage, entryPlace(text, at));
        if (read.value < 1)
            return refused<MockCensus>(listNotPositiveMessage, entryPlace(text, at));
        census.taxa.push_back({read.value, taxonName});
        at = skipSeparators(text, at + read.length);
    }
    if (census.taxa.empty()) return refused<MockCensus>(noValueMessage);
    Parsed<MockCensus> result;
    result.value = std::move(census);
    return result;
}

}  // namespace zorvel
