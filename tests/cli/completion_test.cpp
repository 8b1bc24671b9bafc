// The completion for bash, asked as bash asks it.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "tool.h"

namespace zorvel::test {
namespace {

const std::string completionFile = ZORVEL_SOURCE_DIR "/packaging/bash-completion/zorvel-cli";

// What bash would offer for the last of the words, sorted.
std::vector<std::string> offered(std::vector<std::string> words) {
    words.insert(words.begin(),
                 {"bash", "-c",
                  "source \"$0\"; COMP_WORDS=(zorvel-cli \"$@\"); COMP_CWORD=$#; "
                  "_zorvel_cli; [[ ${#COMPREPLY[@]} == 0 ]] || printf '%s\\n' \"${COMPREPLY[@]}\"",
                  completionFile});
    const Ran ran = runProgram(words);
    EXPECT_EQ(ran.exitCode, 0);
    EXPECT_EQ(ran.err, "");
    std::istringstream lines(ran.out);
    std::vector<std::string> replies;
    for (std::string line; std::getline(lines, line);) replies.push_back(line);
    std::sort(replies.begin(), replies.end());
    return replies;
}

TEST(Completion, OffersWhatMayStandThere) {
    using Words = std::vector<std::string>;
    struct Row {
        Words words;
        Words replies;
    };
    const std::vector<Row> rows = {
        {{""}, {"import", "matrix", "metrics", "project", "rarefaction", "records", "summary"}},
        {{"m"}, {"matrix", "metrics"}},
        {{"--kind", "list", "su"}, {"summary"}},
        {{"--kind", "=", "list", "su"}, {"summary"}},
        {{"--s"}, {"--seed", "--size"}},
        {{"--v"}, {"--version"}},
        {{"rarefaction", "--s"}, {"--samples", "--seed", "--size"}},
        {{"summary", "--c"}, {"--census"}},
        {{"summary", "--sa"}, {}},
        {{"matrix", "--j"}, {}},
        {{"metrics", "--j"}, {"--json"}},
        {{"import", "a.csv", "-"}, {"--help", "--into", "--kind"}},
        {{"import", "--into", "thr"}, {"three.csv"}},
        {{"--kind", "list", "import", "--into", "m", "thr"}, {"three.csv"}},
        {{"metrics", "--kind", ""}, {"census", "ios", "list", "matrix"}},
        {{"metrics", "--kind", "="}, {"census", "ios", "list", "matrix"}},
        {{"metrics", "--kind", "=", "m"}, {"matrix"}},
        {{"metrics", "--kind=m"}, {"matrix"}},
        {{"metrics", "--size", ""}, {}},
        {{"metrics", "thr"}, {"three.csv"}},
        {{"metrics", "--output", "thr"}, {"three.csv"}},
        {{"summary", "--census", "m", "thr"}, {"three.csv"}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(offered(row.words), row.replies) << ::testing::PrintToString(row.words);
    }
}

TEST(Completion, IsRegistered) {
    const Ran ran =
        runProgram({"bash", "-c", "source \"$0\"; complete -p zorvel-cli", completionFile});
    EXPECT_EQ(ran.out, "complete -F _zorvel_cli zorvel-cli\n");
}

}  // namespace
}  // namespace zorvel::test
