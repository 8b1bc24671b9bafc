// The explanation of a value or a plot beside it, and keys that a widget takes before its window.
// Main thread.
#pragma once

#include <QKeySequence>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <utility>

class QPalette;
class QWidget;

namespace zorvel {

class Popover;

struct Explanation {
    QString name;
    QString value;                               // "6.5 for North"
    QStringList paragraphs;                      // those that are empty are left out, as the next
    QList<std::pair<QString, QString>> entries;  // "Formula" and it

    void showIn(Popover& popover, const QPalette& palette) const;
};

// Runs the command when the keys are pressed in the widget, which then takes them before a shortcut
// of its window. For as long as the widget lives.
void addOwnKey(QWidget& widget, const QKeySequence& keys, std::function<void()> command);

}  // namespace zorvel
