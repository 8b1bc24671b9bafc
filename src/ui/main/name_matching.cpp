#include "ui/main/name_matching.h"

#include <QList>
#include <QString>
#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

#include "base/text.h"

namespace zorvel {

namespace {

constexpr char32_t cached = 0x3000;  // scripts with case and accents are below

// The blocks of accents of the Latin, Greek and Cyrillic scripts. The vowel signs of other scripts
// count as letters.
bool isAccent(char32_t c) {
    constexpr std::pair<char32_t, char32_t> blocks[] = {
        {0x0300, 0x036F}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x20D0, 0x20FF}, {0xFE20, 0xFE2F}};
    return std::any_of(std::begin(blocks), std::end(blocks),
                       [c](const auto& block) { return c >= block.first && c <= block.second; });
}

// Lower-case letters without a decomposition in Unicode; null for any other.
const char* plainLetter(char32_t c) {
    constexpr std::pair<char32_t, const char*> letters[] = {
        {0x00DF, "ss"}, {0x00E6, "ae"}, {0x00F0, "d"}, {0x00F8, "o"},
        {0x00FE, "th"}, {0x0111, "d"},  {0x0127, "h"}, {0x0131, "i"},
        {0x0142, "l"},  {0x0153, "oe"}, {0x0167, "t"}};
    const auto* found = std::find_if(std::begin(letters), std::end(letters),
                                     [c](const auto& each) { return each.first == c; });
    return found == std::end(letters) ? nullptr : found->second;
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

// Kept at the first use of a character: asking Unicode takes a hundred times as long.
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

std::string loweredAscii(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lowered);
    return result;
}

// Without case, composed characters as one.
std::string foldedCase(std::string_view text) {
    if (isAscii(text)) return loweredAscii(text);
    return QString::fromUtf8(text)
        .toCaseFolded()
        .normalized(QString::NormalizationForm_C)
        .toStdString();
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

}  // namespace

std::string foldedForSearch(std::string_view text) {
    if (isAscii(text) || firstInvalidUtf8(text)) return loweredAscii(text);
    std::string fold;
    for (const char32_t character : QString::fromUtf8(text).toUcs4()) {
        if (character < 0x80) {
            fold += lowered(static_cast<char>(character));
        } else {
            appendFold(fold, character);
        }
    }
    return fold;
}

// A run of digits becomes the digit 0, its length without leading zeros, and those digits: longer
// is larger, equal lengths compare digit by digit, and the run keeps its place among other
// characters.
std::string naturalKey(std::string_view name) {
    const std::string folded = foldedCase(name);
    std::string key;
    key.reserve(folded.size() + 4);
    for (std::size_t i = 0; i < folded.size();) {
        if (!isDigit(folded[i])) {
            key += folded[i++];
            continue;
        }
        std::size_t end = i;
        while (end < folded.size() && isDigit(folded[end])) ++end;
        while (i + 1 < end && folded[i] == '0') ++i;
        key += '0';
        key += static_cast<char>(std::min<std::size_t>(end - i, 255));
        key.append(folded, i, end - i);
        i = end;
    }
    return key;
}

}  // namespace zorvel
