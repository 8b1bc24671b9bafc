// Files that are damaged, of another kind, or made to do harm.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

#include "tests/workbook/workbook_files.h"

namespace zorvel {
namespace {

using test::archiveOf;
using test::Files;
using test::sheetFiles;
using testing::HasSubstr;

std::string sheetOf(const std::string& rows) {
    return archiveOf(sheetFiles("<worksheet><sheetData>" + rows + "</sheetData></worksheet>"));
}

Files odsFiles(const std::string& content) {
    return {{"mimetype", "application/vnd.oasis.opendocument.spreadsheet"},
            {"content.xml", "<content><spreadsheet>" + content + "</spreadsheet></content>"}};
}

std::string repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i) all += text;
    return all;
}

// As the directory of an old container names its parts.
std::string oleOf(const std::string& name) {
    std::string bytes = "\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1" + std::string(600, '\0');
    for (const char c : name) bytes += {c, '\0'};
    return bytes + std::string(100, '\0');
}

// With a value that both the archive's directory and the sheet itself state: from there on.
std::string withFalseValue(std::string bytes, std::size_t start, std::uint32_t value) {
    for (const auto& [mark, place, name] :
         {std::tuple("PK\x03\x04", start, 30U), std::tuple("PK\x01\x02", start + 2, 46U)}) {
        for (std::size_t at = bytes.find(mark); at != std::string::npos;
             at = bytes.find(mark, at + 4)) {
            if (bytes.compare(at + name, 12, "xl/sheet.xml") != 0) continue;
            for (std::size_t i = 0; i < 4; ++i) {
                bytes[at + place + i] = static_cast<char>(value >> (8 * i));
            }
        }
    }
    return bytes;
}

std::string withFalseSize(std::string bytes, std::uint32_t size) {
    return withFalseValue(std::move(bytes), 22, size);
}

std::string messageOf(std::string bytes, const WorkbookLimits& limits = {}) {
    const auto workbook = test::openBytes(std::move(bytes), limits);
    const test::Cells cells = test::cellsOf(workbook, 0);
    if (cells.empty() || cells.back().size() != 2 || cells.back()[0] != "problem") return "";
    return cells.back()[1];
}

// The checksum is known to be false at the end of the sheet.
TEST(HostileWorkbooks, GiveTheRowsBeforeTheDamage) {
    const std::string bytes = withFalseValue(sheetOf("<row><c><v>1</v></c></row>"), 14, 0);
    const test::Cells cells = test::cellsOf(test::openBytes(bytes), 0);
    ASSERT_EQ(cells.size(), 2U);
    EXPECT_EQ(cells[0], std::vector<std::string>{"1"});
    EXPECT_THAT(cells[1][1], HasSubstr("is damaged (CRC error)"));
}

