// Items that another thread makes ahead.
#include "base/threads.h"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace zorvel {
namespace {

// Makes "0", "1" and so on; throws in place of an item.
MadeAhead<std::string> numbersAhead(int count, std::optional<int> thrown = {}) {
    return MadeAhead<std::string>([=, next = 0](std::string& item) mutable {
        if (thrown == next) throw std::runtime_error("no item " + std::to_string(next));
        item = std::to_string(next);
        return ++next < count;
    });
}

TEST(MadeAhead, GivesAllItemsInOrder) {
    for (const int count : {1, 2, 3, 4, 5, 1000}) {
        auto numbers = numbersAhead(count);
        for (int i = 0; i < count; ++i) {
            const std::string* const item = numbers.next();
            ASSERT_NE(item, nullptr);
            EXPECT_EQ(*item, std::to_string(i));
        }
        EXPECT_EQ(numbers.next(), nullptr);
        EXPECT_EQ(numbers.next(), nullptr);
    }
}

TEST(MadeAhead, RethrowsAfterTheItemsBefore) {
    for (const int thrown : {0, 2, 7}) {
        auto numbers = numbersAhead(9, thrown);
        for (int i = 0; i < thrown; ++i) ASSERT_NE(numbers.next(), nullptr);
        EXPECT_THROW(numbers.next(), std::runtime_error);
        EXPECT_THROW(numbers.next(), std::runtime_error);
    }
}

TEST(MadeAhead, MayBeLeftAtAnyItem) {
    for (const int taken : {0, 1, 5}) {
        std::vector<int> made;
        {
            MadeAhead<int> items([&made](int& /*item*/) {
                made.push_back(0);
                return true;
            });
            for (int i = 0; i < taken; ++i) ASSERT_NE(items.next(), nullptr);
        }
        EXPECT_LE(made.size(), static_cast<std::size_t>(taken) + 4);
    }
}

}  // namespace
}  // namespace zorvel
