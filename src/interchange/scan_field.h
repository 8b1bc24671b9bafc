// The fields of a comma-separated text, one call per field. The caller owns the text, which must
// outlive the cursor. One thread per cursor. A text is read once and its bytes are copied only in
// fields that hold a double quote, into a buffer of the cursor no longer than twice the field.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zorvel {

enum class FieldTerminator { comma, lineBreak, endOfInput };

struct ScannedField {
    // A part of the text; where the field holds a double quote, the cursor's buffer, which the next
    // call overwrites.
    std::string_view text;
    FieldTerminator terminator = FieldTerminator::endOfInput;
    std::size_t start = 0;  // the offset of the field's first byte in the text

    // An empty field at the end of a line or of the text: no more than the end itself.
    [[nodiscard]] bool onlyEndsRow() const {
        return text.empty() && terminator != FieldTerminator::comma;
    }
};

class FieldCursor {
  public:
    explicit FieldCursor(std::string_view text) : text_(text) {}

    [[nodiscard]] std::string_view text() const { return text_; }
    // The offset of the first byte not yet read.
    [[nodiscard]] std::size_t position() const { return position_; }
    [[nodiscard]] bool atEnd() const { return position_ == text_.size(); }
    // For a caller that has read some fields itself: `position` begins a field.
    void moveTo(std::size_t position) { position_ = position; }

  private:
    friend ScannedField scanField(FieldCursor& cursor);
    FieldTerminator scanQuoted();
    FieldTerminator endField(std::size_t at);

    std::string_view text_;
    std::size_t position_ = 0;
    std::string unquoted_;
};

// The next field, the cursor moved past it and its terminator:
// - a comma and the spaces after it (only these are trimmed);
// - a run of line breaks, so that empty lines vanish;
// - the end of the text, also within an open quote. At the end already: an empty field.
// Double quotes, anywhere in a field, enclose commas and line breaks that belong to it; a doubled
// quote inside them is one quote.
ScannedField scanField(FieldCursor& cursor);

}  // namespace zorvel
