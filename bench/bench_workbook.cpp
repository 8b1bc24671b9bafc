// A table of 5,000 censuses by 2,600 taxa, half of the cells present, as a workbook of each format:
// guessed, and opened and read, beside the parser of census matrices on the same cells. Run each in
// a process of its own (--benchmark_filter), where the memory of its records is new, as it is for a
// user.
#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "bench/other_thread.h"
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

constexpr std::size_t censuses = 5000;

const Tables& tables() {
    static const Tables made = [] {
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

SheetSource sourceOf(const std::shared_ptr<const std::string>& bytes) {
    return {std::make_shared<const Workbook>(Workbook::open(bytes).value()), 0};
}

void expectAll(benchmark::State& state, std::size_t read) {
    if (read != censuses) state.SkipWithError("not all censuses were read");
}

void matrixOfText(benchmark::State& state) {
    tables();
    for ([[maybe_unused]] auto iteration : state) {
        const auto parsed = parseCensusMatrix(tables().text);
        expectAll(state, parsed.value ? parsed.value->size() : 0);
    }
}
void guess(benchmark::State& state, std::shared_ptr<const std::string> Tables::*bytes) {
    const SheetSource source = sourceOf(tables().*bytes);
    for ([[maybe_unused]] auto iteration : state) benchmark::DoNotOptimize(source.guess({}, {}));
}
void read(benchmark::State& state, std::shared_ptr<const std::string> Tables::*bytes) {
    const TableReading reading = sourceOf(tables().*bytes).guess({}, {}).reading;
    for ([[maybe_unused]] auto iteration : state) {
        const auto rows = sourceOf(tables().*bytes).rows({}, {});
        const TableRecords records = readTable(*rows, reading);
        expectAll(state, rows->problem() ? 0 : records.censuses.size());
    }
}

BENCHMARK(matrixOfText)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(guess, xlsx, &Tables::xlsx)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(read, xlsx, &Tables::xlsx)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(guess, ods, &Tables::ods)->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK_CAPTURE(read, ods, &Tables::ods)->Unit(benchmark::kMillisecond)->Iterations(1);

}  // namespace

BENCHMARK_MAIN();
