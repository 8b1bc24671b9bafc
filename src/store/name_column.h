// The names of a project while it is read: by their numbers, and each text once.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "base/shared_text.h"
#include "store/name_ledger.h"

namespace zorvel {

class NameColumn {
  public:
    // Numbers must ascend. False where the text has a number already.
    bool add(std::int64_t id, std::string_view text);
    // The name of that number, used once more; null where there is none.
    const SharedText* use(std::int64_t id);
    // A text without a number of its own: the same one as a name of these bytes.
    SharedText shared(std::string_view text);

    [[nodiscard]] NameLedger ledger() const;
    [[nodiscard]] std::vector<SharedText> all() const;

  private:
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
    struct Row {
        std::int64_t id = 0;
        SharedText text;
        std::int64_t uses = 0;
    };
    std::vector<Row> rows_;
    std::unordered_set<SharedText, BytesHash, BytesEqual> texts_;
};

}  // namespace zorvel
