#include "ui/kit/file_writing.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace zorvel {

namespace {

// A write that comes to an end of the room tells why only when it is asked to go on.
bool writeBytes(QFileDevice& file, const QByteArray& bytes) {
    qint64 written = 0;
    while (written < bytes.size()) {
        const qint64 more = file.write(bytes.constData() + written, bytes.size() - written);
        if (more <= 0) return false;
        written += more;
    }
    return true;
}

QString problemOf(const QFileDevice& file) {
    const QString description = file.errorString();
    return description.isEmpty() ? QStringLiteral("Unknown error") : description;
}

}  // namespace

QString writeWholeFile(const QString& path, const QByteArray& bytes) {
    constexpr auto mode = QIODevice::WriteOnly | QIODevice::Unbuffered;
    const QFileInfo there(path);
    if (there.exists() && !there.isFile() && !there.isDir()) {
        QFile device(path);
        return device.open(mode) && writeBytes(device, bytes) ? QString() : problemOf(device);
    }
    QSaveFile file(path);
    const bool saved = file.open(mode) && writeBytes(file, bytes) && file.commit();
    return saved ? QString() : problemOf(file);
}

}  // namespace zorvel
