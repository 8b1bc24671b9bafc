// Writes a whole file: what stood there before is replaced by all of the bytes, or stays as it was.
// Waits for the disk: for a job, not for the main thread.
#pragma once

#include <QByteArray>
#include <QString>

namespace zorvel {

// Empty where the bytes have reached the disk, otherwise the system's description of what went
// wrong. A device or pipe, which cannot be replaced, is written to as it is.
QString writeWholeFile(const QString& path, const QByteArray& bytes);

}  // namespace zorvel
