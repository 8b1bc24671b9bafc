// Calls right and wrong, the help, the choice of a census, and JSON.
#include "cli/call.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>
#include <tuple>

#include "tests/support/scratch_folder.h"
#include "tool.h"

namespace zorvel::test {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

const std::vector<const cli::Command*> commands = {
    &cli::metricsCommand, &cli::summaryCommand,   &cli::rarefactionCommand,
    &cli::projectCommand, &cli::diversityCommand, &cli::matrixCommand,
    &cli::recordsCommand, &cli::longTableCommand, &cli::importCommand};

// Arguments without spaces in them; "" is an empty one.
std::variant<cli::Call, cli::Reply> callOf(const std::string& arguments) {
    std::istringstream stream("zorvel-cli " + arguments);
    std::vector<std::string> words;
    for (std::string word; stream >> word;) words.push_back(word == "\"\"" ? "" : word);
    std::vector<const char*> argv;
    for (const std::string& word : words) argv.push_back(word.c_str());
    return cli::readCall(static_cast<int>(argv.size()), argv.data());
}

TEST(Call, WrongOnesAreRefused) {
    const std::pair<const char*, const char*> rows[] = {
        {"", "no command"},
        {"measure a", "there is no command 'measure'"},
        {"--frobnicate", "there is no option '--frobnicate'"},
        {"metrics", "FILE is required"},
        {"metrics \"\"", "FILE: the name of the file is empty"},
        {"metrics a b", "b"},
        {"metrics a --census North", "--census"},
        {"summary a --samples", "--samples"},
        {"rarefaction a --samples --census North", "--census"},
        {"matrix a --json", "--json: matrix is written as text only"},
        {"metrics a --kind Matrix",
         "--kind: 'Matrix' is none of list, census, matrix, ios and table"},
        {"summary a --size 0", "--size: '0' is not a whole number from 1"},
        {"summary a --size +1", "--size: '+1'"},
        {"summary a --size 9223372036854775808", "--size: '9223372036854775808'"},
        {"summary a --quota nan", "--quota: 'nan' is not a finite number"},
        {"summary a --quota 1e999", "--quota: '1e999'"},
        {"summary a --quota 0,8", "--quota: '0,8'"},
        {"summary a --seed -1", "--seed: '-1' is not a whole number from 0"},
        {"summary a --seed 18446744073709551616", "--seed: '18446744073709551616'"},
        {"summary a --output \"\"", "--output: the name of the file is empty"},
        {"--size 3 summary a --size 4", "--size: given more than once"},
        {"metrics a --into p", "--into"},
        {"import a", "--into is required"},
        {"import --into p", "FILE is required"},
        {"import a \"\" --into p", "FILE: the name of the file is empty"},
        {"import a --into \"\"", "--into: the name of the file is empty"},
        {"import a --into -", "--into: a project is a file, not standard output"},
        {"import a --preview", "--preview: is for tables: give --table"},
        {"import a --table --kind list --into p", "--table: and --kind exclude each other"},
        {"import - - --into p", "FILE: standard input can be read only once"},
        {"diversity a --at-size 0.5", "--at-size: '0.5' is not a number from 1 to 10^18"},
        {"diversity a --at-coverage 1.1", "--at-coverage: '1.1' is not common or a number"},
        {"diversity a --curve order", "--curve: 'order' is neither size nor coverage"},
        {"diversity a --profile --at-size 9", "only one of --at-size, --at-coverage"},
        {"diversity a --samples --pooled", "--pooled"},
        {"diversity a --size 5", "--size: diversity does not use it"},
        {"diversity a --replicates 2.5", "--replicates: '2.5' is not a whole number"},
        {"--size 3 import a --into p", "--size: import writes no result"},
        {"import a --into p --output -", "--output: import writes no result"},
    };
    for (const auto& [arguments, reason] : rows) {
        SCOPED_TRACE(arguments);
        const auto read = callOf(arguments);
        const auto* reply = std::get_if<cli::Reply>(&read);
        ASSERT_TRUE(reply);
        EXPECT_EQ(reply->code, cli::ExitCode::wrongCall);
        EXPECT_THAT(reply->text, StartsWith("zorvel-cli: "));
        EXPECT_THAT(reply->text, HasSubstr(reason));
    }
    const Ran ran = runTool({"summary", "three.csv", "--size", "1.5"});
    EXPECT_EQ(ran.exitCode, 2);
    EXPECT_EQ(ran.out, "");
    EXPECT_EQ(ran.err,
              "zorvel-cli: --size: '1.5' is not a whole number from 1 to 9223372036854775807\n"
              "Try: zorvel-cli summary --help\n");
}

TEST(Call, OptionsStandOnEitherSideOfTheCommand) {
    for (const char* arguments :
         {"summary --kind list --quota -0.5 --size 7 --seed 18446744073709551615 --json matrix",
          "--kind list --quota -0.5 --size 7 --seed 18446744073709551615 --json summary matrix",
          "--kind=list summary matrix --quota=-5e-1 --json --size=7 --seed=18446744073709551615",
          "--json summary --kind=list --quota=-.5 --seed 18446744073709551615 --size 7 -- "
          "matrix"}) {
        SCOPED_TRACE(arguments);
        const auto read = callOf(arguments);
        const auto* call = std::get_if<cli::Call>(&read);
        ASSERT_TRUE(call);
        EXPECT_EQ(call->command, &cli::summaryCommand);
        EXPECT_EQ(call->files, std::vector<std::string>{"matrix"}) << "named as a command is";
        EXPECT_EQ(call->kind, FileKind::list);
        EXPECT_EQ(call->quota, -0.5);
        EXPECT_EQ(call->size, 7);
        EXPECT_EQ(call->seed, 18446744073709551615u);
        EXPECT_TRUE(call->json);
    }
}

TEST(Call, HelpNeedsNoFileAndListsWhatTheCommandTakes) {
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
        const auto example = callOf(command->example);
        ASSERT_TRUE(std::holds_alternative<cli::Call>(example)) << command->example;
        EXPECT_EQ(std::get<cli::Call>(example).command, command);
        for (const std::string option : {"--kind matrix", "--size 5", "--quota 0.5", "--seed 1",
                                         "--json", "--output result"}) {
            const bool previews = command->import && option == "--json";
            const std::string into =
                previews ? " a --table --preview " : (command->import ? " a --into p " : " a ");
            EXPECT_EQ(std::holds_alternative<cli::Call>(callOf(name + into + option)),
                      ran.out.find(option.substr(0, option.find(' '))) != std::string::npos)
                << name << ' ' << option;
        }
    }
    EXPECT_EQ(runTool({"metrics", "--version"}).out, "zorvel-cli " ZORVEL_VERSION "\n");
}

