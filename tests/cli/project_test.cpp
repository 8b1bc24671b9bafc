// Projects that no text file can make, that are open elsewhere, or whose disk fails; see also
// check_tool.py.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <limits>

#include "cli/call.h"
#include "store/project_file.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/system_calls.h"
#include "tool.h"

namespace zorvel::test {
namespace {

using ::testing::HasSubstr;

// One of each command.
const std::vector<std::vector<std::string>> calls = {{"metrics"},
                                                     {"metrics", "--json"},
                                                     {"summary", "--quota", "0.95"},
                                                     {"rarefaction"},
                                                     {"project"},
                                                     {"rarefaction", "--samples"},
                                                     {"matrix"},
                                                     {"records"}};

class Projects : public ScratchFolder {
  protected:
    void SetUp() override {
        ScratchFolder::SetUp();
        project_ = path("p.zorvel");
    }
    Ran import(std::vector<std::string> files) {
        files.insert(files.begin(), "import");
        files.insert(files.end(), {"--into", project_});
        return runTool(files);
    }

    std::string project_;
};

// None of this can come from a text file.
TEST_F(Projects, MayHoldExtremes) {
    constexpr auto least = std::numeric_limits<std::int64_t>::min();
    constexpr auto most = std::numeric_limits<std::int64_t>::max();
    CensusAttributes odd;
    odd.latitude = std::numeric_limits<double>::infinity();
    odd.notes = "two\nlines";
    odd.timeStamp = TimeStamp(std::chrono::microseconds(most));
    ObjectContext context;
    context.insertCensus(odd, {{std::nullopt, least, false}, {SharedText("a"), most, true}});
    for (int i = 0; i < 4; ++i) context.insertCensus({}, {{SharedText("a"), most, i % 2 == 0}});
    ASSERT_TRUE(ProjectFile::create(project_, context).ok());

    const std::string first =
        R"(  {"name": null, "latitude": null, "longitude": 0, "notes": "two\nlines", "timeStamp": )"
        R"("+294247-01-10T04:00:54.775807+00:00", "taxa": [{"name": null, "abundance": )"
        R"(-9223372036854775808, "include": false}, {"name": "a", "abundance": )"
        R"(9223372036854775807, "include": true}]},)";
    const Ran records = runTool({"records", project_}, "TZ=UTC0");
    EXPECT_EQ(records.out.substr(0, first.size() + 3), "[\n" + first + "\n");
    for (std::vector<std::string> call : calls) {
        call.push_back(project_);
        const Ran ran = runTool(call);
        const bool tooMany = ran.err.find("too many to rarefy") != std::string::npos;
        EXPECT_EQ(tooMany, call.front() == "rarefaction" && call.size() == 2);
        EXPECT_EQ(ran.exitCode, tooMany ? 1 : 0) << call.front() << ran.err;
    }
}

// The commands on one census take the included species, the others take all.
TEST_F(Projects, ExcludedSpeciesCountWhereTheyShould) {
    ObjectContext context;
    for (const char* name : {"A", "B", "C", "D", "E"}) {
        CensusAttributes census;
        census.name = SharedText(name);
        context.insertCensus(census, {{SharedText("Abies"), 2, true},
                                      {SharedText("Larix"), 5, false},
                                      {SharedText("Picea"), 1, true}});
    }
    ASSERT_TRUE(ProjectFile::create(project_, context).ok());
    const auto startOf = [this](std::vector<std::string> call) {
        call.push_back(project_);
        return runTool(call).out;
    };
    using ::testing::StartsWith;
    EXPECT_THAT(startOf({"summary"}), StartsWith("Individuals\t3\nRichness\t2\n"));
    EXPECT_THAT(startOf({"project"}), StartsWith("Individuals\t40\nRichness\t3\n"));
    EXPECT_THAT(startOf({"metrics"}), HasSubstr("\nA, 8, 3, "));
    EXPECT_THAT(startOf({"matrix"}), HasSubstr("\nA,2,5,1\n"));
    const auto points = [&](const std::vector<std::string>& call) {
        const std::string table = startOf(call);
        return std::count(table.begin(), table.end(), '\n') - 1;
    };
    EXPECT_EQ(points({"rarefaction"}), 3);
    EXPECT_EQ(points({"rarefaction", "--samples"}), 4);
}

// Zones by their rules, so that no zone database is needed.
TEST_F(Projects, TimesFollowTheZone) {
    constexpr const char* utc = "TZ=UTC0";
    constexpr const char* central = "TZ=CET-1CEST,M3.5.0,M10.5.0/3";
    const struct {
        const char* zone;
        std::int64_t microseconds;
        const char* text;
    } rows[] = {
        {utc, 0, "1970-01-01T00:00:00+00:00"},
        {utc, -1, "1969-12-31T23:59:59.999999+00:00"},
        {utc, 1'500'000, "1970-01-01T00:00:01.5+00:00"},
        {utc, 253'402'300'800'000'000, "+10000-01-01T00:00:00+00:00"},
        {utc, std::numeric_limits<std::int64_t>::min(), "-290308-12-21T19:59:05.224192+00:00"},
        {utc, -62'167'219'200'000'000 - 86'400'000'000, "-0001-12-31T00:00:00+00:00"},
        {central, std::numeric_limits<std::int64_t>::max(), "+294247-01-10T05:00:54.775807+01:00"},
        {central, 1'457'188'920'000'000, "2016-03-05T15:42:00+01:00"},
        {central, 1'467'324'300'000'000, "2016-07-01T00:05:00+02:00"},
        {"TZ=NST3:30NDT,M3.2.0,M11.1.0", 0, "1969-12-31T20:30:00-03:30"},
        // 53 minutes 28 seconds before Greenwich, cut to the minute.
        {"TZ=LMT0:53:28", 0, "1969-12-31T23:07:00-00:53"},
    };
    for (const auto& row : rows) {
        CensusAttributes census;
        census.timeStamp = TimeStamp(std::chrono::microseconds(row.microseconds));
        ObjectContext context;
        context.insertCensus(census, {});
        ASSERT_TRUE(ProjectFile::create(project_, context).ok());
        EXPECT_THAT(runTool({"records", project_}, row.zone).out,
                    HasSubstr("\"timeStamp\": \"" + std::string(row.text) + "\""));
    }
}

TEST_F(Projects, AreMerged) {
    ObjectContext context;
    context.insertCensus({}, {{std::nullopt, -3, false}, {SharedText("Abies"), 4, true}});
    const std::string other = path("other.zorvel");
    ASSERT_TRUE(ProjectFile::create(other, context).ok());
    EXPECT_EQ(import({other, other}).exitCode, 0);
    const std::string single = runTool({"records", other}).out;
    const std::string record = single.substr(2, single.size() - 5);  // without brackets
    EXPECT_THAT(record, HasSubstr("\"include\": false"));
    EXPECT_EQ(runTool({"records", project_}).out, "[\n" + record + ",\n" + record + "\n]\n");
}

TEST_F(Projects, OpenElsewhereAreReadButNotImportedInto) {
    ASSERT_EQ(import({"three.csv"}).exitCode, 0);
    const std::string before = bytesOf("p.zorvel");
    {
        const auto held = ProjectFile::open(project_);
        ASSERT_TRUE(held.ok());
        EXPECT_EQ(runTool({"matrix", project_}).out, runTool({"matrix", "three.csv"}).out);
        const Ran ran = import({"three.csv"});
        EXPECT_EQ(ran.exitCode, 1);
        EXPECT_THAT(ran.err, ::testing::StartsWith(project_ + ": The project is open in another"));
        EXPECT_TRUE(bytesOf("p.zorvel") == before);
    }
    EXPECT_EQ(import({"three.csv"}).exitCode, 0);
}

// A user who repeats a call that failed would otherwise store the censuses twice.
TEST_F(Projects, AnImportIsDoneIfTheDiskFailsAfterTheWrite) {
    struct FailingFolders : CallListener {
        Verdict before(const FileCall& call) override { return {call.syncsFolder ? EIO : 0, 0}; }
    } failing;
    cli::Call call;
    call.command = &cli::importCommand;
    call.files = {dataFolder + "three.csv"};
    call.into = project_;
    testing::internal::CaptureStderr();
    {
        const SystemCalls heard(failing);
        EXPECT_TRUE(cli::importCommand.import(call));
    }
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("WARNING: all is stored"));
    EXPECT_EQ(runTool({"matrix", project_}).out, runTool({"matrix", "three.csv"}).out);
    // Nothing was written here: that the file happens to have as many censuses is no success.
    const auto held = ProjectFile::open(project_);
    EXPECT_EQ(import({"three.csv"}).exitCode, 1);
}

}  // namespace
}  // namespace zorvel::test
