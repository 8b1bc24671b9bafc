// The user's choice of look, light, dark or the desktop's: applied at once, and kept for the next
// run. Created once, before the first window. Main thread.
#pragma once

#include <QObject>

#include "ui/kit/desktop_scheme.h"

class QApplication;

namespace zorvel {

class LookChoice : public QObject {
    Q_OBJECT
  public:
    enum Choice { light, dark, followDesktop };

    explicit LookChoice(QApplication& application);

    [[nodiscard]] Choice choice() const { return choice_; }
    void choose(Choice choice);

  signals:
    void choiceDidChange();

  private:
    void apply();

    QApplication& application_;
    DesktopScheme desktop_;
    Choice choice_ = followDesktop;
};

}  // namespace zorvel
