// Questions, choices and warnings that wait for an answer, and the writing of files whose failure
// is such a warning. Main thread.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>

#include "base/files.h"

class QWidget;

namespace zorvel {

class JobQueue;

// The base of everything that asks the user: its users hold references, so it is not copied.
class Panel {
  public:
    Panel() = default;
    Panel(const Panel&) = delete;
    Panel& operator=(const Panel&) = delete;
    virtual ~Panel() = default;
};

struct Question {
    QString text;             // what is asked, a sentence
    QString informativeText;  // what follows from the answers
    // Left to right in order of importance. Return chooses the first, unless it loses something;
    // Escape and closing choose the last.
    QStringList buttons;
    // The button that loses something, painted differently; -1: none.
    int destructive = -1;
};

// One of a few things, of which one is likely.
struct Choice {
    QString title;            // of the window
    QString text;             // what is asked, a sentence
    QString excerpt;          // what to judge by: lines of a file, shown as they are
    QString informativeText;  // on it
    QStringList options;      // with the letters that choose them; after a tab, what each means
    int preselected = 0;
    QString accept;  // of the button
};

class Alerts : public Panel {
  public:
    // The index of the button chosen. parent may be null, and may be gone afterwards.
    virtual int ask(QWidget* parent, const Question& question);
    // The index of the option chosen; -1 if cancelled.
    virtual int choose(QWidget* parent, const Choice& choice);
    virtual void warn(QWidget* parent, const QString& text, const QString& informativeText);
};

// Whether the file may be replaced; asked only if it exists.
bool mayReplace(Alerts& alerts, QWidget* parent, const QString& path);

// Writes a whole file (see base/files.h) in a job, which quitting waits for. produce must own what
// it reads. An alert with the text `failure` reports a failure, even if the window has closed
// meanwhile. written(): called on the main thread when the file has been written or could not be.
// Queue and alerts must outlive the job; window may be null.
void writeInBackground(
    JobQueue& jobs, Alerts& alerts, QWidget* window, const QString& path, const QString& failure,
    ByteProducer produce, std::function<void(bool there)> written = [](bool) {});

}  // namespace zorvel
