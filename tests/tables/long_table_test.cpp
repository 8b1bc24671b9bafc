// The export of a project as a long table comes back exactly as it was.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "interchange/writers.h"
#include "tables/guess.h"
#include "tables/reader.h"

namespace zorvel {
namespace {

std::string longTableOf(const std::vector<MockCensus>& censuses) {
    std::string text;
    LongTableWriter writer([&text](std::string_view piece) {
        text += piece;
        return true;
    });
    for (const MockCensus& census : censuses) {
        writer.begin(
            {census.name, census.timeStamp, census.latitude, census.longitude, census.notes},
            census.taxa.size());
        const auto& excluded = census.excluded;
        for (std::size_t j = 0; j < census.taxa.size(); ++j) {
            writer.add(census.taxa[j].name, census.taxa[j].abundance,
                       std::find(excluded.begin(), excluded.end(), j) == excluded.end());
        }
    }
    writer.finish();
    return text;
}

class RandomProject {
  public:
    explicit RandomProject(unsigned seed) : random_(seed) {}

    std::vector<MockCensus> make() {
        std::vector<MockCensus> censuses;
        for (unsigned i = below(8); i > 0; --i) {
            MockCensus census;
            census.name = text();
            if (below(2) > 0) census.notes = text();
            if (below(2) > 0) {
                census.latitude = std::uniform_real_distribution(-90.0, 90.0)(random_);
                census.longitude = std::uniform_real_distribution(-180.0, 180.0)(random_);
            }
            if (below(4) == 0) census.latitude = 1e300;
            if (below(2) > 0) {
                // From 1900 to 2100, half of them on a second.
                const std::int64_t second =
                    std::uniform_int_distribution<std::int64_t>(-2208988800, 4102444800)(random_);
                census.timeStamp = TimeStamp(std::chrono::seconds(second)) +
                                   std::chrono::microseconds(below(2) > 0 ? below(1000000) : 0);
            }
            // A census that tells of itself what another one does.
            if (!censuses.empty() && below(3) == 0) {
                census = censuses[below(static_cast<unsigned>(censuses.size()))];
                census.taxa.clear();
                census.excluded.clear();
            }
            for (unsigned j = below(6); j > 0; --j) {
                if (below(4) == 0) census.excluded.push_back(census.taxa.size());
                census.taxa.push_back({count(), text()});
            }
            censuses.push_back(std::move(census));
        }
        return censuses;
    }

  private:
    unsigned below(unsigned end) { return static_cast<unsigned>(random_() % end); }
    std::int64_t count() {
        constexpr std::int64_t counts[] = {0, 1, 7, 1000, std::numeric_limits<std::int64_t>::max()};
        return counts[below(std::size(counts))];
    }
    std::string text() {
        static const std::vector<std::string> texts = {
            "",           "Abies alba", "007",      " front", "back ",
            "\"quoted\"", "a,b;c\td",   "NA",       "Total",  "=SUM(A1)",
            "two\nlines", "CR\r",       "a\r\nb",   "\"",     "e\u0301",
            "\u00e9",     "\u00a0x",    "#comment", "-",      "0",
            "1.5",        "x",          "absent",   "sep=;",  "\"\",\"\"\n\"",
            "species",    "2021-03-04"};
        return texts[below(static_cast<unsigned>(texts.size()))];
    }

    std::mt19937 random_;
};

TEST(LongTable, RandomProjectsComeBack) {
    for (unsigned seed = 0; seed < 2000; ++seed) {
        const std::vector<MockCensus> censuses = RandomProject(seed).make();
        const std::string text = longTableOf(censuses);
        SCOPED_TRACE(text);
        const TableGuess guess = guessTable(text, true);
        ASSERT_TRUE(guess.doubts.empty());
        TextRows rows(bytesOf(text), guess.reading.form);
        const TableRecords read = readTable(rows, guess.reading);
        ASSERT_EQ(read.problems.count, 0U) << read.problems.kept.front().reason;
        ASSERT_EQ(read.censuses, censuses);
    }
}

TEST(LongTable, LooksLikeThis) {
    EXPECT_EQ(longTableOf({{46.5, -7.25, "Plot 1", "wet, \"cold\"", {{3, "Abies alba"}}, {}, {0}},
                           {0, 0, "Plot 2", "", {}, {}},
                           {0, 0, "Plot 2", "", {{0, ""}}, {}},
                           {}}),
              "census,date,latitude,longitude,notes,species,count,included\n"
              "Plot 1,,46.5,-7.25,\"wet, \"\"cold\"\"\",Abies alba,3,no\n"
              "Plot 2,,,,,,,\n"
              "Plot 2,,,,,,,\n"
              "Plot 2,,,,,,0,yes\n"
              ",,0,,,,,\n");
}

TEST(LongTable, RowsOfCommasAreBlank) {
    const std::string text =
        std::string(LongTableWriter::header) + "\nA,,,,,Poa,3,yes\n,,,,,,,\n,,0,,,,,\n";
    TextRows rows(bytesOf(text), guessTable(text, true).reading.form);
    const TableRecords read = readTable(rows, guessTable(text, true).reading);
    ASSERT_EQ(read.censuses.size(), 2U);
    EXPECT_EQ(read.censuses[1].name, "");
}

TEST(LongTable, SavedInAnotherEncodingIsGuessedLikeAnyOther) {
    const std::string header = std::string(LongTableWriter::header) + "\n";
    const TableReading own = guessTable(header + "Caf\xC3\xA9,,,,,Abies,3,1\n", true).reading;
    EXPECT_TRUE(own.isExact());
    const TableReading saved = guessTable(header + "Caf\xE9,,,,,Abies,3,1\n", true).reading;
    EXPECT_EQ(saved.form.encoding, TableEncoding::windows1252);
    EXPECT_EQ(saved.layout, TableLayout::records);
}

}  // namespace
}  // namespace zorvel
