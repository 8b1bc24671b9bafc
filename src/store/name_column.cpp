#include "store/name_column.h"

#include <algorithm>

namespace zorvel {

bool NameColumn::add(std::int64_t id, std::string_view text) {
    auto [name, isNew] = texts_->add(text);
    if (isNew) rows_.push_back({id, std::move(name), 0});
    return isNew;
}

const SharedText* NameColumn::use(std::int64_t id) {
    if (rows_.empty() || id < rows_.front().id) return nullptr;
    // Most numbers are in use, so that the row is at or shortly before the place that it would
    // have if all were.
    const std::int64_t first = rows_.front().id;
    const auto size = static_cast<std::int64_t>(rows_.size());
    auto row = rows_.begin() + std::min(id - first, size - 1);
    if (row->id != id) {
        row = std::lower_bound(rows_.begin(), rows_.end(), id,
                               [](const Row& a, std::int64_t wanted) { return a.id < wanted; });
    }
    if (row == rows_.end() || row->id != id) return nullptr;
    ++row->uses;
    return &row->text;
}

NameLedger NameColumn::ledger() const {
    NameLedger ledger;
    for (const Row& row : rows_) ledger.addStored(row.text, row.id, row.uses);
    return ledger;
}

}  // namespace zorvel
