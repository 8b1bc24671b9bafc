// Rows of texts, whole and without their zeros.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tables/encodings.h"
#include "tables/rows.h"
#include "tables/rows_ahead.h"

namespace zorvel {
namespace {

struct ReadRow {
    std::size_t number;
    std::size_t line;
    std::vector<std::string> cells;

    friend bool operator==(const ReadRow&, const ReadRow&) = default;
};

ReadRow readRow(const SparseRow& sparse) {
    EXPECT_THAT(sparse.cells, testing::Not(testing::Contains("0")));
    EXPECT_EQ(sparse.cell(sparse.width), "");
    ReadRow row{sparse.number, sparse.line, {}};
    for (std::size_t i = 0; i < sparse.width; ++i) row.cells.emplace_back(sparse.cell(i));
    return row;
}

// Rows of both kinds in turn, read in pieces of that size.
std::vector<ReadRow> rowsOf(const std::string& text, const TextForm& form, std::size_t piece,
                            bool (*isSparse)(std::size_t row)) {
    ByteSource bytes = bytesOf(text);
    TextRows source(
        [&](char* place, std::size_t size) { return bytes(place, std::min(size, piece)); }, form);
    std::vector<ReadRow> rows;
    TableRow whole;
    SparseRow sparse;
    for (;;) {
        const bool skips = isSparse(rows.size());
        if (!(skips ? source.nextSparse(sparse) : source.next(whole))) return rows;
        ReadRow& row = rows.emplace_back();
        row = skips ? readRow(sparse)
                    : ReadRow{whole.number, whole.line, {whole.cells.begin(), whole.cells.end()}};
    }
}

TEST(TableRows, AreTheSameWithoutTheirZeros) {
    std::mt19937 random(3);
    for (const char separator : {',', ';', '\t', ' ', '0'}) {
        const std::string letters =
            std::string("000000000001a \n\r\"") + '\0' + std::string(12, separator);
        for (int i = 0; i < 400; ++i) {
            std::string text;
            const std::size_t size = random() % 200;
            while (text.size() < size) text += letters[random() % letters.size()];
            const TextForm form{TableEncoding::utf8, separator, i % 2 == 0, i % 5 == 0};
            const auto whole = rowsOf(text, form, 1 << 20, [](auto) { return false; });
            EXPECT_EQ(rowsOf(text, form, 1 + random() % 9, [](auto) { return true; }), whole);
            EXPECT_EQ(rowsOf(text, form, 3, [](auto row) { return row % 2 == 1; }), whole);
        }
    }
}

// Thousands of short rows, and one that is longer than what is usually read at once.
TEST(TableRows, AreTheSameReadAhead) {
    for (const std::string& wide : {std::string(), std::string(300'000, 'x'), [] {
                                        std::string cells;
                                        for (int i = 0; i < 70'000; ++i) cells += ",12";
                                        return cells;
                                    }()}) {
        std::string text;
        for (int i = 0; i < 40'000; ++i) {
            text += "Site " + std::to_string(i / 7) + ",0,species " + std::to_string(i) + '\n';
            if (i == 30'000) text += wide + '\n';
        }
        TextRows direct(bytesOf(text), {});
        TextRows source(bytesOf(text), {});
        RowsAhead ahead(source);
        SparseRow row;
        while (direct.nextSparse(row)) {
            const SparseRow* const same = ahead.next();
            ASSERT_NE(same, nullptr);
            ASSERT_EQ(readRow(*same), readRow(row));
        }
        EXPECT_EQ(ahead.next(), nullptr);
    }
}

// Beyond the last row, the source may be damaged.
TEST(TableRows, AreNotReadAheadBeyondTheLast) {
    class CountedRows final : public RowSource {
      public:
        bool next(TableRow& row) override {
            row = {++count, count, {"1", "2"}};
            return true;
        }
        std::size_t count = 0;
    };
    for (const std::size_t last : {1U, 12U, 30'000U}) {
        CountedRows source;
        {
            RowsAhead ahead(source, last);
            for (std::size_t i = 1; i <= last; ++i) ASSERT_EQ(ahead.next()->number, i);
            EXPECT_EQ(ahead.next(), nullptr);
        }
        EXPECT_EQ(source.count, last);
    }
}

// Many rows may be held until the table ends.
TEST(TableRows, AreKeptInNoMoreMemoryThanTheyNeed) {
    const std::vector<std::string_view> cells = {"a"};
    const std::vector<std::uint32_t> columns = {0};
    const SparseRow row{1, 1, 1, cells, columns};
    RowBatch kept;
    kept.add(row);
    EXPECT_FALSE(kept.hasRoomFor(row));
    kept.begin();
    kept.add(row);
    EXPECT_TRUE(kept.hasRoomFor(row));
}

// 0xB3 is a letter of Polish only in Windows-1250, which is never guessed.
TEST(TableRows, AreDecodedAsChosen) {
    const std::string bytes = "Ma\xB3gorzata,\x8Cledziona,caf\xE9,\x80\n";
    EXPECT_EQ(guessEncoding(bytes, true), TableEncoding::windows1252);
    const std::vector<std::pair<TableEncoding, std::vector<std::string_view>>> cases = {
        {TableEncoding::windows1250, {"Małgorzata", "Śledziona", "café", "€"}},
        {TableEncoding::windows1252, {"Ma³gorzata", "Œledziona", "café", "€"}}};
    for (const auto& [encoding, cells] : cases) {
        TextRows rows(bytesOf(bytes), {encoding, ',', true, false});
        TableRow row;
        ASSERT_TRUE(rows.next(row));
        EXPECT_EQ(row.cells, cells);
    }
}

}  // namespace
}  // namespace zorvel
