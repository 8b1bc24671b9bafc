#include "model/typed_values.h"

#include <gtest/gtest.h>

namespace zorvel {
namespace {

TEST(TypedName, IsOneLineWithoutSpaceAround) {
    using namespace std::string_view_literals;
    struct Row {
        std::string_view typed;
        std::optional<std::string> stored;
    };
    for (const Row& row : {
             Row{"Abies alba", "Abies alba"}, Row{"  Abies  alba\t", "Abies  alba"},
             Row{"", std::nullopt}, Row{" \t\r\n\u00A0\u3000", std::nullopt},
             Row{"\0\x7F"sv, std::nullopt},
             Row{"Abies\r\nalba\nvar.\u2028x\u0085y", "Abies alba var. x y"},
             Row{"a\0b\x1F"
                 "c\u009Fd"sv,
                 "a b c d"},
             Row{"\u2003\u00C9chinops\u00A0e\u0301\u3000", "\u00C9chinops\u00A0e\u0301"},
             Row{"\u00A0\u0100", "\u0100"},  // bytes C4 80 at the end
             Row{"caf\xC2", "caf\xC2"},      // not UTF-8
         }) {
        EXPECT_EQ(typedName(row.typed), row.stored) << row.typed;
    }
}

}  // namespace
}  // namespace zorvel
