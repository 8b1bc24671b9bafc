// The fast reader and writer of the census matrix against the plain ones, over random texts and
// texts bent in all the ways that could divert the fast path.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "bench/plain_matrix.h"
#include "interchange/parsers.h"
#include "interchange/writers.h"
#include "shown.h"

namespace zorvel {
namespace {

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
        if (odd()) {
            return pick<std::string>({"00",
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
                                      std::string(1, '\0'),
                                      "0\u00A0"});
        }
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

TEST(MatrixWriter, EqualsThePlainForm) {
    std::mt19937_64 random(11);
    for (int i = 0; i < 500; ++i) {
        const std::size_t taxa = random() % 70;
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
        ASSERT_EQ(writeCensusMatrix(matrix, names, censuses),
                  plain::writeCensusMatrix(matrix, names, censuses));
    }
}

}  // namespace
}  // namespace zorvel
