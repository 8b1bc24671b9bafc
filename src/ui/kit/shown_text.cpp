#include "ui/kit/shown_text.h"

#include <QKeyEvent>
#include <QLocale>
#include <algorithm>

namespace zorvel {

namespace {

constexpr QChar lineBreakMark(0x21B5);  // an arrow to the left with a corner
constexpr QChar tabMark(0x21E5);        // an arrow to a bar

// What turns the direction of the text after it.
bool turns(QChar character) {
    const char16_t code = character.unicode();
    return (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

bool isUnseen(QChar character) {
    return character.category() == QChar::Other_Control || character == QChar::LineSeparator ||
           character == QChar::ParagraphSeparator || turns(character);
}

QChar markOf(QChar character) {
    switch (character.unicode()) {
        case '\t':
            return tabMark;
        case '\n':
        case '\v':
        case '\f':
        case '\r':
        case 0x85:
        case QChar::LineSeparator:
        case QChar::ParagraphSeparator:
            return lineBreakMark;
        default:
            return isUnseen(character) ? QChar(QChar::ReplacementCharacter) : character;
    }
}

}  // namespace

QString shortened(const QString& text, qsizetype limit) {
    if (text.size() <= limit) return text;
    QString start = text.left(limit - 3);
    if (!start.isEmpty() && start.back().isHighSurrogate()) start.chop(1);
    return start + "...";
}

QString countText(std::size_t count, const QString& ofOne, const QString& ofMany) {
    return count == 1 ? ofOne : ofMany.arg(QLocale().toString(qulonglong{count}));
}

QStringList countSentences(const QList<CountSentence>& sentences) {
    QStringList texts;
    for (const CountSentence& each : sentences) {
        if (each.count > 0) texts.append(countText(each.count, each.ofOne, each.ofMany));
    }
    return texts;
}

QString oneLine(const QString& text) {
    if (std::none_of(text.begin(), text.end(), isUnseen)) return text;
    QString line = text;
    line.replace("\r\n", "\n");
    std::transform(line.begin(), line.end(), line.begin(), markOf);
    return line;
}

QString withShortWords(const QString& text, qsizetype longest) {
    QString shown;
    for (qsizetype begin = 0; begin < text.size();) {
        qsizetype end = begin;
        while (end < text.size() && !text[end].isSpace()) ++end;
        const QStringView word = QStringView(text).sliced(begin, end - begin);
        if (word.size() <= longest) {
            shown += word;
        } else {
            shown += word.first(longest / 2);
            shown += QChar(0x2026);
            shown += word.last(longest / 2);
        }
        if (end < text.size()) shown += text[end++];
        begin = end;
    }
    return shown;
}

QString inLinesOf(qsizetype longest, const QString& text) {
    QStringList lines;
    for (QString line : text.split('\n')) {
        while (line.size() > longest) {
            const qsizetype space = line.lastIndexOf(' ', longest);
            qsizetype end = space > 0 ? space : longest;
            if (line[end - 1].isHighSurrogate()) --end;
            lines.append(line.left(end));
            line.remove(0, space > 0 ? end + 1 : end);
        }
        lines.append(line);
    }
    return lines.join('\n');
}

QString asWindowTitle(const QString& text) {
    return oneLine(text).replace("[*]", "[*][*]");
}

bool isTypedText(const QKeyEvent& key) {
    // Control with Alt is how some keyboards make their third character.
    const Qt::KeyboardModifiers commands =
        key.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    const bool command =
        commands != Qt::NoModifier && commands != (Qt::ControlModifier | Qt::AltModifier);
    if (command || key.text().isEmpty()) return false;
    const QChar first = key.text().front();
    return first.isPrint() || first.isSurrogate();
}

bool isUndoKey(const QEvent& event) {
    if (event.type() != QEvent::ShortcutOverride) return false;
    const auto& key = static_cast<const QKeyEvent&>(event);
    return key.matches(QKeySequence::Undo) || key.matches(QKeySequence::Redo);
}

}  // namespace zorvel
