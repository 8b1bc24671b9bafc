#include "base/console.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace zorvel {
namespace {

TEST(Console, LinesOfOneCallStandTogether) {
    std::vector<std::string> lines;
    setConsoleSink([&](std::string_view line) { lines.emplace_back(line); });
    constexpr int calls = 500;
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 3; ++writer) {
        writers.emplace_back([writer] {
            const std::string name = std::to_string(writer);
            for (int i = 0; i < calls; ++i) writeConsoleLines({name + " first", name + " second"});
        });
    }
    for (std::thread& writer : writers) writer.join();
    setConsoleSink({});
    ASSERT_EQ(lines.size(), 2U * 3U * calls);
    for (std::size_t i = 0; i < lines.size(); i += 2) {
        EXPECT_EQ(lines[i + 1], lines[i].substr(0, 2) + "second");
    }
}

TEST(Console, WithoutASinkLinesGoToStandardOutput) {
    testing::internal::CaptureStdout();
    writeConsoleLine("WARNING: one\x1b");
    writeConsoleLines({"two", ""});
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "WARNING: one\\x1b\ntwo\n\n");
}

}  // namespace
}  // namespace zorvel