TEST(HostileWorkbooks, AreRefusedWithTheReason) {
    WorkbookLimits small;
    small.inflatedBytes = 1 << 20;
    small.cellBytes = 1000;
    small.rowBytes = 100'000;
    small.sharedBytes = 5000;
    small.tagBytes = 200'000;
    small.cells = 1000;
    small.entries = 20;
    const std::string cell = "<row><c><v>1</v></c></row>";
    Files manyEntries = sheetFiles("");
    for (int i = 0; i < 20; ++i) manyEntries.emplace_back(std::to_string(i), "");
    Files shared = sheetFiles("<worksheet/>");
    shared[2].second.insert(shared[2].second.rfind("</"),
                            "<Relationship Id='t' Type='/sharedStrings' Target='t.xml'/>");
    shared.emplace_back(
        "xl/t.xml",
        "<sst>" + repeated("<si><t>" + std::string(900, 'a') + "</t></si>", 6) + "</sst>");
    const std::string doctype =
        "<!DOCTYPE a [<!ENTITY b 'bb'><!ENTITY c '&b;&b;&b;'>]><worksheet>&c;</worksheet>";
    struct Case {
        std::string bytes;
        const char* message;
    };
    const std::vector<Case> cases = {
        {"Plot,Abies\n1,2\n", "is not a workbook"},
        {oleOf("Workbook"), "old format (.xls): open it in a spreadsheet program and save it as"},
        {oleOf("EncryptedPackage"), "protected by a password"},
        {oleOf("WordDocument"), "not a workbook"},
        {archiveOf({{"xl/workbook.bin", "x"}}), "(.xlsb): save it as"},
        {archiveOf({{"Index/Document.iwa", "x"}}), "(.numbers): export it"},
        {archiveOf({{"word/document.xml", "x"}}), "is a document, but not a workbook"},
        {archiveOf({{"mimetype", "application/vnd.oasis.opendocument.text"}, {"content.xml", ""}}),
         "is a document, but not a workbook"},
        {archiveOf({{"counts.csv", "x"}}), "unpack it and choose the file within it"},
        {archiveOf(sheetFiles(cell), "secret"), "protected by a password"},
        {archiveOf(
             {{"content.xml", "x"},
              {"META-INF/manifest.xml", "<m><file-entry><encryption-data/></file-entry></m>"}}),
         "protected by a password"},
        {archiveOf(manyEntries), "more than 20 files"},
        {archiveOf(sheetFiles(doctype)), "xl/sheet.xml within it has a document type (DTD)"},
        {archiveOf(odsFiles("<!DOCTYPE a>")), "content.xml within it is damaged"},
        {archiveOf(sheetFiles("<worksheet>&b;</worksheet>")),
         "undefined entity (line 1, character 12)"},
        {archiveOf(sheetFiles(repeated("<a>", 300))), "nested too deeply"},
        {archiveOf(sheetFiles("<worksheet " + std::string(500'000, 'a'))),
         "a tag that is too long"},
        {archiveOf(sheetFiles("<a>" + std::string(2 << 20, ' ') + "</a>")),
         "larger than 1 MB when unpacked"},
        {archiveOf(shared), "MB of texts"},
        {sheetOf("<row><c t='inlineStr'><is><t>" + std::string(1001, 'a') + "</t></is></c></row>"),
         "a cell of more than 1 MB"},
        {archiveOf(odsFiles("<table><table-row><table-cell><p>" + std::string(1001, 'a') +
                            "</p></table-cell></table-row></table>")),
         "a cell of more than 1 MB"},
        {archiveOf(odsFiles("<table><table-row><table-cell><p><s c='99999999999'/></p></table-cell>"
                            "</table-row></table>")),
         "a cell of more than 1 MB"},
        {archiveOf(odsFiles("<table><table-row><table-cell number-columns-repeated='16384'><p>" +
                            std::string(900, 'a') + "</p></table-cell></table-row></table>")),
         "a row of more than"},
        {archiveOf(odsFiles("<table><table-row number-rows-repeated='1048576'><table-cell value='1'"
                            " value-type='float'/></table-row></table>")),
         "more than 1000 cells"},
        {archiveOf(odsFiles("<table><table-row number-rows-repeated='1048577'><table-cell value='1'"
                            " value-type='float'/></table-row></table>")),
         "beyond the last row"},
        {archiveOf(odsFiles("<table><table-row><table-cell number-columns-repeated='16384'/>"
                            "<table-cell value='1' value-type='float'/></table-row></table>")),
         "beyond the last row (1048576) or column (XFD)"},
        {sheetOf("<row r='1048577'><c><v>1</v></c></row>"), "beyond the last row"},
        {sheetOf("<row r='1'><c r='XFE1'><v>1</v></c></row>"), "beyond the last row"},
        {sheetOf("<row r='2'/><row r='2'/>"), "rows that are not in order"},
        {sheetOf("<row r='1'><c r='B1'/><c r='B1'/></row>"), "cells that are not in order"},
        {sheetOf("<row r='1'><c r='B2'/></row>"), "cells that are not in order"},
        {sheetOf("<row><c t='s'><v>0</v></c></row>"), "a cell whose text is missing"},
        {sheetOf(repeated(cell, 1001)), "more than 1000 cells"},
        {archiveOf(sheetFiles("<worksheet><sheetData>" + cell)), "no element found"},
        {withFalseSize(sheetOf(cell), 40), "another size than the archive states"},
        {withFalseSize(sheetOf(cell), 80'000), "another size than the archive states"},
        {archiveOf({{"xl/workbook.xml", "<workbook/>"}}), "has no sheet"},
        {archiveOf({{"xl/workbook.xml",
                     "<workbook><sheets><sheet name='A' id='r'/><sheet name='B' id='r'/></sheets>"
                     "</workbook>"},
                    {"xl/_rels/workbook.xml.rels",
                     "<Relationships><Relationship Id='r' Type='x/worksheet' Target='s.xml'/>"
                     "</Relationships>"},
                    {"xl/s.xml", "<worksheet/>"}}),
         "two of its sheets are one file"},
        {archiveOf(
             {{"xl/workbook.xml", "<workbook/>"},
              {"xl/_rels/workbook.xml.rels", "<r>" + repeated("<Relationship/>", 21) + "</r>"}}),
         "it has 20 sheets or parts, or more"},
    };
    for (const Case& each : cases) {
        EXPECT_THAT(messageOf(each.bytes, small), HasSubstr(each.message));
    }
}

// The number that the file states is not trusted, and however tags are written, none is missed.
TEST(WorkbookSheets, AllAreFoundWhateverTheirNumberIsSaidToBe) {
    const std::string filled = "<table-row><table-cell><p>a</p></table-cell></table-row></";
    for (const std::string prefix : {"", "t:",
                                     "a-prefix-of-more-bytes-than-are-kept-of-the-piece-"
                                     "of-the-file-that-was-read-before:"}) {
        std::string content;
        for (const std::string rest : {" >", "\n>", ">", "\t\t>"}) {
            content += "<" + prefix + "table" + rest + filled + prefix + "table>";
        }
        // Across the ends of pieces.
        const std::size_t start = odsFiles("")[1].second.find("</");
        for (std::size_t i = 0; i < 10; ++i) {
            content.resize(((i + 1) << 16) - start - prefix.size() - i, ' ');
            content += "<" + prefix + "table/>";
        }
        Files files = odsFiles(content);
        files.emplace_back("meta.xml", "<m><document-statistic table-count='1'/></m>");
        const auto workbook = test::openBytes(archiveOf(files));
        ASSERT_TRUE(workbook) << workbook.problem().message;
        EXPECT_EQ(workbook.value().sheets().size(), 14U) << prefix;
    }
}

// Names with ".." are harmless: nothing is unpacked.
TEST(HostileWorkbooks, PathsLeadNowhere) {
    Files files =
        sheetFiles("<worksheet><sheetData><row><c><v>1</v></c></row></sheetData></worksheet>");
    files[2].second =
        "<a><Relationship Id='a' Type='/worksheet' Target='../../../../etc/passwd'/></a>";
    EXPECT_THAT(messageOf(archiveOf(files)), HasSubstr("etc/passwd is missing within it"));
    files.back().first = "etc/passwd";
    EXPECT_EQ(messageOf(archiveOf(files)), "");
}

// Whatever byte is damaged, the file is refused or its cells are what they were.
TEST(HostileWorkbooks, DamageNeverChangesWhatIsRead) {
    for (const std::string name : {"workbooks/cells.xlsx", "workbooks/cells.ods"}) {
        const std::string bytes = test::bytesOfData(name);
        const test::Cells cells = test::cellsOf(test::openBytes(bytes), 1);
        ASSERT_GT(cells.size(), 4U);
        std::size_t refused = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            std::string damaged = bytes;
            damaged[i] = static_cast<char>(damaged[i] ^ (1 << (i % 8)));
            const auto workbook = test::openBytes(damaged);
            const bool known = !workbook || workbook.value().sheets().size() == 3;
            ASSERT_TRUE(known) << i;
            const test::Cells read = test::cellsOf(workbook, 1);
            const bool isRefused =
                !read.empty() && !read.back().empty() && read.back()[0] == "problem";
            refused += isRefused;
            ASSERT_TRUE(isRefused || read == cells) << name << " " << i;
        }
        EXPECT_GT(refused, bytes.size() / 4);
        for (std::size_t size = 4; size < bytes.size(); size += 97) {
            EXPECT_THAT(messageOf(bytes.substr(0, size)), HasSubstr("is cut or damaged")) << size;
        }
    }
}

}  // namespace
}  // namespace zorvel
