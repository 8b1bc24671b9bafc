// Parts of the main view: the list of work that runs in the background, and the search field. Main
// thread.
#pragma once

#include <QLineEdit>
#include <QList>
#include <QString>
#include <functional>

namespace zorvel {

// The work whose text the progress line shows. Each has a number, so that one can end while others
// go on.
class RunningWork {
  public:
    // Returns the number of the work, never 0. isImport: it changes the project, and nothing of it
    // is stored if it is cancelled.
    int start(const QString& text, std::function<void()> cancel, bool isImport);
    // Does nothing if the work does not run.
    void stop(int number);

    [[nodiscard]] bool isEmpty() const { return works_.isEmpty(); }
    [[nodiscard]] bool hasOther(int number) const;
    // Of the work started last; empty if nothing runs.
    [[nodiscard]] QString text() const { return isEmpty() ? QString() : works_.back().text; }
    [[nodiscard]] bool hasImport() const;
    void cancelImports() const;
    // Cancels the work started last; null if that is not possible.
    [[nodiscard]] std::function<void()> cancel() const {
        return isEmpty() ? nullptr : works_.back().cancel;
    }

  private:
    struct Work {
        int number = 0;
        QString text;
        std::function<void()> cancel;
        bool isImport = false;
    };

    QList<Work> works_;
    int started_ = 0;
};

// Filters the species while the user types. Escape clears it, and leaves it if it is empty; Down
// and Return go to the species found.
class SearchField : public QLineEdit {
    Q_OBJECT
  public:
    using QLineEdit::QLineEdit;

  signals:
    // To the table; first: to its first row.
    void leaveRequested(bool first);

  protected:
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace zorvel
