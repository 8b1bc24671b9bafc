#include "ui/kit/shown_text.h"

namespace zorvel {

namespace {
constexpr int longestRun = 16;  // characters that fit on a line of the narrowest panel
constexpr QChar zeroWidthSpace(0x200B);
}  // namespace

QString shortened(const QString& text, qsizetype limit) {
    if (text.size() <= limit) return text;
    QString start = text.left(limit - 3);
    if (!start.isEmpty() && start.back().isHighSurrogate()) start.chop(1);
    return start + "...";
}

QString breakable(const QString& text) {
    QString broken;
    broken.reserve(text.size() + text.size() / longestRun);
    int run = 0;
    for (const QChar character : text) {
        if (run >= longestRun && !character.isLowSurrogate()) {
            broken += zeroWidthSpace;
            run = 0;
        }
        broken += character;
        run = character.isSpace() ? 0 : run + 1;
    }
    return broken;
}

}  // namespace zorvel
