// The program's look, light or dark, by the user's choice, which is applied at once and kept for
// the next run. It may be to follow the desktop: as the session's settings portal says, at start
// and at each change, or without one as the palette says that the desktop gave the program. The
// portal is never waited for. Created once, before the first window. Main thread.
#pragma once

#include <QObject>

#include "ui/kit/look.h"

class QApplication;
class QDBusVariant;

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

  private slots:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

  private:
    void askPortal();
    void take(uint preference);
    void apply();

    QApplication& application_;
    ColorScheme fromPalette_;
    ColorScheme desktop_;  // what the desktop prefers
    Choice choice_ = followDesktop;
};

}  // namespace zorvel
