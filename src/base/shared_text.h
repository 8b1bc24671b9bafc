// An immutable text shared by all who hold it: a name that stands in thousands of records is kept
// once. Copying costs a reference count; reading costs nothing. Safe to share between threads.
#pragma once

#include <memory>
#include <string>
#include <string_view>

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

}  // namespace zorvel
