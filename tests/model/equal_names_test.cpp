#include "model/equal_names.h"

#include <gtest/gtest.h>

namespace zorvel {
namespace {

TEST(EqualNames, MarksAllThatShareAName) {
    const std::vector<std::string> texts = {
        "Abies", "\u00C9pic\u00E9a", "abies", "E\u0301pice\u0301a", "Abies", "", ""};
    std::vector<const std::string*> names = {nullptr, nullptr};
    for (const std::string& text : texts) names.push_back(&text);
    EXPECT_EQ(equalNames(names),
              (std::vector<bool>{false, false, true, true, false, true, true, true, true}));
    EXPECT_TRUE(equalNames({}).empty());
}

}  // namespace
}  // namespace zorvel
