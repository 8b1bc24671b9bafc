// Formats do not follow the user's locale: neither its decimal comma nor its digit groups.
#include <gtest/gtest.h>

#include <clocale>
#include <locale>
#include <string>

#include "interchange/parsers.h"
#include "interchange/writers.h"
#include "shown.h"

namespace zorvel {
namespace {

struct Comma : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

void expectTextsOfTheCLocale() {
    EXPECT_EQ(writeCensusMatrix({{1234567, -1234567}}, {"a", "b"}, {"N"}),
              " , a, b\nN,1234567,-1234567\n");
    const MetricRow row{1234567, 2, 0, 1.5, 0, 0, 0, 0, 0.25};
    const std::string name = "N";
    const std::string table =
        writeMetricsTable(std::span(&row, 1), metricColumnTitles, std::span(&name, 1));
    EXPECT_NE(table.find("1.5"), std::string::npos) << table;
    EXPECT_EQ(table.find("1,5"), std::string::npos) << table;
    EXPECT_EQ(table.find("1.234"), std::string::npos) << table;
    EXPECT_EQ(shown(parseCensusMatrix("x,a\nN,1234567\n")), "N: a=1234567");
    EXPECT_FALSE(parseCensusMatrix("x,a\nN,1.234.567\n").value);
    EXPECT_FALSE(parseAbundanceList("1.234").value);
    const std::string header = "\"n\",\"d\",\"o\",\"la\",\"lo\",\"a\"\n";
    const std::string line = "\"N\",\"Mar 5, 2016 3:42 PM\",\"\",47.61,-122.33,1234567\n";
    EXPECT_EQ(shown(parseIOSFile(header + line)), "N: a=1234567 [47.61,-122.33] [dated]");
}

TEST(Locale, OfStreamsChangesNothing) {
    const std::locale before = std::locale::global(std::locale(std::locale(), new Comma));
    expectTextsOfTheCLocale();
    std::locale::global(before);
}

TEST(Locale, OfTheProcessChangesNothing) {
    const char* found = nullptr;
    for (const char* name : {"de_DE.UTF-8", "fr_FR.UTF-8", "es_ES.UTF-8", "it_IT.UTF-8",
                             "nl_NL.UTF-8", "pt_BR.UTF-8", "ru_RU.UTF-8", "de_DE"}) {
        if (found == nullptr) found = std::setlocale(LC_ALL, name);
    }
    if (found == nullptr) GTEST_SKIP() << "no locale with a decimal comma is installed";
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    expectTextsOfTheCLocale();
    std::setlocale(LC_ALL, "C");
}

}  // namespace
}  // namespace zorvel
