// Surroundings for a program with windows that nobody sees: no display, no desktop, and the user's
// folders in a temporary place. To be made before the QApplication, and to outlive it.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>

namespace zorvel {

class OffscreenHome {
  public:
    OffscreenHome() {
        for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
            qputenv(name, home_.path().toUtf8());
        }
        QFile::setPermissions(home_.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("XDG_RUNTIME_DIR", home_.path().toUtf8());
        qputenv("QT_QPA_PLATFORM", "offscreen");
        qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    }

  private:
    QTemporaryDir home_;
};

}  // namespace zorvel