TEST(CensusChoice, TakesTheFirstOfTheNameOrTellsWhatElseThereIs) {
    const NameList all = {"North", "South", "Cafe\u0301", "South", ""};
    EXPECT_EQ(cli::chooseCensus(all, std::nullopt).value(), 0U);
    EXPECT_EQ(cli::chooseCensus(all, "South").value(), 1U);
    EXPECT_EQ(cli::chooseCensus(all, "Caf\u00e9").value(), 2U);
    EXPECT_EQ(cli::chooseCensus(all, "").value(), 4U);

    const NameList few = {"North", "South"};
    const NameList many = {"Core 1", "Core 2", "Core 10", "Core 12", "Core 3", "Core 4", "Pit"};
    const std::string some =
        "the censuses are 'Core 1', 'Core 2', 'Core 10', 'Core 12', 'Core 3' and 2 more";
    const std::tuple<NameList, std::string, std::string> rows[] = {
        {few, "north", "close to it: 'North'"},
        {few, "Nort", "close to it: 'North'"},
        {few, "outh", "close to it: 'South'"},
        {few, "", "the censuses are 'North', 'South'"},
        {few, "Moor", "the censuses are 'North', 'South'"},
        {many, "core 11", "close to it: 'Core 1', 'Core 10', 'Core 12', 'Core 2', 'Core 3'"},
        {many, "Moor", some},
        {many, std::string(1'000'000, 'x'), some},
    };
    for (const auto& [names, wanted, told] : rows) {
        const Result<std::size_t> chosen = cli::chooseCensus(names, wanted);
        ASSERT_FALSE(chosen.ok()) << told;
        EXPECT_EQ(chosen.problem().message, "no census is called '" + wanted + "'; " + told);
    }
}

class Json : public ScratchFolder {};

TEST_F(Json, IsReadBackByAnotherReader) {
    std::string everyAscii;
    for (char byte = 0; byte >= 0 && byte < 127; ++byte) everyAscii += byte;
    const std::string texts[] = {"",
                                 everyAscii,
                                 "\x7f\u2028",
                                 "\"\\\"",
                                 "Caf\u00e9 \U0001F33F",
                                 std::string(200'000, '\n') + "x"};
    cli::Output output(path("result.json"));
    cli::JsonWriter writer(output);
    writer.begin('[');
    for (const std::string& each : texts) writer.value(each);
    for (const double number : {0.1, 1e22, 5e-324, -0.0, 8.0}) writer.value(number);
    writer.value(std::numeric_limits<double>::quiet_NaN());
    writer.value(-std::numeric_limits<double>::infinity());
    writer.value(std::numeric_limits<std::int64_t>::min());
    writer.end(']');
    EXPECT_FALSE(output.finish());
    const std::string text = bytesOf("result.json");
    const std::string numbers =
        ",\n  0.1,\n  1e+22,\n  5e-324,\n  -0,\n  8,\n  null,\n  null,\n  "
        "-9223372036854775808\n]\n";
    EXPECT_TRUE(text.ends_with(numbers)) << text.substr(text.size() - numbers.size());
    EXPECT_NE(text.find("Caf\u00e9 \U0001F33F"), std::string::npos) << "UTF-8 stays as it is";
    const nlohmann::json read = nlohmann::json::parse(text);
    for (std::size_t i = 0; i < std::size(texts); ++i) EXPECT_EQ(read[i], texts[i]);
}

}  // namespace
}  // namespace zorvel::test
