// The windows that belong to no project, such as those of analyses: each stays until the person
// closes it or the program ends. Every one gets the commands to close it, to quit, and for the
// preferences and the help, by their keys. Main thread.
#pragma once

#include <QObject>
#include <QPointer>
#include <functional>
#include <vector>

class QWidget;

namespace zorvel {

class SecondaryWindows : public QObject {
    Q_OBJECT
  public:
    // mayClose(window): asked each time that one is to close; false keeps it open.
    explicit SecondaryWindows(std::function<bool(QWidget& window)> mayClose);
    // The windows go with it, closed ones that wait for their deletion too.
    ~SecondaryWindows() override;

    void add(QWidget& window);
    // Those on the screen.
    [[nodiscard]] std::vector<QWidget*> windows() const;
    void closeAll();

  signals:
    void quitRequested();
    void preferencesRequested();
    void helpRequested();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    std::function<bool(QWidget& window)> mayClose_;
    std::vector<QPointer<QWidget>> windows_;
};

}  // namespace zorvel
