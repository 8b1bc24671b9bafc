#include "model/import.h"

#include <algorithm>
#include <utility>

#include "interchange/parsers.h"
#include "interchange/separator_guess.h"
#include "model/edits.h"

namespace zorvel {
namespace {

Parsed<std::vector<MockCensus>> asList(Parsed<MockCensus> parsed) {
    Parsed<std::vector<MockCensus>> list;
    list.consoleLines = std::move(parsed.consoleLines);
    list.place = parsed.place;
    list.advice = std::move(parsed.advice);
    list.leftOut = parsed.leftOut;
    if (parsed.value) list.value.emplace().push_back(std::move(*parsed.value));
    return list;
}

// A console line without the word or the letter that marks it.
std::string_view withoutMark(std::string_view line) {
    for (const std::string_view mark : {"WARNING: ", "ERROR: "}) {
        if (line.substr(0, mark.size()) == mark) return line.substr(mark.size());
    }
    const bool lettered =
        line.size() > 3 && line[0] >= 'A' && line[0] <= 'Z' && line[1] == ':' && line[2] == ' ';
    return lettered ? line.substr(3) : line;
}

Parsed<std::vector<MockCensus>> parseAs(FileKind kind, std::string_view text,
                                        const std::stop_token& stop, NamePool* names) {
    switch (kind) {
        case FileKind::list:
            return asList(parseAbundanceList(text, stop, names));
        case FileKind::census:
            return asList(parseCensus(text, stop, names));
        case FileKind::matrix:
            return parseCensusMatrix(text, stop, names);
        case FileKind::ios:
            return parseIOSFile(text, stop, names);
    }
    return {};
}

// Whether an abundance was found, be it 0.
bool holdsAbundance(const Parsed<std::vector<MockCensus>>& parsed) {
    return parsed.value && (parsed.leftOut.zeroCells + parsed.leftOut.negativeCells > 0 ||
                            std::any_of(parsed.value->begin(), parsed.value->end(),
                                        [](const auto& census) { return !census.taxa.empty(); }));
}

}  // namespace

Parsed<std::vector<MockCensus>> parseFile(FileKind kind, std::string_view text,
                                          const std::stop_token& stop, NamePool* names) {
    auto parsed = parseAs(kind, text, stop, names);
    if (holdsAbundance(parsed) || stop.stop_requested()) return parsed;
    const std::string_view separator = foreignSeparator(text);
    const bool isListed = kind == FileKind::list && separator == "tabs";  // which a list may have
    if (separator.empty() || isListed) return parsed;
    parsed.value.reset();
    parsed.advice = "the cells seem to be separated by " + std::string(separator) +
                    ", but Zorvel reads commas; save the file with commas as separator and try "
                    "again";
    return parsed;
}

std::string reasonOf(const std::vector<std::string>& consoleLines, const std::string& advice) {
    std::string reasons;
    for (const std::string& line : consoleLines) {
        if (!reasons.empty()) reasons += "; ";
        reasons += withoutMark(line);
        if (line.ends_with(": ")) reasons += "(empty)";
    }
    if (reasons.empty() && advice.empty()) return "its contents are in none of the known formats";
    return reasons + (reasons.empty() || advice.empty() ? "" : ": ") + advice;
}

const char* whyNoTaxa(const LeftOut& leftOut) {
    return leftOut.zeroCells + leftOut.negativeCells > 0
               ? "every abundance is 0"
               : "there are no abundances, or no commas in front of them";
}

ProjectRecords recordsOf(std::vector<MockCensus> censuses, std::shared_ptr<NamePool> names) {
    CensusBatch batch(1, 1 + recordCount(censuses));
    for (MockCensus& census : censuses) storeCensus(batch, std::exchange(census, {}));
    return {batch.take(), std::move(names)};
}

}  // namespace zorvel
