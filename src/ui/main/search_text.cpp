#include "ui/main/search_text.h"

#include <QList>
#include <QString>
#include <array>
#include <optional>
#include <utility>
#include <vector>

#include "base/text.h"

namespace zorvel {

namespace {

constexpr char32_t cached = 0x3000;  // the scripts with case and accents stand below

// The blocks of accents of the Latin, Greek and Cyrillic scripts. The vowel signs of other scripts
// are letters to whoever types them.
bool isAccent(char32_t c) {
    constexpr std::array<std::pair<char32_t, char32_t>, 5> blocks = {
        {{0x0300, 0x036F}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x20D0, 0x20FF}, {0xFE20, 0xFE2F}}};
    for (const auto& [first, last] : blocks) {
        if (c >= first && c <= last) return true;
    }
    return false;
}

// Letters that Unicode does not take apart; folded for case already.
const char* plainLetter(char32_t c) {
    switch (c) {
        case 0x00DF:
            return "ss";
        case 0x00E6:
            return "ae";
        case 0x00F0:
        case 0x0111:
            return "d";
        case 0x00F8:
            return "o";
        case 0x00FE:
            return "th";
        case 0x0127:
            return "h";
        case 0x0131:
            return "i";
        case 0x0142:
            return "l";
        case 0x0153:
            return "oe";
        case 0x0167:
            return "t";
        default:
            return nullptr;
    }
}

std::string foldOf(char32_t character) {
    const QString folded = QString::fromUcs4(&character, 1)
                               .toCaseFolded()
                               .normalized(QString::NormalizationForm_KD)
                               .toCaseFolded();
    std::string fold;
    for (const char32_t part : folded.toUcs4()) {
        if (isAccent(part)) continue;
        const char* plain = plainLetter(part);
        fold += plain ? std::string(plain) : QString::fromUcs4(&part, 1).toStdString();
    }
    return fold;
}

// Made at the first use of a character: to ask Unicode takes a hundred times as long.
void appendFold(std::string& fold, char32_t character) {
    if (character >= cached) {
        fold += foldOf(character);
        return;
    }
    static std::vector<std::optional<std::string>> folds(cached);
    std::optional<std::string>& known = folds[character];
    if (!known) known = foldOf(character);
    fold += *known;
}

char lowered(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// The character of a well-formed text that begins there; moves past it.
char32_t takeCharacter(std::string_view text, std::size_t& at) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(at);
    const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    char32_t character = length == 1 ? first : first & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) character = (character << 6) | (byte(at + i) & 0x3FU);
    at += length;
    return character;
}

}  // namespace

std::string foldedForSearch(std::string_view text) {
    std::string fold;
    fold.reserve(text.size());
    if (isAscii(text) || firstInvalidUtf8(text)) {
        for (const char c : text) fold += lowered(c);
        return fold;
    }
    for (std::size_t i = 0; i < text.size();) {
        const char32_t character = takeCharacter(text, i);
        if (character < 0x80) {
            fold += lowered(static_cast<char>(character));
        } else {
            appendFold(fold, character);
        }
    }
    return fold;
}

bool NameSearch::holds(const SharedText& name, std::string_view folded) {
    const std::string& text = name.str();
    if (isAscii(text)) {
        ascii_.assign(text);
        for (char& c : ascii_) c = lowered(c);
        return ascii_.find(folded) != std::string::npos;
    }
    const auto [form, added] = forms_.try_emplace(&text);
    if (added) form->second = {name, foldedForSearch(text)};
    return form->second.folded.find(folded) != std::string::npos;
}

}  // namespace zorvel
