// zorvel-cli import: all of the files into a project, or nothing.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <tuple>

#include "base/numbers.h"
#include "cli/call.h"
#include "store/project_file.h"
#include "tests/support/system_calls.h"
#include "tool.h"

namespace zorvel::test {
namespace {

using nlohmann::json;
using Names = std::vector<std::string>;

class Import : public ::testing::Test {
  protected:
    Ran import(std::vector<std::string> files, const std::string& input = "") {
        files.insert(files.begin(), "import");
        files.insert(files.end(), {"--into", project_});
        return runTool(files, {input, {}, ""});
    }
    [[nodiscard]] Names censuses() const {
        const Ran ran = runTool({"records", project_});
        EXPECT_EQ(ran.exitCode, 0) << ran.err;
        Names names;
        for (const json& census : json::parse(ran.out, nullptr, false)) {
            names.push_back(census["name"]);
        }
        return names;
    }

    // The command by a user whom permissions bind; empty where there is no way to be one.
    [[nodiscard]] static Names asPlainUser(Names command) {
        if (geteuid() != 0) return command;
        if (runProgram({"setpriv", "--version"}).exitCode != 0) return {};
        const Names plainUser = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
        command.insert(command.begin(), plainUser.begin(), plainUser.end());
        return command;
    }

    const TemporaryFolder folder_;
    const std::string project_ = folder_.file("p.zorvel");
};

TEST_F(Import, MakesAProjectAndAddsToIt) {
    const Ran made = import({"three.csv", "one.csv"});
    EXPECT_EQ(made.exitCode, 0);
    EXPECT_EQ(made.out, "");
    EXPECT_EQ(made.err, project_ + ": made as a new project\n" +
                            "three.csv: stored 3 censuses with 8 taxa, read as matrix\n"
                            "one.csv: stored 1 census with 2 taxa, read as census\n");
    EXPECT_EQ(import({"phone.txt"}).err, "phone.txt: stored 2 censuses with 2 taxa, read as ios\n");
    EXPECT_EQ(import({"-", "--kind", "list"}, "7").err,
              "<stdin>: stored 1 census with 1 taxon, read as list\n");
    EXPECT_EQ(import({"counts.txt", "--kind", "ios"}).exitCode, 1) << "--kind goes before content";
    EXPECT_EQ(censuses(), (Names{"North", "Empty", "Caf\u00e9 Sud", "imported census", "Bog", "Fen",
                                 "imported census"}));
    EXPECT_EQ(folder_.names(), Names{"p.zorvel"});
}

TEST_F(Import, TellsWhatAFormatLeavesOut) {
    const std::string header = "Name\",\"Date\",\"Notes\",\"Lat\",\"Lon\",\"a\",\"b\"\n";
    const std::string line = "Bog\",\"Mar 5, 2016 3:42 PM\",\"\",1,2,4,-3";
    struct Row {
        std::string kind;
        std::string text;
        std::string told;
    };
    const Row rows[] = {
        {"list", "1 2", ""},
        {"census", "a,1\nb,", "1 unfinished last line left out"},
        {"census", "a,1\nb,2", ""},
        {"matrix", " ,a,b\nN,0,0\n", ""},
        {"matrix", " ,a,b\nN,0,1\nimported census,1,2\nS,1,\nimported census,0,0\n",
         "2 rows called imported census left out; 1 row with fewer cells than names filled up with "
         "zeros"},
        {"ios", header + line + "\n" + line,
         "1 unfinished last line left out; 1 negative abundance taken as 0"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        const Ran ran = import({"-", "--kind", row.kind}, row.text);
        EXPECT_EQ(ran.exitCode, 0);
        const std::string last = ran.err.substr(ran.err.find("<stdin>: stored"));
        const std::string second = last.substr(last.find('\n') + 1);
        EXPECT_EQ(second, row.told.empty() ? "" : "<stdin>: " + row.told + "\n");
    }
}

TEST_F(Import, IsNoPlainNewsWhereNoTaxonIsFound) {
    for (const auto& [text, told] :
         {std::pair(" ,a\nN,0\n", "every abundance is 0"),
          std::pair("a 1\nb 2\n", "there are no abundances, or no commas in front of them")}) {
        const Ran ran = import({"-"}, text);
        EXPECT_EQ(ran.exitCode, 0);
        EXPECT_THAT(ran.err,
                    ::testing::StartsWith("<stdin>: WARNING: none of its censuses has a taxon: " +
                                          std::string(told) + "\n"));
    }
    std::filesystem::remove(project_);
    const Ran ran = import({"three.csv", "-"}, "site;a;b\nNorth;1;2\n");
    EXPECT_EQ(ran.exitCode, 1);
    EXPECT_THAT(ran.err, ::testing::StartsWith("<stdin>: the cells seem to be separated by semi"));
    EXPECT_EQ(folder_.names(), Names{});
}

TEST_F(Import, MergesProjects) {
    ObjectContext context;
    context.insertCensus({}, {{std::nullopt, -3, false}, {SharedText("Abies"), 4, true}});
    const std::string other = folder_.file("other.zorvel");
    ASSERT_TRUE(ProjectFile::create(other, context).ok());
    EXPECT_EQ(import({other, "one.csv", other}).exitCode, 0);
    const json merged = json::parse(runTool({"records", project_}).out, nullptr, false);
    const json single = json::parse(runTool({"records", other}).out, nullptr, false);
    ASSERT_EQ(merged.size(), 3U);
    EXPECT_EQ(merged[0], single[0]);
    EXPECT_EQ(merged[2], single[0]);
    EXPECT_EQ(single[0]["taxa"][0]["include"], false);
}

TEST_F(Import, StoresNothingOfTheOthersWhereOneFileIsBad) {
    const std::string bad = folder_.file("bad.csv");
    const std::string none = folder_.file("none.txt");
    writeBytes(bad, " ,a,b\nNorth,1,x\n");
    writeBytes(none, "a\",b\",c\",d\",e\",f\n");
    const std::string told = bad + ":2:3: B: Not an abundance value, or not an integer: x\n" +
                             "nowhere.csv: cannot be opened: No such file or directory\n" + none +
                             ": holds no census\n";
    const Ran unmade = import({"three.csv", bad, "nowhere.csv", none});
    EXPECT_EQ(unmade.exitCode, 1);
    EXPECT_EQ(unmade.err, told);
    EXPECT_EQ(folder_.names(), (Names{"bad.csv", "none.txt"}));

    ASSERT_EQ(import({"three.csv"}).exitCode, 0);
    const std::string before = readBytes(project_);
    EXPECT_EQ(import({bad, "three.csv", "nowhere.csv", none}).err, told);
    EXPECT_TRUE(readBytes(project_) == before);
}

TEST_F(Import, LeavesWhatIsNoProjectOfItsOwn) {
    const std::string text = folder_.file("text.csv");
    const std::string empty = folder_.file("empty.zorvel");
    writeBytes(text, "Abies,1\n");
    writeBytes(empty, "");
    ASSERT_EQ(import({"three.csv"}).exitCode, 0);
    const std::string link = folder_.file("link");
    const std::string loop = folder_.file("loop");
    std::filesystem::create_symlink(project_, link);
    std::filesystem::create_symlink(loop, loop);
    struct Row {
        std::string file;
        std::string target;
        std::string message;
    };
    const Row rows[] = {
        {"three.csv", text, text + ": This is not a project file"},
        {"three.csv", empty, empty + ": The file is empty"},
        {"three.csv", folder_.path(), folder_.path() + ": This is a folder"},
        {"three.csv", folder_.file("no/p.zorvel"), folder_.file("no/p.zorvel") + ": There is no"},
        {"three.csv", loop, loop + ": The file cannot be used."},
        {"three.csv", "/dev/null", "/dev/null: This is a folder or a device"},
        {project_, project_, project_ + ": is the very file to import into\n"},
        {link, project_, link + ": is the very file to import into\n"},
        {project_, link, project_ + ": is the very file to import into\n"},
    };
    const std::string before = readBytes(project_);
    for (const Row& row : rows) {
        const Ran ran = runTool({"import", row.file, "--into", row.target});
        EXPECT_EQ(ran.exitCode, 1);
        EXPECT_THAT(ran.err, ::testing::StartsWith(row.message));
    }
    EXPECT_EQ(readBytes(text), "Abies,1\n");
    EXPECT_EQ(readBytes(empty), "");
    EXPECT_TRUE(readBytes(project_) == before);
    EXPECT_EQ(folder_.names(), (Names{"empty.zorvel", "link", "loop", "p.zorvel", "text.csv"}));
}

TEST_F(Import, RefusesAProjectThatIsOpenElsewhere) {
    ASSERT_EQ(import({"three.csv"}).exitCode, 0);
    const std::string before = readBytes(project_);
    {
        const auto held = ProjectFile::open(project_);
        ASSERT_TRUE(held.ok());
        const Ran ran = import({"three.csv"});
        EXPECT_EQ(ran.exitCode, 1);
        EXPECT_THAT(ran.err, ::testing::StartsWith(project_ + ": The project is open in another"));
        EXPECT_TRUE(readBytes(project_) == before);
    }
    EXPECT_EQ(import({"three.csv"}).exitCode, 0);
}

TEST_F(Import, RefusesWhatMayNotBeWritten) {
    ASSERT_EQ(import({"three.csv"}).exitCode, 0);
    const std::string before = readBytes(project_);
    const Names call = asPlainUser({ZORVEL_CLI, "import", "three.csv", "--into", project_});
    if (call.empty()) GTEST_SKIP() << "no setpriv";
    for (const auto& [file, folder, message] :
         {std::tuple(0444U, 0777U, "The file may be read but not changed"),
          std::tuple(0666U, 0555U, "The folder of the file may not be written")}) {
        chmod(project_.c_str(), file);
        chmod(folder_.path().c_str(), folder);
        const Ran ran = runProgram(call);
        EXPECT_EQ(ran.exitCode, 1);
        EXPECT_THAT(ran.err, ::testing::StartsWith(project_ + ": " + message));
        EXPECT_TRUE(readBytes(project_) == before);
    }
    chmod(folder_.path().c_str(), 0777);
    chmod(project_.c_str(), 0666);
    EXPECT_EQ(runProgram(call).exitCode, 0) << "the permissions alone were in the way";
}

TEST_F(Import, IsWholeOrAbsentAfterAKill) {
    std::string matrix = " ,a,b,c\n";
    for (int i = 0; i < 1'000; ++i) matrix += "North,1,2,3\n";
    const std::string file = folder_.file("matrix.csv");
    writeBytes(file, matrix);
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(import({file}).exitCode, 0);
    const std::chrono::duration<double> whole = std::chrono::steady_clock::now() - start;
    std::filesystem::remove(project_);

    constexpr int rounds = 20;
    std::size_t kept = 0;
    int killed = 0;
    for (int round = 1; round <= rounds; ++round) {
        const std::string seconds = fixedText(whole.count() * round / rounds, 4);
        const Ran ran = runProgram(
            {"timeout", "-s", "KILL", seconds, ZORVEL_CLI, "import", file, "--into", project_});
        const bool done = ran.exitCode == 0;
        killed += done ? 0 : 1;
        if (!std::filesystem::exists(project_)) {
            EXPECT_TRUE(!done && kept == 0);
            continue;
        }
        const std::size_t now = censuses().size();
        EXPECT_TRUE(now == kept + 1'000 || (now == kept && !done)) << now << " after " << kept;
        kept = now;
    }
    EXPECT_GT(killed, rounds / 3);
    EXPECT_EQ(import({file}).exitCode, 0);
    EXPECT_EQ(censuses().size(), kept + 1'000);
}

// Reads back what is true: whoever repeats a call that failed would store the censuses twice.
TEST_F(Import, IsDoneWhereTheDiskFailsAfterTheWrite) {
    struct FailingFolders : CallListener {
        Verdict before(const FileCall& call) override { return {call.syncsFolder ? EIO : 0, 0}; }
    } failing;
    cli::Call call;
    call.files = {dataFolder + "three.csv"};
    call.into = project_;
    testing::internal::CaptureStderr();
    {
        const SystemCalls heard(failing);
        EXPECT_TRUE(cli::importCommand.import(call));
    }
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                ::testing::HasSubstr("WARNING: all is stored"));
    EXPECT_EQ(censuses().size(), 3U);
    // Nothing was written here: that the file happens to hold as many censuses is no success.
    const auto held = ProjectFile::open(project_);
    EXPECT_EQ(import({"three.csv"}).exitCode, 1);
}

TEST_F(Import, NeedsNoMoreOfTheFolderThanToWriteInIt) {
    const int folder = open(folder_.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(flock(folder, LOCK_EX), 0);
    chmod(folder_.path().c_str(), 0333);
    Names call =
        asPlainUser({"timeout", "60", ZORVEL_CLI, "import", "three.csv", "--into", project_});
    if (call.empty()) GTEST_SKIP() << "no setpriv";
    EXPECT_EQ(runProgram(call).exitCode, 0);
    EXPECT_EQ(runProgram(call).exitCode, 0);
    close(folder);
    chmod(folder_.path().c_str(), 0777);
    EXPECT_EQ(censuses().size(), 6U);
}

// Whoever comes second adds to the project, or is refused while the first has it open.
TEST_F(Import, LosesNothingOfTwoThatMakeTheSameProject) {
    const std::string script =
        "\"$@\" & first=$!; \"$@\"; failed=$?; wait $first; exit $((failed + $?))";
    for (int round = 0; round < 20; ++round) {
        std::filesystem::remove(project_);
        const Ran ran = runProgram(
            {"bash", "-c", script, "bash", ZORVEL_CLI, "import", "three.csv", "--into", project_});
        ASSERT_LE(ran.exitCode, 1) << ran.err;
        EXPECT_EQ(censuses().size(), ran.exitCode == 0 ? 6U : 3U) << ran.err;
    }
}

}  // namespace
}  // namespace zorvel::test
