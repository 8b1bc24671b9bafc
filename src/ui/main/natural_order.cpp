#include "ui/main/natural_order.h"

#include <QString>
#include <algorithm>

#include "base/text.h"

namespace zorvel {

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

std::string foldedAscii(std::string_view text) {
    std::string folded(text);
    for (char& c : folded) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return folded;
}

// Neither case nor the form of composed characters matters.
std::string foldedCase(std::string_view text) {
    if (isAscii(text)) return foldedAscii(text);
    const QString folded = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    return folded.toCaseFolded().normalized(QString::NormalizationForm_C).toStdString();
}

}  // namespace

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
