#include "model/file_messages.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <set>
#include <string>

namespace zorvel {
namespace {

TEST(FileMessages, EachTroubleHasItsOwnSentences) {
    std::set<std::string> texts;
    const int last = static_cast<int>(FileTrouble::other);
    for (int trouble = 0; trouble <= last; ++trouble) {
        const std::string text = fileTroubleText(static_cast<FileTrouble>(trouble));
        EXPECT_TRUE(texts.insert(text).second) << text;
        EXPECT_TRUE(text.ends_with('.')) << text;
        EXPECT_EQ(text.find('\n'), std::string::npos) << text;
    }
}

TEST(FileMessages, DetailAndSystemErrorStandInBrackets) {
    const std::string full = fileTroubleText(FileTrouble::diskFull);
    const std::string system = "No space left on device";
    const struct {
        FileProblem problem;
        std::string message;
    } rows[] = {
        {{FileTrouble::diskFull, "", 0}, full},
        {{FileTrouble::diskFull, "page 3", 0}, full + " (page 3)"},
        {{FileTrouble::diskFull, "", ENOSPC}, full + " (" + system + ")"},
        {{FileTrouble::diskFull, "page 3", ENOSPC}, full + " (page 3: " + system + ")"},
    };
    for (const auto& row : rows) EXPECT_EQ(fileMessage(row.problem), row.message);
}

}  // namespace
}  // namespace zorvel
