// The names of a project while it is read: by their numbers, and each text once.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
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
    SharedText shared(std::string_view text) { return texts_->intern(text); }

    [[nodiscard]] NameLedger ledger() const;
    [[nodiscard]] std::shared_ptr<NamePool> pool() const { return texts_; }

  private:
    struct Row {
        std::int64_t id = 0;
        SharedText text;
        std::int64_t uses = 0;
    };
    std::vector<Row> rows_;
    std::shared_ptr<NamePool> texts_ = std::make_shared<NamePool>();
};

}  // namespace zorvel
