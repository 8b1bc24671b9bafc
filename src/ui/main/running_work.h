// What runs in the background, for the one line that tells of it: each piece of work under a name
// of its own, so that the end of one leaves the words of the others. Main thread.
#pragma once

#include <QList>
#include <QString>
#include <functional>

namespace zorvel {

class RunningWork {
  public:
    // Work of that name which runs already has other words from now on, and stands where it stood.
    // isImport: it puts something into the project, which is lost where it is given up.
    void start(const QString& name, const QString& text, std::function<void()> cancel = {},
               bool isImport = false);
    // Nothing where no work of that name runs.
    void stop(const QString& name);

    [[nodiscard]] bool isEmpty() const { return works_.isEmpty(); }
    [[nodiscard]] bool hasOther(const QString& name) const;
    // The words of what began last; empty where nothing runs.
    [[nodiscard]] QString text() const { return isEmpty() ? QString() : works_.back().text; }
    [[nodiscard]] bool hasImport() const;
    void cancelImports() const;
    // How what began last is given up; null where it cannot be.
    [[nodiscard]] std::function<void()> cancel() const {
        return isEmpty() ? nullptr : works_.back().cancel;
    }

  private:
    struct Work {
        QString name;
        QString text;
        std::function<void()> cancel;
        bool isImport = false;
    };
    [[nodiscard]] QList<Work>::iterator find(const QString& name);

    QList<Work> works_;
};

}  // namespace zorvel
