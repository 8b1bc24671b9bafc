// Whole outputs of the commands.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>

#include "tool.h"

namespace zorvel::test {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;

struct WholeRow {
    std::vector<std::string> arguments;
    std::string out;
    std::string err;
};

void expectWhole(const std::vector<WholeRow>& rows, const Surroundings& surroundings = {}) {
    for (const WholeRow& row : rows) {
        SCOPED_TRACE(::testing::PrintToString(row.arguments));
        const Ran ran = runTool(row.arguments, surroundings);
        EXPECT_EQ(ran.exitCode, 0);
        EXPECT_EQ(ran.out, row.out);
        EXPECT_EQ(ran.err, row.err);
    }
}

json jsonOf(const std::vector<std::string>& arguments) {
    const Ran ran = runTool(arguments);
    EXPECT_EQ(ran.exitCode, 0) << ran.err;
    return json::parse(ran.out, nullptr, false);
}

// A quota past the attainable coverage leaves nothing to chance.
constexpr const char* summaryOfNorth =
    "Individuals\t22\n"
    "Richness\t6\n"
    "Rarefied richness (5)\t3.2\n"
    "Chao1\t6.5\n"
    "Alroy SQS (quota: 0.95)\t-\n"
    "Shannon's H\t1.466\n"
    "Fisher's alpha\t2.718\n"
    "Pielou's J\t0.818\n"
    "Simpson's D\t0.745\n"
    "Buzas-Gibson's E\t0.722\n";

constexpr const char* pooledText =
    "Individuals\t23\n"
    "Richness\t3\n"
    "Chao1\t-\n"
    "Shannon's H\t0.822\n"
    "Fisher's alpha\t0.921\n"
    "Pielou's J\t0.749\n"
    "Simpson's D\t0.490\n"
    "Buzas-Gibson's E\t0.759\n"
    "Rarefied richness (2)\t1.5\n"
    "Alroy SQS (quota: 1.50)\t-\n"
    "Average abundance\t7.7\n"
    "Average richness\t2.3\n"
    "Average Chao1\t-\n"
    "Average Shannon's H\t0.746\n"
    "Average Fisher's alpha\t0.532\n"
    "Average Pielou's J\t0.881\n"
    "Average Simpson's D\t0.620\n"
    "Average Buzas-Gibson's E\t0.923\n"
    "Average rarefied richness (2)\t1.6\n"
    "Average Alroy SQS (quota: 1.50)\t-\n"
    "Censuses with Alroy SQS\t0\n"
    "Chao2\t3.0\n"
    "Sample-based rarefied richness (2)\t3.0\n";

constexpr const char* rarefactionHeader =
    "sampleSize,estimatedRichness,variance,lower95limit,upper95limit,lower99limit,upper99limit\n";

TEST(Commands, TextIsWhole) {
    const std::string quotaWarning =
        "WARNING: Quota exceeds sum of frequencies: 0.9204545454545454\n";
    expectWhole({
        {{"summary", "three.csv", "--size", "5", "--quota", "0.95"},
         summaryOfNorth,
         "three.csv: North: " + quotaWarning},
        {{"summary", "three.csv", "--census", "Cafe\u0301 Sud"},
         "Individuals\t3\nRichness\t2\nRarefied richness (50)\t2.0\nChao1\t2.0\n"
         "Alroy SQS (quota: 0.80)\t-\nShannon's H\t0.637\nFisher's alpha\t0.0\n"
         "Pielou's J\t0.918\nSimpson's D\t0.667\nBuzas-Gibson's E\t0.945\n",
         ""},
        {{"project", "pooled.csv", "--size", "2", "--quota", "1.5"},
         pooledText,
         "pooled.csv: WARNING: Quota exceeds sum of frequencies: 1.0\n"},
        {{"rarefaction", "one.csv", "--kind", "census"},
         std::string(rarefactionHeader) +
             "         1,            1.000,   0.000,       1.000,       1.000,       1.000,       "
             "1.000\n"
             "         2,            1.667,   0.222,       1.000,       2.591,       1.000,       "
             "2.883\n"
             "         3,            2.000,   0.000,       2.000,       2.000,       2.000,       "
             "2.000\n",
         ""},
        {{"rarefaction", "three.csv", "--census", "Empty"}, rarefactionHeader, ""},
        {{"matrix", "phone.txt", "--kind", "ios"},
         " , Abies alba, Betula nana\nBog,4,0\nFen,0,7\n",
         ""},
    });
    expectWhole({{{"summary", "--kind", "list", "-", "--size", "5", "--quota", "0.95"},
                  summaryOfNorth,
                  "<stdin>: imported census: " + quotaWarning}},
                {"10 5\t3, 2\r\n1 1", {}, ""});
}

TEST(Commands, MetricsTableIsTheExports) {
    const Ran ran = runTool({"metrics", "three.csv", "--seed", "1", "--quota", "7"});
    EXPECT_EQ(ran.exitCode, 0);
    EXPECT_EQ(ran.err, "");
    EXPECT_THAT(ran.out, ::testing::MatchesRegex(
                             " , Abundance, Richness, Chao-1, alroySQS, Shannon's H, Fisher's "
                             "alpha, Pielou's J, Simpson's D, Buzas-Gibson E\n"
                             "North, 22, 6, 8.0, [3-5]\\.[0-9], 1.466, 2.718, 0.818, 0.745, 0.722\n"
                             "Empty, 0, 0, -, 0.0, 0.0, 0.0, 0.0, 0.0, -\n"
                             "Caf\u00e9 Sud, 3, 2, 2.5, 0.0, 0.637, 0.0, 0.918, 0.667, 0.945\n"));
}

TEST(Commands, RecordsAreWholeInTheirZone) {
    const std::string bog =
        R"(  {"name": "Bog", "latitude": 47.61, "longitude": -122.33, "notes": "wet, cold\tand )"
        "\u201cmossy\u201d"
        R"(", "timeStamp": "2016-03-05T15:42:00+01:00", "taxa": [{"name": "Abies alba", )"
        R"("abundance": 4, "include": true}]},)";
    const std::string fen =
        R"(  {"name": "Fen", "latitude": 1e-07, "longitude": null, "notes": "", "timeStamp": )"
        R"("2016-07-01T00:05:00+02:00", "taxa": [{"name": "Betula nana", "abundance": 7, )"
        R"("include": true}]})";
    expectWhole(
        {{{"records", "phone.txt", "--kind", "ios"}, "[\n" + bog + "\n" + fen + "\n]\n", ""}},
        {"", {"TZ=CET-1CEST,M3.5.0,M10.5.0/3"}, ""});
    expectWhole({{{"records", "--kind", "ios", "-"}, "[]\n", ""}},
                {"a\",b\",c\",d\",e\",f\n", {}, ""});
}

std::string keysInOrder(const std::vector<std::string>& arguments) {
    std::string keys;
    const auto keep = [&keys](int, json::parse_event_t event, json& value) {
        if (event == json::parse_event_t::key) keys += value.get<std::string>() + " ";
        return true;
    };
    EXPECT_FALSE(json::parse(runTool(arguments).out, keep, false).is_discarded());
    return keys;
}

TEST(Commands, JsonNamesStandInOrder) {
    const std::string census =
        "census individuals richness rarefiedRichness chaoOne chaoClassic alroySQS shannonH "
        "fisherAlpha pielouJ simpsonD buzasE ";
    const std::string indices =
        "individuals richness chaoClassic shannonH fisherAlpha pielouJ simpsonD buzasE ";
    const std::string point = "sampleSize estimate variance lower95 upper95 lower99 upper99 ";
    EXPECT_EQ(keysInOrder({"summary", "pooled.csv", "--json"}), census);
    EXPECT_EQ(keysInOrder({"metrics", "pooled.csv", "--json"}), census + census + census);
    EXPECT_EQ(keysInOrder({"rarefaction", "one.csv", "--kind", "census", "--json"}),
              point + point + point);
    EXPECT_EQ(keysInOrder({"project", "pooled.csv", "--json"}),
              indices + "rarefiedRichness alroySQS averages " + indices +
                  "averageRarefiedRichness averageAlroySQS censusesWithAlroySQS chaoTwo "
                  "sampleBasedRarefiedRichness ");
}

TEST(Commands, JsonHoldsAllDigits) {
    const json metrics = jsonOf({"metrics", "three.csv", "--json", "--size", "5", "--quota", "0"});
    const json& north = metrics[0];
    EXPECT_EQ(north["census"], "North");
    EXPECT_EQ(north["chaoOne"], 6.5);
    EXPECT_EQ(north["chaoClassic"], 8.0);
    EXPECT_NEAR(north["rarefiedRichness"], 3.1591858433963695, 1e-12);
    EXPECT_NEAR(north["shannonH"], 1.4658073752112626, 1e-14);
    EXPECT_NEAR(north["simpsonD"], 172.0 / 231.0, 1e-14);
    EXPECT_TRUE(north["alroySQS"].is_null()) << "a quota of 0 gives NaN";
    EXPECT_EQ(metrics[1]["individuals"], 0);
    EXPECT_TRUE(metrics[1]["buzasE"].is_null());

    const json project = jsonOf({"project", "pooled.csv", "--json"});
    EXPECT_NEAR(project["averages"]["individuals"], 23.0 / 3, 1e-14);
    EXPECT_TRUE(project["averages"]["chaoClassic"].is_null());
    // Of two specimens: 1 + 60/156, 1 + 20/42 and 2 expected taxa.
    const json two = jsonOf({"project", "pooled.csv", "--json", "--size", "2"});
    EXPECT_NEAR(two["averages"]["averageRarefiedRichness"], (4 + 60.0 / 156 + 20.0 / 42) / 3,
                1e-12);
    EXPECT_TRUE(project["averages"]["averageAlroySQS"].is_number());
    EXPECT_EQ(project["averages"]["censusesWithAlroySQS"], 1) << "A alone has 11 specimens";
    EXPECT_NEAR(project["buzasE"], 0.7586100731011026, 1e-14);

    const json curve = jsonOf({"rarefaction", "five.csv", "--samples", "--json"});
    const std::vector<double> estimates = {2.4, 3.1, 3.5, 3.8};  // over all subsets of censuses
    ASSERT_EQ(curve.size(), estimates.size());
    for (std::size_t i = 0; i < estimates.size(); ++i) {
        EXPECT_EQ(curve[i]["sampleSize"], i + 1);
        EXPECT_NEAR(curve[i]["estimate"], estimates[i], 1e-12);
    }
}

TEST(Commands, SeedFixesSqs) {
    const auto sqsOf = [](const json& metrics) {
        std::map<std::string, json> values;
        for (const json& row : metrics) values[row["census"]] = row["alroySQS"];
        return values;
    };
    const auto all = sqsOf(jsonOf({"metrics", mitesFile, "--json", "--seed", "5"}));
    EXPECT_EQ(all, sqsOf(jsonOf({"metrics", mitesFile, "--json", "--seed", "5"})));
    EXPECT_NE(all, sqsOf(jsonOf({"metrics", mitesFile, "--json", "--seed", "6"})));
    EXPECT_NE(all, sqsOf(jsonOf({"metrics", mitesFile, "--json"})));
    const json one = jsonOf({"summary", mitesFile, "--json", "--seed", "5", "--census", "Core 60"});
    EXPECT_EQ(one["alroySQS"], all.at("Core 60")) << "whatever stands before it in the file";
}

TEST(Commands, MatrixReadsBackAsItself) {
    const std::string matrix = runTool({"matrix", mitesFile}).out;
    EXPECT_EQ(std::count(matrix.begin(), matrix.end(), '\n'), 71);
    EXPECT_EQ(runTool({"matrix", "-"}, {matrix, {}, ""}).out, matrix);
}

TEST(Commands, NumbersDoNotFollowTheLocale) {
    const TemporaryFolder folder;
    const std::string locale = folder.file("de_DE.UTF-8");
    if (runProgram({"localedef", "-i", "de_DE", "-f", "UTF-8", locale}).exitCode != 0) {
        GTEST_SKIP() << "the German locale cannot be made here";
    }
    const Surroundings german = {"", {"LOCPATH=" + folder.path(), "LC_ALL=de_DE.UTF-8"}, ""};
    ASSERT_EQ(runProgram({"bash", "-c", "printf %.1f 0,5"}, german).out, "0,5");
    expectWhole({{{"summary", "three.csv", "--size", "5", "--quota", "0.95"},
                  summaryOfNorth,
                  "three.csv: North: WARNING: Quota exceeds sum of frequencies: "
                  "0.9204545454545454\n"}},
                german);
    EXPECT_EQ(runTool({"metrics", "three.csv", "--json", "--seed", "1"}, german).out,
              runTool({"metrics", "three.csv", "--json", "--seed", "1"}).out);
    EXPECT_EQ(runTool({"summary", "three.csv", "--quota", "0,95"}, german).exitCode, 2);
}

TEST(Commands, InputThatCannotBeUsedIsRefused) {
    struct Row {
        std::vector<std::string> arguments;
        std::string input;
        std::string message;
    };
    const std::vector<Row> rows = {
        {{"metrics", "nowhere.csv"},
         "",
         "nowhere.csv: cannot be opened: No such file or directory"},
        {{"metrics", "."}, "", ".: cannot be read: Is a directory"},
        {{"metrics", "-"}, "", "<stdin>: No censuses could be imported"},
        {{"matrix", "-"},
         " ,a,b\nNorth,1,x\n",
         "<stdin>:2:3: B: Not an abundance value, or not an integer: x"},
        {{"summary", "--kind", "ios", "-"}, "a\",b\",c\",d\",e\",f\n", "<stdin>: holds no census"},
        {{"summary", "three.csv", "--census", "Nroth"},
         "",
         "three.csv: no census is called 'Nroth'; the censuses are 'North', 'Empty', "
         "'Caf\u00e9 Sud'"},
        {{"rarefaction", "--kind", "ios", "-"},
         "a\",b\",c\",d\",e\",f\n",
         "<stdin>: Must have at least one census to calculate individual-based rarefaction"},
        {{"rarefaction", "--samples", "-"},
         " ,a\nA,1\nB,1\nC,1\nD,1\n",
         "<stdin>: Must have at least five censuses to calculate sample-based rarefaction"},
        {{"rarefaction", "-"},
         " ,a,b\nA,1000000000000000000,1\n",
         "<stdin>: There are more than 10^18 specimens, too many to rarefy exactly"},
        {{"project", "-"},
         " ,a\nA,1\nB,1\n",
         "<stdin>: Must have at least three censuses to calculate project-wide metrics"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.message);
        const Ran ran = runTool(row.arguments, {row.input, {}, ""});
        EXPECT_EQ(ran.exitCode, 1);
        EXPECT_EQ(ran.out, "");
        EXPECT_EQ(ran.err, row.message + "\n");
    }
    const Ran utf16 = runTool({"metrics", "-"}, {std::string("\xFF\xFE \0,\0", 6), {}, ""});
    EXPECT_EQ(utf16.exitCode, 1);
    EXPECT_THAT(utf16.err, HasSubstr("<stdin>: not UTF-8 text: it seems to be UTF-16"));
}

}  // namespace
}  // namespace zorvel::test
