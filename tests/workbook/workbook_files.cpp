#include "tests/workbook/workbook_files.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <memory>

namespace zorvel::test {

std::string bytesOfData(const std::string& name) {
    std::ifstream file(ZORVEL_SOURCE_DIR "/tests/data/" + name, std::ios::binary);
    EXPECT_TRUE(file) << name;
    return {std::istreambuf_iterator<char>(file), {}};
}

Result<Workbook> openBytes(std::string bytes, const WorkbookLimits& limits) {
    return Workbook::open(std::make_shared<const std::string>(std::move(bytes)), {}, limits);
}

Cells cellsOf(RowSource& source) {
    Cells cells;
    for (TableRow row; source.next(row);) {
        EXPECT_EQ(row.number, cells.size() + 1);
        cells.emplace_back(row.cells.begin(), row.cells.end());
    }
    return cells;
}

Cells cellsOf(const Result<Workbook>& workbook, std::size_t sheet) {
    if (!workbook) return {{"problem", workbook.problem().message}};
    const auto rows = workbook.value().rows(sheet);
    Cells cells = cellsOf(*rows);
    if (rows->problem()) cells.push_back({"problem", rows->problem()->message});
    return cells;
}

Files sheetFiles(const std::string& xml) {
    const std::string relation = "<Relationships><Relationship Id='a' Type='/";
    return {
        {"_rels/.rels", relation + "officeDocument' Target='xl/workbook.xml'/></Relationships>"},
        {"xl/workbook.xml", "<workbook><sheets><sheet name='s' id='a'/></sheets></workbook>"},
        {"xl/_rels/workbook.xml.rels",
         relation + "worksheet' Target='sheet.xml'/></Relationships>"},
        {"xl/sheet.xml", xml}};
}

}  // namespace zorvel::test
