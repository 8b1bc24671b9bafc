// A table of 1,000 censuses by 2,600 taxa, half of the cells present, as a workbook of each
// format: opened, guessed and read, beside the parser of census matrices on the same cells.
#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "interchange/parsers.h"
#include "tables/reader.h"
#include "tests/support/zip_archive.h"
#include "workbook/workbook.h"

namespace {

using namespace zorvel;

std::shared_ptr<const std::string> archiveOf(const test::Files& files) {
    return std::make_shared<const std::string>(test::archiveOf(files));
}

struct Tables {
    std::string text;
    std::shared_ptr<const std::string> xlsx;
    std::shared_ptr<const std::string> ods;
};

// Rows of cells, as the three forms of the table grow side by side.
class Writer {
  public:
    void beginRow() {
        ++row_;
        column_ = 0;
        sheet_ += "<row r=\"" + std::to_string(row_) + "\">";
        content_ += "<table:table-row table:style-name=\"ro1\">";
    }
    void add(const std::string& value, bool isText) {
        text_ += (column_ > 0 ? "," : "") + value;
        const std::string type = isText ? "string" : "float";
        std::string shared = value;
        if (isText) {
            shared = std::to_string(strings_++);
            texts_ += "<si><t>" + value + "</t></si>";
        }
        sheet_ += "<c r=\"" + columnLetters(column_) + std::to_string(row_) + "\" s=\"0\"" +
                  (isText ? " t=\"s\"" : "") + "><v>" + shared + "</v></c>";
        content_ += "<table:table-cell office:value-type=\"" + type + "\"" +
                    (isText ? "" : " office:value=\"" + value + "\"") + " calcext:value-type=\"" +
                    type + "\"><text:p>" + value + "</text:p></table:table-cell>";
        ++column_;
    }
    void endRow() {
        text_ += '\n';
        sheet_ += "</row>";
        content_ += "</table:table-row>";
    }
    Tables tables() {
        const std::string relation = "<Relationship Id=\"";
        return {
            text_,
            archiveOf(
                {{"xl/workbook.xml",
                  "<workbook><sheets><sheet name=\"s\" id=\"a\"/></sheets></workbook>"},
                 {"xl/_rels/workbook.xml.rels",
                  "<Relationships>" + relation + "a\" Type=\"/worksheet\" Target=\"s.xml\"/>" +
                      relation + "t\" Type=\"/sharedStrings\" Target=\"t.xml\"/></Relationships>"},
                 {"xl/s.xml", "<worksheet><sheetData>" + sheet_ + "</sheetData></worksheet>"},
                 {"xl/t.xml", "<sst>" + texts_ + "</sst>"}}),
            archiveOf({{"mimetype", "application/vnd.oasis.opendocument.spreadsheet"},
                       {"content.xml", "<office:c><office:spreadsheet><table:table>" + content_ +
                                           "</table:table></office:spreadsheet></office:c>"}})};
    }

  private:
    std::string text_;
    std::string sheet_;
    std::string texts_;
    std::string content_;
    std::size_t strings_ = 0;
    std::size_t row_ = 0;
    std::size_t column_ = 0;
};

const Tables& tables() {
    static const Tables made = [] {
        constexpr std::size_t censuses = 1000;
        constexpr std::size_t taxa = 2600;
        std::mt19937_64 random(20240229);
        std::bernoulli_distribution present(0.5);
        std::geometric_distribution<std::int64_t> abundance(0.2);
        Writer writer;
        writer.beginRow();
        writer.add("Census", true);
        for (std::size_t i = 0; i < taxa; ++i) {
            writer.add("Genus species " + std::to_string(100000 + i), true);
        }
        writer.endRow();
        for (std::size_t row = 0; row < censuses; ++row) {
            writer.beginRow();
            writer.add("Census " + std::to_string(row), true);
            for (std::size_t i = 0; i < taxa; ++i) {
                writer.add(std::to_string(present(random) ? 1 + abundance(random) : 0), false);
            }
            writer.endRow();
        }
        return writer.tables();
    }();
    return made;
}

std::size_t readWorkbook(const std::shared_ptr<const std::string>& bytes) {
    Result<Workbook> opened = Workbook::open(bytes);
    if (!opened) return 0;
    const SheetSource source(std::make_shared<const Workbook>(std::move(opened).value()), 0);
    const TableGuess guess = source.guess({});
    const auto rows = source.rows({}, {});
    const TableRecords records = readTable(*rows, guess.reading);
    return rows->problem() || records.problems.count > 0 ? 0 : records.censuses.size();
}

void expectAll(benchmark::State& state, std::size_t censuses) {
    if (censuses != 1000) state.SkipWithError("not all censuses were read");
}

void matrixOfText(benchmark::State& state) {
    tables();
    for ([[maybe_unused]] auto iteration : state) {
        const auto parsed = parseCensusMatrix(tables().text);
        expectAll(state, parsed.value ? parsed.value->size() : 0);
    }
}
void xlsx(benchmark::State& state) {
    tables();
    for ([[maybe_unused]] auto iteration : state) expectAll(state, readWorkbook(tables().xlsx));
}
void ods(benchmark::State& state) {
    tables();
    for ([[maybe_unused]] auto iteration : state) expectAll(state, readWorkbook(tables().ods));
}

BENCHMARK(matrixOfText)->Unit(benchmark::kMillisecond);
BENCHMARK(xlsx)->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(ods)->Unit(benchmark::kMillisecond)->Iterations(3);

}  // namespace

BENCHMARK_MAIN();
