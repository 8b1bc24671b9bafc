// Texts kept once each by their bytes, found without making one of what is looked for.
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>
#include <unordered_set>

#include "base/shared_text.h"

namespace zorvel {

struct BytesHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
        return std::hash<std::string_view>{}(text);
    }
};

struct BytesEqual {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const { return a == b; }
};

using TextSet = std::unordered_set<SharedText, BytesHash, BytesEqual>;

}  // namespace zorvel
