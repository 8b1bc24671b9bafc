// An immutable text that is shared between its copies, so that a name of thousands of records is
// stored once. Copying costs a reference count; reading costs nothing. NamePool returns the one
// text of each name. Both are safe to share between threads.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "base/byte_words.h"
#include "base/numbers.h"

namespace zorvel {

class SharedText {
  public:
    // The empty text.
    SharedText() = default;
    SharedText(std::string_view text)
        : text_(text.empty() ? nullptr : std::make_shared<const std::string>(text)) {}
    SharedText(const std::string& text) : SharedText(std::string_view(text)) {}
    SharedText(const char* text) : SharedText(std::string_view(text)) {}

    [[nodiscard]] const std::string& str() const {
        static const std::string empty;
        return text_ ? *text_ : empty;
    }
    [[nodiscard]] std::string_view view() const { return str(); }
    operator std::string_view() const { return view(); }
    [[nodiscard]] bool empty() const { return !text_; }

    // Equal bytes. For equality of names, see text.h.
    friend bool operator==(const SharedText& a, const SharedText& b) {
        return a.text_ == b.text_ || a.view() == b.view();
    }

  private:
    std::shared_ptr<const std::string> text_;
};

// Hash and equality of texts by their bytes, for look-ups without a copy. For names, this hash is
// faster than that of the standard library.
struct BytesHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const {
        constexpr std::uint64_t odd = 0x9e3779b97f4a7c15U;
        std::uint64_t hash = text.size();
        const auto mix = [&hash](std::uint64_t word) {
            const UInt128 product = UInt128{hash ^ word} * odd;
            hash = static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
            return true;
        };
        if (text.size() >= wordSize) {
            forWords(text.size(), [&](std::size_t i) { return mix(wordAt(text.data() + i)); });
        } else {
            std::uint64_t word = 0;
            for (const char c : text) word = word << 8 | static_cast<unsigned char>(c);
            mix(word);
        }
        return hash;
    }
};
struct BytesEqual {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const { return a == b; }
};

// The names of a project, each text once by its bytes: parsers, readers and edits take their names
// from the pool of the project, on whatever thread. It never shrinks.
class NamePool {
  public:
    SharedText intern(std::string_view name) { return add(name).first; }
    // The same, and whether the name is new.
    std::pair<SharedText, bool> add(std::string_view name) {
        const std::scoped_lock lock(mutex_);
        const auto known = names_.find(name);
        if (known != names_.end()) return {*known, false};
        return {*names_.insert(SharedText(name)).first, true};
    }

  private:
    std::mutex mutex_;
    std::unordered_set<SharedText, BytesHash, BytesEqual> names_;
};

}  // namespace zorvel
