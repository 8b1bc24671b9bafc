#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "interchange/parsers.h"
#include "interchange/writers.h"
#include "shown.h"

namespace zorvel {
namespace {

TEST(MatrixWriter, WholeTexts) {
    const struct {
        CountsMatrix matrix;
        std::vector<std::string> taxonNames;
        std::vector<std::string> censusNames;
        std::string text;
    } cases[] = {
        {{{3, 0}, {0, 12}},
         {"Abies", "Picea"},
         {"North", "South"},
         " , Abies, Picea\nNorth,3,0\nSouth,0,12\n"},
        {{}, {"Abies"}, {}, " , Abies\n"},
        {{{}, {}}, {}, {"North", ""}, " \nNorth\n\n"},
        {{}, {}, {}, " \n"},
        // Nothing is quoted or escaped.
        {{{1, 2}}, {"a, b", " \"c\"\n"}, {"N,W"}, " , a, b,  \"c\"\n\nN,W,1,2\n"},
        {{{INT64_MAX, INT64_MIN, -1, 1000000}},
         {"a", "b", "c", "d"},
         {"N"},
         " , a, b, c, d\nN,9223372036854775807,-9223372036854775808,-1,1000000\n"},
        {{{0, 0, 0, 0, 0, 0, 0, 5, 0, 0, 0}},
         std::vector<std::string>(11, "t"),
         {"N"},
         " , t, t, t, t, t, t, t, t, t, t, t\nN,0,0,0,0,0,0,0,5,0,0,0\n"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(writeCensusMatrix(c.matrix, c.taxonNames, c.censusNames), c.text);
    }
}

TEST(MatrixWriter, RowsOfTheLongestCells) {
    for (std::size_t taxa = 1; taxa <= 24; ++taxa) {
        std::string row;
        for (std::size_t i = 0; i < taxa; ++i) row += "," + std::to_string(INT64_MIN);
        const std::string text = writeCensusMatrix({CountsVector(taxa, INT64_MIN)},
                                                   std::vector<std::string>(taxa), {"N"});
        EXPECT_TRUE(text.ends_with("\nN" + row + "\n")) << taxa;
    }
}

SparseCounts randomMatrix(std::mt19937_64& random, std::size_t rows, std::size_t columns) {
    SparseCounts matrix(columns);
    for (std::size_t row = 0; row < rows; ++row) {
        std::vector<SparseCounts::Column> places;
        CountsVector counts;
        const std::uint64_t presence = random() % 101;
        for (std::size_t column = 0; column < columns; ++column) {
            if (random() % 100 >= presence) continue;
            places.push_back(static_cast<SparseCounts::Column>(column));
            counts.push_back(static_cast<std::int64_t>(random()) >> (random() % 64));
        }
        matrix.addRow(places, counts);
    }
    return matrix;
}

// The last one is wider than a piece.
TEST(MatrixWriter, SparseRowsGiveTheSameText) {
    std::mt19937_64 random(5);
    for (const auto& [rows, columns] : std::vector<std::pair<std::size_t, std::size_t>>{
             {0, 0}, {0, 4}, {3, 0}, {1, 1}, {40, 1}, {7, 30}, {200, 90}, {3, 200'000}}) {
        const SparseCounts matrix = randomMatrix(random, rows, columns);
        const std::vector<std::string> taxa(columns, "t");
        std::vector<std::string> censuses;
        for (std::size_t i = 0; i < rows; ++i) censuses.push_back("N" + std::to_string(i));
        std::string text;
        EXPECT_TRUE(writeCensusMatrix(matrix, taxa, censuses, [&](std::string_view piece) {
            text += piece;
            return true;
        }));
        EXPECT_TRUE(text == writeCensusMatrix(matrix.dense(), taxa, censuses)) << rows << columns;
    }
}

TEST(MatrixWriter, StopsWhereNoMoreIsWanted) {
    std::mt19937_64 random(5);
    int pieces = 0;
    EXPECT_FALSE(writeCensusMatrix(randomMatrix(random, 9, 200'000),
                                   std::vector<std::string>(200'000), std::vector<std::string>(9),
                                   [&](std::string_view) { return ++pieces < 2; }));
    EXPECT_EQ(pieces, 2);
}

TEST(MatrixWriter, ReadsBack) {
    const std::string text = writeCensusMatrix({{3, 0}, {0, 12}, {0, 0}}, {"Abies", "Picea"},
                                               {"North", "South", "unnamed"});
    EXPECT_EQ(shown(parseCensusMatrix(text)), "North: Abies=3; South: Picea=12; unnamed:");
}

}  // namespace
}  // namespace zorvel
