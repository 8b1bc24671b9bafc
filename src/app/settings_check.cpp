#include "app/settings_check.h"

#include <QFile>
#include <QFileInfo>
#include <QSettings>

#include "base/console.h"

namespace zorvel {

namespace {

void tell(const char* trouble, const QString& path) {
    writeConsoleLine("WARNING: " + std::string(trouble) + ": " + path.toStdString());
}

void keepDamaged(const QString& path) {
    const QString copy = path + ".damaged";
    // The latest damage is what somebody may want to mend.
    QFile::remove(copy);
    if (QFile::copy(path, copy)) {
        tell("the settings could not be read; a copy of the damaged file was kept", copy);
    } else {
        tell("the settings could not be read, nor a copy of the damaged file made", path);
    }
}

}  // namespace

void checkSettings() {
    const QSettings settings;
    static_cast<void>(settings.allKeys());  // sections are parsed when they are first asked for
    const QString path = settings.fileName();
    const QFileInfo file(path);
    if (settings.status() == QSettings::FormatError) {
        keepDamaged(path);
    } else if (file.exists() && (!file.isFile() || !file.isReadable())) {
        tell("the settings could not be read", path);
    }
    if (!settings.isWritable()) tell("settings cannot be stored", path);
}

}  // namespace zorvel
