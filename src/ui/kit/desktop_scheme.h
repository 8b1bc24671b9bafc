// What the desktop prefers, light or dark: as the session's settings portal says, at start and at
// each change, or without one as the palette says that the desktop gave the program. It never waits
// for the portal. Main thread; made before the program's own look is applied.
#pragma once

#include <QObject>

#include "ui/kit/look.h"

class QDBusVariant;

namespace zorvel {

class DesktopScheme : public QObject {
    Q_OBJECT
  public:
    explicit DesktopScheme(QObject* parent = nullptr);

    [[nodiscard]] ColorScheme scheme() const { return scheme_; }

  signals:
    void schemeDidChange();

  private slots:
    void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

  private:
    void askPortal();
    void take(uint preference);

    ColorScheme fromPalette_;
    ColorScheme scheme_;
};

}  // namespace zorvel
