// What a parser returned, as one line of text that a table of cases can state in full.
#pragma once

#include <string>
#include <vector>

#include "base/numbers.h"
#include "interchange/parsers.h"

namespace zorvel {

// "North: Abies=3 Picea=12"; what lists and matrices leave empty follows in brackets if it is not.
inline std::string shown(const MockCensus& census) {
    std::string text = census.name + ":";
    for (const MockTaxon& taxon : census.taxa) {
        text += " " + taxon.name.str() + "=" + integerText(taxon.abundance);
    }
    if (census.latitude != 0 || census.longitude != 0) {
        text += " [" + shortestText(census.latitude) + "," + shortestText(census.longitude) + "]";
    }
    if (!census.notes.empty()) text += " [" + census.notes + "]";
    if (census.timeStamp) text += " [dated]";
    return text;
}

inline std::string shown(const std::vector<MockCensus>& censuses) {
    std::string text;
    for (const MockCensus& census : censuses) text += (text.empty() ? "" : "; ") + shown(census);
    return text;
}

inline std::string shown(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names) text += "<" + name + ">";
    return text;
}

// The records, or "none @line:cell", then each console line after a bar.
template <class T>
std::string shown(const Parsed<T>& parsed) {
    std::string text = parsed.value ? shown(*parsed.value) : "none";
    if (!parsed.value || parsed.place != TextPlace{}) {
        text += " @" + std::to_string(parsed.place.line) + ":" + std::to_string(parsed.place.cell);
    }
    for (const std::string& line : parsed.consoleLines) text += " | " + line;
    return text;
}

}  // namespace zorvel
