#include "ui/kit/file_writing.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace zorvel {

namespace {

// Open for writing, with its own way of ending the write.
template <class File, class Finish>
QString writeAll(File& file, QIODevice::OpenMode mode, const QByteArray& bytes,
                 const Finish& finish) {
    const bool written = file.open(mode) && file.write(bytes) == bytes.size() && finish(file);
    if (written) return {};
    const QString description = file.errorString();
    return description.isEmpty() ? QStringLiteral("Unknown error") : description;
}

}  // namespace

QString writeWholeFile(const QString& path, const QByteArray& bytes) {
    const QFileInfo there(path);
    if (there.exists() && !there.isFile() && !there.isDir()) {
        QFile device(path);
        return writeAll(device, QIODevice::WriteOnly | QIODevice::Unbuffered, bytes,
                        [](QFile&) { return true; });
    }
    QSaveFile file(path);
    return writeAll(file, QIODevice::WriteOnly, bytes,
                    [](QSaveFile& saved) { return saved.commit(); });
}

}  // namespace zorvel
