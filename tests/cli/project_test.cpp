// Projects as input: every command reads them, and leaves them as they are.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>

#include "store/project_file.h"
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

class ProjectInput : public ::testing::Test {
  protected:
    // The path of a new project of what the files hold.
    std::string imported(std::vector<std::string> files) {
        files.insert(files.begin(), "import");
        files.insert(files.end(), {"--into", project_});
        EXPECT_EQ(runTool(files).exitCode, 0);
        return project_;
    }

    const TemporaryFolder folder_;
    const std::string project_ = folder_.file("p.zorvel");
};

std::string replaced(std::string text, const std::string& what, const std::string& with) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += with.size()) {
        text.replace(at, what.size(), with);
    }
    return text;
}

TEST_F(ProjectInput, GivesWhatItsTextGives) {
    struct File {
        std::string name;
        std::string kind;
    };
    const File files[] = {{"three.csv", "matrix"}, {"five.csv", "matrix"}, {"one.csv", "census"},
                          {"counts.txt", "list"},  {"phone.txt", "ios"},   {mitesFile, "matrix"}};
    for (const File& file : files) {
        std::filesystem::remove(project_);
        const std::string bytes = readBytes(imported({file.name}));
        for (std::vector<std::string> call : calls) {
            SCOPED_TRACE(file.name + ": " + ::testing::PrintToString(call));
            call.insert(call.end(), {"--seed", "1", project_});
            const Ran ran = runTool(call);
            call.back() = file.name;
            call.insert(call.end(), {"--kind", file.kind});
            const Ran ofText = runTool(call);
            EXPECT_EQ(ran.exitCode, ofText.exitCode);
            EXPECT_EQ(ran.out, ofText.out);
            EXPECT_EQ(replaced(ran.err, project_, file.name), ofText.err);
        }
        EXPECT_TRUE(readBytes(project_) == bytes);
        EXPECT_EQ(folder_.names(), std::vector<std::string>{"p.zorvel"});
    }
}

// None of this can come from a text file.
TEST_F(ProjectInput, MayHoldExtremes) {
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
    const Ran records = runTool({"records", project_}, {"", {"TZ=UTC0"}, ""});
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
TEST_F(ProjectInput, ExcludedSpeciesCountWhereTheyShould) {
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
TEST_F(ProjectInput, TimesFollowTheZone) {
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
        EXPECT_THAT(runTool({"records", project_}, {"", {row.zone}, ""}).out,
                    HasSubstr("\"timeStamp\": \"" + std::string(row.text) + "\""));
    }
}

TEST_F(ProjectInput, IsReadWhileItIsOpenElsewhere) {
    imported({"three.csv"});
    const auto held = ProjectFile::open(project_);
    ASSERT_TRUE(held.ok());
    EXPECT_EQ(runTool({"matrix", project_}).out, runTool({"matrix", "three.csv"}).out);
}

TEST_F(ProjectInput, IsRefusedWhereItCannotBeReadAsGiven) {
    const std::string bytes = readBytes(imported({"three.csv"}));
    const Ran named = runTool({"metrics", "--kind", "matrix", project_});
    EXPECT_EQ(named.exitCode, 1);
    EXPECT_EQ(named.err, project_ + ": is a project, while --kind is for text: leave it out\n");
    const Ran piped = runTool({"metrics", "-"}, {bytes, {}, ""});
    EXPECT_EQ(piped.exitCode, 1);
    EXPECT_EQ(piped.err,
              "<stdin>: holds a project, which cannot be read from standard input or a pipe: name "
              "its file instead\n");
}

TEST_F(ProjectInput, StaysAsItIsWhereItCannotBeOpened) {
    const std::string whole = readBytes(imported({"three.csv"}));
    const auto changed = [&whole](std::size_t offset, const std::string& bytes) {
        return std::string(whole).replace(offset, bytes.size(), bytes);
    };
    struct Row {
        std::string bytes;
        std::string message;
    };
    const Row rows[] = {
        {whole.substr(0, 16), "The file is damaged"},
        {whole.substr(0, whole.size() / 2), "The file is damaged"},
        {changed(whole.size() - 60, std::string(60, '\xFF')), "The file is damaged"},
        {changed(68, "else"), "This database belongs to another program"},       // application_id
        {changed(60, std::string("\0\1\0\0", 4)), "A later version of Zorvel"},  // user_version
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.message);
        writeBytes(project_, row.bytes);
        for (const std::vector<std::string>& call :
             {std::vector<std::string>{"records", project_},
              {"import", "three.csv", "--into", project_},
              {"import", project_, "--into", folder_.file("new.zorvel")}}) {
            const Ran ran = runTool(call);
            EXPECT_EQ(ran.exitCode, 1);
            EXPECT_EQ(ran.out, "");
            EXPECT_THAT(ran.err, HasSubstr(project_ + ": " + row.message));
        }
        EXPECT_TRUE(readBytes(project_) == row.bytes);
        EXPECT_EQ(folder_.names(), std::vector<std::string>{"p.zorvel"});
    }
}

}  // namespace
}  // namespace zorvel::test
