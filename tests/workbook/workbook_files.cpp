#include "tests/workbook/workbook_files.h"

#include <gtest/gtest.h>
#include <zip.h>

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

std::string archiveOf(const Files& files, const char* password) {
    zip_source_t* const source = zip_source_buffer_create(nullptr, 0, 0, nullptr);
    zip_source_keep(source);
    zip_t* const archive = zip_open_from_source(source, ZIP_CREATE | ZIP_TRUNCATE, nullptr);
    for (const auto& [name, text] : files) {
        zip_source_t* const content = zip_source_buffer(archive, text.data(), text.size(), 0);
        const auto index = static_cast<zip_uint64_t>(
            zip_file_add(archive, name.c_str(), content, ZIP_FL_OVERWRITE));
        if (password) zip_file_set_encryption(archive, index, ZIP_EM_AES_256, password);
    }
    EXPECT_EQ(zip_close(archive), 0);
    zip_source_open(source);
    zip_stat_t stat;
    zip_source_stat(source, &stat);
    std::string bytes(stat.size, '\0');
    zip_source_read(source, bytes.data(), bytes.size());
    zip_source_close(source);
    zip_source_free(source);
    return bytes;
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
