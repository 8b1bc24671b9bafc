#include "model/import.h"

#include <utility>

#include "interchange/parsers.h"
#include "model/edits.h"

namespace zorvel {
namespace {

Parsed<std::vector<MockCensus>> asList(Parsed<MockCensus> parsed) {
    Parsed<std::vector<MockCensus>> list;
    list.consoleLines = std::move(parsed.consoleLines);
    list.place = parsed.place;
    list.leftOut = parsed.leftOut;
    if (parsed.value) list.value.emplace().push_back(std::move(*parsed.value));
    return list;
}

}  // namespace

Parsed<std::vector<MockCensus>> parseFile(FileKind kind, std::string_view text) {
    switch (kind) {
        case FileKind::list:
            return asList(parseAbundanceList(text));
        case FileKind::census:
            return asList(parseCensus(text));
        case FileKind::matrix:
            return parseCensusMatrix(text);
        case FileKind::ios:
            return parseIOSFile(text);
    }
    return {};
}

void storeCensuses(DiversityDocument& document, const std::vector<MockCensus>& censuses) {
    importCensuses(document.objectContext(), censuses);
}

}  // namespace zorvel
