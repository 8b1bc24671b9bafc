// The rows of the table of names: the number of each name and how many taxa use it. A name gets its
// row with its first use and loses it with the last. The uses that a write changes count only when
// the write is known to have taken place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/shared_text.h"

namespace zorvel {

class NameLedger {
  public:
    struct Name {
        std::int64_t id = 0;
        std::int64_t uses = 0;  // in the file as it is known to be
        std::int64_t usesAfterwards = 0;
        bool stored = false;  // has a row in the file as it is known to be
        bool touched = false;
    };

    // A row of the table as it was read, used that often. False if the text has a row already.
    bool addStored(const SharedText& text, std::int64_t id, std::int64_t uses);

    // One use more or less; the name's number. A text that is new gets the next number.
    std::int64_t use(const SharedText& text);
    void release(const SharedText& text);

    // The rows that the write must change: calls insert(id, text) and remove(id).
    template <class Insert, class Remove>
    void forEachRowChange(Insert&& insert, Remove&& remove) const {
        for (const Entry* entry : touched_) {
            const Name& name = entry->second;
            if (name.usesAfterwards > 0 && !name.stored) insert(name.id, entry->first);
            if (name.usesAfterwards == 0 && name.stored) remove(name.id);
        }
    }

    // The write has taken place, or it has not. Neither fails.
    void accept() noexcept;
    void revert() noexcept;

  private:
    using Names = std::unordered_map<SharedText, Name, BytesHash>;
    using Entry = Names::value_type;

    Entry& touch(const SharedText& text);
    void settle(bool accepted) noexcept;

    Names names_;
    std::vector<Entry*> touched_;
    std::int64_t nextId_ = 1;
};

}  // namespace zorvel
