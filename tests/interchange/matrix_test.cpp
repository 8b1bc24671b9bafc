// The census matrix: worked examples, and the fast reader and writer against the plain ones, over
// random texts and texts altered in all the ways that could divert the fast path.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "bench/plain_matrix.h"
#include "interchange/parsers.h"
#include "interchange/writers.h"
#include "shown.h"
#include "tests/support/counts_of_rows.h"

namespace zorvel {
namespace {

using namespace std::string_literals;

const std::string more =
    ": More abundances found in a row than there are species. See help for formatting an input "
    "file.";
const std::string fewer = ": Fewer" + more.substr(6);
const std::string notInteger = ": Not an abundance value, or not an integer: ";
const std::string negative =
    ": File contains negative abundance value, but all abundances must be positive integers: ";
const std::string help = ".  See help for formatting an input file.";
const std::string none = "none @0:0 | No censuses could be imported";

template <std::size_t N>
void expectAll(const std::pair<std::string, std::string> (&cases)[N]) {
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(shown(parseCensusMatrix(text)), expected) << text;
}

TEST(MatrixParser, Censuses) {
    expectAll({
        {"x,Abies,Larix,Picea\nNorth,3,0,12\n", "North: Abies=3 Picea=12"},
        {" , a, b\nN,1,2\nS,0,+3", "N: a=1 b=2; S: b=3"},
        {"x,a,b\r\n\r\nN,1,2\r\n\r\nS,0,007", "N: a=1 b=2; S: b=7"},
        {"x,a,b\nN, 00, \t-0\nS,+0,\u00A04\n", "N:; S: b=4"},
        {"x,\"a, b\",\"c\"\"\"\n\"N\nW\",\"1\",2\n", "N\nW: a, b=1 c\"=2"},
        {"x,a\nN,9223372036854775807\n", "N: a=9223372036854775807"},
        // Names: empty ones, and the one that marks a row to be dropped.
        {"x,,a\nN,3,4\n,1,2\n", "N: =3 a=4; : =1 a=2"},
        {"x,a\nimported census,1\nN,2\nImported census,3", "N: a=2; Imported census: a=3"},
        {"x,a\n\"\"\nN,2\n", "N: a=2"},
        // A row's length is tested at a last cell that is not empty.
        {"x,a,b,c\nN,1,2,\n", "N: a=1 b=2"},
        {"x,a,b,c\nN\nS,\nW", "N:; S:; W:"},
        {"x,a\nN,1,0,0,\n", "N: a=1"},
        // The cells before an empty last cell of the header are the header.
        {"x,a,b,\nN,1,2\n", "N: a=1 b=2"},
        {"\nN,0,\n", "N:"},
        {"", none},
        {"x,a,b\n", none},
        {"x,a\nimported census,1\n", none},
    });
}

TEST(MatrixParser, Problems) {
    expectAll({
        {"x,a,b,c\nN,1,2.5,3\n", "none @2:3 | C" + notInteger + "2.5"},
        {"x,a,b,c\nN,1,,3\n", "none @2:3 | C" + notInteger},
        {"x,a,b\nN,\"a,\n1\",2\n", "none @2:2 | C" + notInteger + "a,\n1"},
        {"x,a,b\nN,1,2\r\n\r\nS,1,b", "none @4:3 | A" + notInteger + "b"},
        {"x,a,b\nN,1\0,2\n"s, "none @2:2 | C" + notInteger + "1\0"s},
        {"x,a,b\nN,9223372036854775808,2\n", "none @2:2 | C" + notInteger + "9223372036854775808"},
        {"x,a,b\nN,-1,2\n", "none @2:2 | C" + negative + "-1" + help},
        {"x,a,b\nN,1,-1\n", "none @2:3 | B" + negative + "-1" + help},
        // Integer and sign are tested before the length.
        {"x,a\nN,1,0,x\n", "none @2:4 | B" + notInteger + "x"},
        {"x,a\nN,1,0\n", "none @2:3 | B" + more},
        {"x,a\nN,1,0,0", "none @2:4 | A" + more},
        {"x,a,b\nN,1\n", "none @2:2 | B" + fewer},
        {"x,a,b\nimported census,1\n", "none @2:2 | B" + fewer},
        // A count that has no name.
        {"x,a\nN,1,2,\n", "none @2:3 | B" + more},
        {"x,a\nimported census,1,+2,\n", "none @2:3 | B" + more},
        {"\nN,5,\n", "none @2:2 | B" + more},
    });
}

class TextMaker {
  public:
    explicit TextMaker(unsigned seed) : random_(seed) {}

    std::string make() {
        oddness_ = pick({0.0, 0.001, 0.01, 0.1});
        presence_ = pick({0.02, 0.3, 1.0});
        const auto species = static_cast<std::size_t>(below(below(4) == 0 ? 200 : 12));
        std::string text = odd() ? "" : "corner";
        for (std::size_t i = 0; i < species; ++i) text += comma() + "t" + std::to_string(i);
        if (odd()) text += comma();
        for (std::uint64_t rows = below(6); rows > 0; --rows) text += rowEnd() + row(species);
        if (below(2) == 0) text += rowEnd();
        return bent(std::move(text));
    }

  private:
    std::uint64_t below(std::uint64_t end) { return random_() % end; }
    bool chance(double probability) { return std::bernoulli_distribution(probability)(random_); }
    bool odd() { return chance(oddness_); }
    template <class T>
    T pick(std::initializer_list<T> choices) {
        return choices.begin()[below(choices.size())];
    }

