#include "ui/kit/file_writing.h"

#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QSaveFile>
#include <QWidget>
#include <utility>

#include "platform/job_queue.h"
#include "ui/kit/alerts.h"

namespace zorvel {

namespace {

// A write that comes to an end of the room tells why only when it is asked to go on.
bool writeBytes(QFileDevice& file, std::string_view bytes) {
    while (!bytes.empty()) {
        const qint64 more = file.write(bytes.data(), static_cast<qint64>(bytes.size()));
        if (more <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(more));
    }
    return true;
}

bool writeAll(QFileDevice& file, const std::function<void(const ByteSink&)>& produce) {
    bool written = true;
    produce([&](std::string_view piece) {
        written = written && writeBytes(file, piece);
        return written;
    });
    return written;
}

QString problemOf(const QFileDevice& file) {
    const QString description = file.errorString();
    return description.isEmpty() ? QStringLiteral("Unknown error") : description;
}

}  // namespace

QString writeWholeFile(const QString& path, const std::function<void(const ByteSink&)>& produce) {
    constexpr auto mode = QIODevice::WriteOnly | QIODevice::Unbuffered;
    const QFileInfo there(path);
    if (there.exists() && !there.isFile() && !there.isDir()) {
        QFile device(path);
        return device.open(mode) && writeAll(device, produce) ? QString() : problemOf(device);
    }
    QSaveFile file(path);
    const bool saved = file.open(mode) && writeAll(file, produce) && file.commit();
    return saved ? QString() : problemOf(file);
}

QString writeWholeFile(const QString& path, const QByteArray& bytes) {
    const std::string_view all(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    return writeWholeFile(path, [all](const ByteSink& sink) { sink(all); });
}

// The queue itself receives, since the window may have gone.
void writeInBackground(JobQueue& jobs, Alerts& alerts, QWidget* window, const QString& path,
                       const QString& failure, std::function<void(const ByteSink&)> produce,
                       std::function<void(bool there)> written) {
    jobs.startWrite(
        &jobs, [path, produce = std::move(produce)] { return writeWholeFile(path, produce); },
        [&alerts, parent = QPointer<QWidget>(window), failure,
         written = std::move(written)](const QString& problem) {
            written(problem.isEmpty());
            if (!problem.isEmpty()) alerts.warn(parent, failure, problem);
        });
}

}  // namespace zorvel
