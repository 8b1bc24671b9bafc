// The manual pages: well-formed, and true to the tool.
#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "tool.h"

namespace zorvel::test {
namespace {

const std::string manualFolder = ZORVEL_SOURCE_DIR "/packaging/man/";

TEST(Manual, PagesHaveNoWarnings) {
    if (runProgram({"groff", "--version"}).exitCode != 0) GTEST_SKIP() << "groff is missing";
    for (const char* page : {"zorvel-cli.1", "zorvel.1"}) {
        const Ran ran =
            runProgram({"groff", "-man", "-Tutf8", "-ww", "-P-cbou", manualFolder + page});
        EXPECT_EQ(ran.exitCode, 0);
        EXPECT_EQ(ran.err, "");
        EXPECT_NE(ran.out.find("\nSEE ALSO\n"), std::string::npos);
    }
}

TEST(Manual, NamesEveryOptionOfTheHelpAndNoOther) {
    const std::regex option("--[a-z]+");
    const auto optionsIn = [&option](const std::string& text) {
        std::set<std::string> found;
        for (std::sregex_iterator it(text.begin(), text.end(), option), end; it != end; ++it) {
            found.insert(it->str());
        }
        return found;
    };
    std::string help = runTool({"--help"}).out;
    for (const char* command : {"rarefaction", "import"}) help += runTool({command, "--help"}).out;
    const std::string page =
        std::regex_replace(readBytes(manualFolder + "zorvel-cli.1"), std::regex("\\\\-"), "-");
    const std::string completion =
        readBytes(ZORVEL_SOURCE_DIR "/packaging/bash-completion/zorvel-cli");
    EXPECT_EQ(optionsIn(page), optionsIn(help));
    EXPECT_EQ(optionsIn(completion), optionsIn(help));
}

}  // namespace
}  // namespace zorvel::test