    std::string comma() {
        return odd() ? pick<std::string>({", ", ",\t ", ",\u00A0", ",\u2003 ", ",\u3000"}) : ",";
    }
    std::string rowEnd() {
        return odd() ? pick<std::string>({"\r\n", "\n\n", "\r", "\u0085", "\u2028", "\v\f"}) : "\n";
    }
    std::string cell() {
        using namespace std::string_view_literals;
        static constexpr std::string_view oddCells[] = {"00",
                                                        "+0",
                                                        "-0",
                                                        "\"0\"",
                                                        "0 ",
                                                        "",
                                                        "+3",
                                                        "007",
                                                        "-1",
                                                        "x",
                                                        "0x",
                                                        "0\"\"",
                                                        "\"0,0\"",
                                                        "\"\"",
                                                        "999999999999999999",
                                                        "1000000000000000000",
                                                        "9223372036854775807",
                                                        "9223372036854775808",
                                                        "\0"sv,
                                                        "0\u00A0"};
        if (odd()) return std::string(oddCells[below(std::size(oddCells))]);
        return chance(presence_) ? std::to_string(below(300)) : "0";
    }
    std::string row(std::size_t species) {
        std::string text = odd() ? pick<std::string>({"", "imported census", "\"a,b\""}) : "census";
        if (odd()) species = below(species + 3);
        for (std::size_t i = 0; i < species; ++i) text += comma() + cell();
        if (odd()) text += comma() + (odd() ? cell() : "");
        return text;
    }
    // Now and then with a byte changed, or cut short.
    std::string bent(std::string text) {
        if (odd() && !text.empty()) {
            text[below(text.size())] = pick({',', '0', '\n', '"', '1', ' ', '-', '\xC2', '\xE2'});
        }
        if (odd()) text.resize(below(text.size() + 1));
        return text;
    }

    std::mt19937_64 random_;
    double oddness_ = 0;
    double presence_ = 0;
};

TEST(MatrixParser, EqualsThePlainForm) {
    TextMaker maker(7);
    int read = 0;
    int refusedTexts = 0;
    for (int i = 0; i < 30000; ++i) {
        const std::string text = maker.make();
        const auto fast = parseCensusMatrix(text);
        const auto plainly = plain::parseCensusMatrix(text);
        ASSERT_TRUE(fast == plainly) << text << "\n" << shown(fast) << "\n" << shown(plainly);
        ++(fast.value ? read : refusedTexts);
    }
    EXPECT_GT(read, 5000);
    EXPECT_GT(refusedTexts, 5000);
}

// A cell of every odd kind at every place of a run of zeros, since the run is read in words.
TEST(MatrixParser, EqualsThePlainFormAtEveryPlaceOfARun) {
    for (const std::string odd : {"0", "00", "+0", "-1", " 0", "\"0\"", "7", "x", "", "\u00A0"}) {
        for (std::size_t place = 0; place < 40; ++place) {
            for (const std::string end : {"", "\n", ",", ",\r\n", ",0\n"}) {
                std::string text = "x";
                for (int i = 0; i < 40; ++i) text += ",t";
                text += "\nN";
                for (std::size_t i = 0; i < 40; ++i) text += i == place ? "," + odd : ",0";
                text += end;
                ASSERT_TRUE(parseCensusMatrix(text) == plain::parseCensusMatrix(text)) << text;
            }
        }
    }
}

std::string written(const CountsMatrix& matrix, const std::vector<std::string>& taxonNames,
                    const std::vector<std::string>& censusNames) {
    const SparseCounts counts = matrix.empty() ? SparseCounts() : withoutZeros(matrix);
    std::string text;
    EXPECT_TRUE(writeCensusMatrix(counts, taxonNames, censusNames, [&](std::string_view piece) {
        text += piece;
        return true;
    }));
    return text;
}

TEST(MatrixWriter, WholeTexts) {
    EXPECT_EQ(written({{3, 0}, {0, 12}}, {"Abies", "Picea"}, {"North", "South"}),
              " , Abies, Picea\nNorth,3,0\nSouth,0,12\n");
    EXPECT_EQ(written({}, {}, {}), " \n");
    // Nothing is quoted or escaped.
    EXPECT_EQ(written({{1, 2}}, {"a, b", " \"c\"\n"}, {"N,W"}), " , a, b,  \"c\"\n\nN,W,1,2\n");
}

// The last one is wider than a piece.
TEST(MatrixWriter, EqualsThePlainForm) {
    std::mt19937_64 random(11);
    for (int i = 0; i < 500; ++i) {
        const std::size_t taxa = i == 499 ? 200'000 : random() % 70;
        const double presence = i % 3 == 0 ? 0.05 : 0.5;
        CountsMatrix matrix(random() % 5, CountsVector(taxa, 0));
        for (CountsVector& row : matrix) {
            for (std::int64_t& count : row) {
                if (!std::bernoulli_distribution(presence)(random)) continue;
                count = static_cast<std::int64_t>(random()) >> (random() % 64);
            }
        }
        const std::vector<std::string> names(taxa, "Abies alba");
        const std::vector<std::string> censuses(matrix.size(), "North");
        ASSERT_TRUE(written(matrix, names, censuses) ==
                    plain::writeCensusMatrix(matrix, names, censuses));
    }
}

TEST(MatrixWriter, StopsWhereNoMoreIsTaken) {
    constexpr std::size_t taxa = 200'000;
    SparseCounts counts(taxa);
    for (int row = 0; row < 9; ++row) counts.addRow({}, {});
    int pieces = 0;
    EXPECT_FALSE(writeCensusMatrix(counts, std::vector<std::string>(taxa),
                                   std::vector<std::string>(9),
                                   [&](std::string_view) { return ++pieces < 2; }));
    EXPECT_EQ(pieces, 2);
}

}  // namespace
}  // namespace zorvel
