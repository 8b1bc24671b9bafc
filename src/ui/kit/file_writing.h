// Writes a whole file: what stood there before is replaced by all of the bytes, or stays as it was.
// To write waits for the disk: for a job, not for the main thread.
#pragma once

#include <QByteArray>
#include <QString>
#include <functional>
#include <string_view>

class QWidget;

namespace zorvel {

class Alerts;
class JobQueue;

// Takes the bytes of a file piece by piece; false once they cannot be written.
using ByteSink = std::function<bool(std::string_view piece)>;

// Empty where the bytes have reached the disk, otherwise the system's description of what went
// wrong. A device or pipe, which cannot be replaced, is written to as it is.
QString writeWholeFile(const QString& path, const QByteArray& bytes);
// The same for a file that is never in memory as a whole. produce hands all of it to the sink, and
// must own what it reads.
QString writeWholeFile(const QString& path, const std::function<void(const ByteSink&)>& produce);

// Writes the file in a job, which quitting waits for. An alert tells of a failure, even where the
// window has gone meanwhile. written(): called on the main thread when the file is there or is not.
// Main thread; queue and alerts must outlive the job, window may be null.
void writeInBackground(
    JobQueue& jobs, Alerts& alerts, QWidget* window, const QString& path, const QString& failure,
    std::function<void(const ByteSink&)> produce,
    std::function<void(bool there)> written = [](bool) {});

}  // namespace zorvel
