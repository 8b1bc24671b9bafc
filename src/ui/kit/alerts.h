// Questions and warnings that wait for an answer. An interface, so that a test can answer. Main
// thread.
#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace zorvel {

struct Question {
    QString text;             // what is asked, a sentence
    QString informativeText;  // what follows from the answers
    // Left to right in order of importance: the first is what Return chooses unless it loses
    // something, the last what Escape and the closing of the question choose.
    QStringList buttons;
    // The button that loses something, told apart from the others; -1: none.
    int destructive = -1;
};

// One of several things, of which one is likely.
struct Choice {
    QString title;            // of the window
    QString text;             // what is asked, a sentence
    QString excerpt;          // what to judge by: lines of a file, shown as they are
    QString informativeText;  // on it
    QStringList options;      // with the letters that choose them, and what each means after a tab
    int preselected = 0;
    QString accept;  // of the button
};

class Alerts {
  public:
    Alerts() = default;
    Alerts(const Alerts&) = delete;
    Alerts& operator=(const Alerts&) = delete;
    virtual ~Alerts() = default;

    // The place of the button chosen. parent may be null; it may be gone afterwards.
    virtual int ask(QWidget* parent, const Question& question) = 0;
    // The place of the option chosen; -1 where the person cancelled.
    virtual int choose(QWidget* parent, const Choice& choice) = 0;
    virtual void warn(QWidget* parent, const QString& text, const QString& informativeText) = 0;
};

// Whether the file may be replaced; asked only where there is one.
bool mayReplace(Alerts& alerts, QWidget* parent, const QString& path);

class DesktopAlerts final : public Alerts {
  public:
    int ask(QWidget* parent, const Question& question) override;
    int choose(QWidget* parent, const Choice& choice) override;
    void warn(QWidget* parent, const QString& text, const QString& informativeText) override;
};

}  // namespace zorvel
