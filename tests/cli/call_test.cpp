// Calls right and wrong: exit codes, messages, help.
#include "cli/call.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "cli/command.h"
#include "tool.h"

namespace zorvel::test {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::vector<const cli::Command*> commands = {
    &cli::metricsCommand, &cli::summaryCommand, &cli::rarefactionCommand, &cli::projectCommand,
    &cli::matrixCommand,  &cli::recordsCommand, &cli::importCommand};

TEST(Call, WrongOnesAreRefused) {
    const std::string three = "three.csv";
    struct Row {
        std::vector<std::string> arguments;
        std::string reason;
    };
    const std::vector<Row> rows = {
        {{}, "no command"},
        {{"measure", three}, "there is no command 'measure'"},
        {{"--frobnicate"}, "there is no option '--frobnicate'"},
        {{"metrics"}, "FILE is required"},
        {{"metrics", ""}, "FILE: the name of the file is empty"},
        {{"metrics", three, "five.csv"}, "five.csv"},
        {{"metrics", three, "--frobnicate"}, "--frobnicate"},
        {{"metrics", three, "--census", "North"}, "--census"},
        {{"summary", three, "--samples"}, "--samples"},
        {{"rarefaction", three, "--samples", "--census", "North"}, "--census"},
        {{"matrix", three, "--json"}, "--json: matrix is written as text only"},
        {{"metrics", three, "--kind"}, "--kind"},
        {{"metrics", three, "--kind", "Matrix"},
         "--kind: 'Matrix' is none of list, census, matrix and ios"},
        {{"summary", three, "--size", "0"}, "--size: '0' is not a whole number from 1"},
        {{"summary", three, "--size", "1.5"}, "--size: '1.5'"},
        {{"summary", three, "--size", "9223372036854775808"}, "--size: '9223372036854775808'"},
        {{"summary", three, "--quota", "nan"}, "--quota: 'nan' is not a finite number"},
        {{"summary", three, "--quota", "1e999"}, "--quota: '1e999'"},
        {{"summary", three, "--quota", "0,8"}, "--quota: '0,8'"},
        {{"summary", three, "--quota", " 0.8"}, "--quota: ' 0.8'"},
        {{"summary", three, "--seed", "-1"}, "--seed: '-1' is not a whole number from 0"},
        {{"summary", three, "--output", ""}, "--output: the name of the file is empty"},
        {{"--size", "3", "summary", three, "--size", "4"}, "--size: given more than once"},
        {{"metrics", three, "--into", "p.zorvel"}, "--into"},
        {{"import", three}, "--into is required"},
        {{"import", "--into", "p.zorvel"}, "FILE is required"},
        {{"import", three, "", "--into", "p.zorvel"}, "FILE: the name of the file is empty"},
        {{"import", three, "--into", ""}, "--into: the name of the file is empty"},
        {{"import", three, "--into", "-"}, "--into: a project is a file, not standard output"},
        {{"import", "-", "-", "--into", "p.zorvel"}, "FILE: standard input can be read only once"},
        {{"--size", "3", "import", three, "--into", "p.zorvel"}, "--size: import writes no result"},
        {{"--json", "import", three, "--into", "p.zorvel"}, "--json: import writes no result"},
        {{"import", three, "--into", "p.zorvel", "--output", "-"},
         "--output: import writes no result"},
        {{"summary", three, "--size", "3", "--size", "4"}, "--size"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.reason);
        const Ran ran = runTool(row.arguments);
        EXPECT_EQ(ran.exitCode, 2);
        EXPECT_EQ(ran.out, "");
        EXPECT_THAT(ran.err, StartsWith("zorvel-cli: "));
        EXPECT_THAT(ran.err, HasSubstr(row.reason));
        EXPECT_TRUE(ran.err.ends_with(" --help\n")) << ran.err;
    }
}

TEST(Call, OptionsStandOnEitherSideOfTheCommand) {
    const std::vector<std::vector<std::string>> calls = {
        {"summary", "--kind", "list", "--quota", "-0.5", "--size", "7", "--json", "counts.txt"},
        {"--kind", "list", "--quota", "-0.5", "--size", "7", "--json", "summary", "counts.txt"},
        {"--kind=list", "summary", "counts.txt", "--quota=-5e-1", "--json", "--size=7"},
        {"--json", "summary", "--kind=list", "--quota=-.5", "--size", "7", "--", "counts.txt"},
    };
    const Ran first = runTool(calls.front());
    EXPECT_EQ(first.exitCode, 0) << first.err;
    EXPECT_THAT(first.out, HasSubstr("\"rarefiedRichness\": 3.76768")) << "7 of 22 specimens";
    for (const auto& call : calls) {
        const Ran ran = runTool(call);
        EXPECT_EQ(ran.exitCode, 0) << ran.err;
        EXPECT_EQ(ran.out, first.out);
    }
}

TEST(Call, FileMayBeNamedAsACommandIs) {
    const TemporaryFolder folder;
    writeBytes(folder.file("matrix"), readBytes(dataFolder + "three.csv"));
    const Ran ran = runTool({"matrix", "matrix"}, {"", {}, folder.path()});
    EXPECT_EQ(ran.exitCode, 0) << ran.err;
}

TEST(Call, HelpAndVersionNeedNoFile) {
    const Ran help = runTool({"--help"});
    EXPECT_THAT(help.out, HasSubstr("Usage: zorvel-cli [OPTIONS] COMMAND FILE\n"));
    EXPECT_TRUE(help.out.ends_with("--help\n"));
    for (const cli::Command* command : commands) {
        const std::string name = command->name;
        EXPECT_THAT(help.out, HasSubstr("  " + name + " "));
        const Ran ran = runTool({name, "--help"});
        EXPECT_EQ(ran.exitCode, 0);
        EXPECT_EQ(ran.err, "");
        EXPECT_THAT(ran.out, HasSubstr("Usage: zorvel-cli " + name + " [OPTIONS] FILE"));
        EXPECT_THAT(ran.out, HasSubstr(command->example));
    }
    const Ran version = runTool({"metrics", "--version"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_EQ(version.out, "zorvel-cli " ZORVEL_VERSION "\n");
}

TEST(Call, HelpListsWhatTheCommandTakes) {
    const std::vector<std::vector<const char*>> options = {
        {"--kind", "matrix"}, {"--size", "5"}, {"--quota", "0.5"},
        {"--seed", "1"},      {"--json"},      {"--output", "result"}};
    for (const cli::Command* command : commands) {
        const std::string help = runTool({command->name, "--help"}).out;
        for (const auto& option : options) {
            std::vector<const char*> argv = {"zorvel-cli", command->name, "counts.csv"};
            if (command->import) argv.insert(argv.end(), {"--into", "p.zorvel"});
            argv.insert(argv.end(), option.begin(), option.end());
            const auto read = cli::readCall(static_cast<int>(argv.size()), argv.data());
            EXPECT_EQ(std::holds_alternative<cli::Call>(read),
                      help.find(option.front()) != std::string::npos)
                << command->name << ' ' << option.front();
        }
    }
}

TEST(Call, ExamplesOfTheHelpAreRightCalls) {
    for (const cli::Command* command : commands) {
        std::istringstream words(command->example);
        std::vector<std::string> arguments = {"zorvel-cli"};
        for (std::string word; words >> word;) arguments.push_back(word);
        std::vector<const char*> argv;
        for (const std::string& argument : arguments) argv.push_back(argument.c_str());
        const auto read = cli::readCall(static_cast<int>(argv.size()), argv.data());
        ASSERT_TRUE(std::holds_alternative<cli::Call>(read)) << command->example;
        EXPECT_EQ(std::get<cli::Call>(read).command, command);
    }
}

}  // namespace
}  // namespace zorvel::test
