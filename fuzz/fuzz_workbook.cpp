// A workbook: opened and read without a fault and within its limits, the same each time. Input that
// is no archive is the XML of one of the files within a workbook, because no change of an archive
// keeps its checksums: after the letter x that of a sheet, t shared texts, s styles, o an Open
// Document.
#include <memory>
#include <string>

#include "fuzz/fuzz_input.h"
#include "tests/support/zip_archive.h"
#include "workbook/workbook.h"

using namespace zorvel;

namespace {

// Without compression, for speed.
std::string archiveOf(const test::Files& files) {
    std::string bytes = test::archiveOf(files, nullptr, ZIP_CM_STORE);
    promise(!bytes.empty());
    return bytes;
}

std::string workbookWith(char part, const std::string& xml) {
    if (part == 'o') return archiveOf({{"content.xml", xml}});
    const std::string sheet =
        "<worksheet><sheetData><row><c t='s' s='1'><v>0</v></c><c s='1'><v>42434.5</v></c></row>"
        "</sheetData></worksheet>";
    const std::string relation = "<Relationship Id='";
    return archiveOf(
        {{"xl/workbook.xml", "<workbook><sheets><sheet name='s' id='a'/></sheets></workbook>"},
         {"xl/_rels/workbook.xml.rels", "<Relationships>" + relation +
                                            "a' Type='/worksheet' Target='a'/>" + relation +
                                            "t' Type='/sharedStrings' Target='t'/>" + relation +
                                            "s' Type='/styles' Target='s'/></Relationships>"},
         {"xl/a", part == 'x' ? xml : sheet},
         {"xl/t", part == 't' ? xml : "<sst><si><t>Abies _x0041_</t></si></sst>"},
         {"xl/s", part == 's' ? xml : "<a><cellXfs><xf/><xf numFmtId='14'/></cellXfs></a>"}});
}

std::size_t hashOfRows(const Workbook& workbook, std::size_t sheet, const WorkbookLimits& limits) {
    const auto rows = workbook.rows(sheet);
    std::size_t hash = 0;
    std::size_t filled = 0;
    std::size_t number = 0;
    for (TableRow row; rows->next(row);) {
        promise(row.number == ++number && row.number <= 1048576 && row.cells.size() <= 16384);
        for (const std::string_view cell : row.cells) {
            filled += !cell.empty();
            promise(cell.size() <= limits.cellBytes);
            hash = hash * 31 + std::hash<std::string_view>()(cell);
        }
    }
    promise(filled <= limits.cells);
    return hash + (rows->problem() ? 1 : 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text = fuzzText(data, size);
    if (text.empty()) return 0;
    WorkbookLimits limits;
    limits.inflatedBytes = 1 << 20;
    limits.cellBytes = 1 << 12;
    limits.rowBytes = 1 << 20;
    limits.sharedBytes = 1 << 20;
    limits.tagBytes = 1 << 17;
    limits.cells = 50'000;
    limits.entries = 50;
    const auto bytes = std::make_shared<const std::string>(
        looksLikeWorkbook(text) ? std::string(text)
                                : workbookWith(text[0], std::string(text.substr(1))));
    const Result<Workbook> workbook = Workbook::open(bytes, {}, limits);
    if (!workbook) {
        promise(!workbook.problem().message.empty());
        return 0;
    }
    promise(!workbook.value().sheets().empty());
    const std::size_t sheets = std::min<std::size_t>(workbook.value().sheets().size(), 3);
    for (std::size_t i = 0; i < sheets; ++i) {
        const std::size_t first = hashOfRows(workbook.value(), i, limits);
        promise(first == hashOfRows(workbook.value(), i, limits));
    }
    return 0;
}
