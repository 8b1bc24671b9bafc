// Where results go, and what happens when they cannot go there; JSON.
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <nlohmann/json.hpp>

#include "cli/json_writer.h"
#include "tool.h"

namespace zorvel::test {
namespace {

// The tool under bash, which redirects its streams: "$@" is the call.
Ran runRedirected(const std::string& script, std::vector<std::string> arguments,
                  const Surroundings& surroundings = {}) {
    arguments.insert(arguments.begin(), {"bash", "-c", script, "bash", ZORVEL_CLI});
    return runProgram(arguments, surroundings);
}

TEST(Output, FileHoldsWhatStandardOutputWould) {
    const TemporaryFolder folder;
    const std::string file = folder.file("result");
    writeBytes(file, std::string(100'000, 'x'));
    for (const char* command : {"matrix", "records", "project", "metrics"}) {
        const Ran shown = runTool({command, mitesFile, "--seed", "1"});
        const Ran kept = runTool({command, mitesFile, "--seed", "1", "--output", file});
        EXPECT_EQ(kept.exitCode, 0) << kept.err;
        EXPECT_EQ(kept.out, "");
        EXPECT_EQ(readBytes(file), shown.out);
        EXPECT_EQ(runTool({command, mitesFile, "--seed", "1", "--output", "-"}).out, shown.out);
    }
    // It may be the input.
    writeBytes(file, " ,b,a\r\nNorth,1,2\r\n");
    EXPECT_EQ(runTool({"matrix", file, "--output", file}).exitCode, 0);
    EXPECT_EQ(readBytes(file), " , a, b\nNorth,2,1\n");
    EXPECT_EQ(folder.names().size(), 1U) << "nothing else is left beside it";
}

TEST(Output, AProjectIsNotReplaced) {
    const TemporaryFolder folder;
    const std::string project = folder.file("p.zorvel");
    ASSERT_EQ(runTool({"import", "three.csv", "--into", project}).exitCode, 0);
    const std::string bytes = readBytes(project);
    writeBytes(folder.file("damaged.zorvel"), "SQL");
    std::filesystem::create_hard_link(project, folder.file("other.csv"));
    std::filesystem::create_symlink("p.zorvel", folder.file("link.csv"));
    std::filesystem::create_symlink("damaged.zorvel", folder.file("damaged.csv"));
    for (const char* name : {"p.zorvel", "other.csv", "link.csv", "damaged.zorvel", "damaged.csv",
                             "new.zorvel", "p.zorvel-journal"}) {
        const std::string file = folder.file(name);
        const Ran ran = runTool({"matrix", project, "--output", file});
        EXPECT_EQ(ran.exitCode, 1);
        EXPECT_EQ(ran.err.find(file + ": is a project or named like one"), 0U) << ran.err;
    }
    EXPECT_TRUE(readBytes(project) == bytes);
    EXPECT_EQ(readBytes(folder.file("damaged.zorvel")), "SQL");
    EXPECT_FALSE(std::filesystem::exists(folder.file("new.zorvel")));
}

TEST(Output, NothingIsWrittenOnAProblem) {
    const TemporaryFolder folder;
    const std::string kept = folder.file("kept");
    writeBytes(kept, "old");
    EXPECT_EQ(runTool({"project", "one.csv", "--kind", "census", "--output", kept}).exitCode, 1);
    EXPECT_EQ(readBytes(kept), "old");
    const std::string nowhere = folder.file("none/result");
    const Ran ran = runTool({"metrics", "three.csv", "--output", nowhere});
    EXPECT_EQ(ran.exitCode, 1);
    EXPECT_EQ(ran.out, "");
    EXPECT_EQ(ran.err, nowhere + ": cannot be written: No such file or directory\n");
    EXPECT_EQ(folder.names().size(), 1U);
}

TEST(Output, FullDeviceOrClosedStreamIsAProblem) {
    using Arguments = std::vector<std::string>;
    for (const auto& call : {Arguments{"metrics", "three.csv"}, Arguments{"records", mitesFile},
                             Arguments{"--help"}}) {
        const Ran ran = runRedirected("\"$@\" >/dev/full", call);
        EXPECT_EQ(ran.exitCode, 1);
        EXPECT_EQ(ran.err, "<stdout>: cannot be written: No space left on device\n");
    }
    const Ran device = runTool({"metrics", "three.csv", "--output", "/dev/full"});
    EXPECT_EQ(device.exitCode, 1);
    EXPECT_EQ(device.err, "/dev/full: cannot be written: No space left on device\n");
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/full")) << "it stays what it is";
    const Ran closed = runRedirected("\"$@\" >&-", {"metrics", "three.csv"});
    EXPECT_EQ(closed.exitCode, 1);
    EXPECT_EQ(closed.err, "<stdout>: cannot be written: Bad file descriptor\n");

    // A file does not get the number of a closed stream, and the warning about the quota.
    const TemporaryFolder folder;
    const std::string file = folder.file("result");
    const Arguments call = {"summary", "three.csv", "--quota", "0.95", "--output", file};
    EXPECT_EQ(runRedirected("\"$@\" <&- >&- 2>&-", call).exitCode, 0);
    EXPECT_EQ(readBytes(file).substr(0, 15), "Individuals\t22\n");
    EXPECT_EQ(readBytes(file).find("WARNING"), std::string::npos);
}

TEST(Output, ReaderThatGoesAwayIsNoNews) {
    std::string matrix = " ,a\n";
    for (int i = 0; i < 50'000; ++i) matrix += "North,1\n";
    const Ran ran = runRedirected("\"$@\" | head -c 2; exit ${PIPESTATUS[0]}", {"records", "-"},
                                  {matrix, {}, ""});
    EXPECT_EQ(ran.exitCode, 1);
    EXPECT_EQ(ran.out, "[\n");
    EXPECT_EQ(ran.err, "");
}

// Names and cells of a file must not command the terminal; a result is data, and stays as it is.
TEST(Output, MessagesHoldNoControlCharacters) {
    const Ran refused = runTool({"metrics", "-"}, {" ,a\nNorth,\x1b]52;c;QQ==\a\n", {}, ""});
    EXPECT_EQ(refused.err,
              "<stdin>:2:2: B: Not an abundance value, or not an integer: \\x1b]52;c;QQ==\\x07\n");
    const Surroundings named = {" ,a,b\n\"\x1b[2J\n\",1,10\n", {}, ""};
    EXPECT_EQ(runTool({"summary", "-", "--quota", "5"}, named).err.substr(0, 32),
              "<stdin>: \\x1b[2J\\x0a: WARNING: Q");
    EXPECT_EQ(runTool({"matrix", "-"}, named).out, " , a, b\n\x1b[2J\n,1,10\n");
    EXPECT_EQ(runTool({"metrics", "\x1b[2J"}).err,
              "\\x1b[2J: cannot be opened: No such file or directory\n");
    EXPECT_EQ(runTool({"\x1b[2J\n"}).err.substr(0, 45),
              "zorvel-cli: there is no command '\\x1b[2J\\x0a'");
}

TEST(Json, IsReadBackByAnotherReader) {
    std::string everyAscii;
    for (char byte = 0; byte >= 0 && byte < 127; ++byte) everyAscii += byte;
    const std::vector<std::string> texts = {"",
                                            everyAscii,
                                            "\x7f\u2028",
                                            "\"\\\"",
                                            "Caf\u00e9 \U0001F33F",
                                            std::string(200'000, '\n') + "x"};
    const TemporaryFolder folder;
    cli::Output output(folder.file("result.json"));
    cli::JsonWriter writer(output);
    writer.beginArray();
    for (const std::string& each : texts) writer.string(each);
    for (const double number : {0.1, 1e22, 5e-324, -0.0, 8.0}) writer.number(number);
    writer.number(std::numeric_limits<double>::quiet_NaN());
    writer.number(-std::numeric_limits<double>::infinity());
    writer.integer(std::numeric_limits<std::int64_t>::min());
    writer.endArray();
    EXPECT_FALSE(output.finish());
    const std::string text = readBytes(folder.file("result.json"));
    const std::string numbers =
        ",\n  0.1,\n  1e+22,\n  5e-324,\n  -0,\n  8,\n  null,\n  null,\n  "
        "-9223372036854775808\n]\n";
    EXPECT_TRUE(text.ends_with(numbers)) << text.substr(text.size() - numbers.size());
    EXPECT_NE(text.find("Caf\u00e9 \U0001F33F"), std::string::npos) << "UTF-8 stays as it is";
    const nlohmann::json read = nlohmann::json::parse(text);
    for (std::size_t i = 0; i < texts.size(); ++i) EXPECT_EQ(read[i], texts[i]);
}

}  // namespace
}  // namespace zorvel::test
