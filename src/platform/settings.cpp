#include "platform/settings.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QSettings>
#include <QStandardPaths>
#include <QTimer>
#include <algorithm>
#include <utility>

#include "base/console.h"

namespace zorvel {

namespace {

using std::chrono::milliseconds;

constexpr qint64 largestFile = 4 << 20;  // bytes
constexpr milliseconds shortest{100};    // for the thread to end once it has stored

QMap<QString, QVariant>& storedValues() {
    static QMap<QString, QVariant> values;
    return values;
}

SettingsFile*& settingsFile() {
    static SettingsFile* file = nullptr;
    return file;
}

void apply(const QMap<QString, QVariant>& changes, QMap<QString, QVariant>& values) {
    for (auto change = changes.begin(); change != changes.end(); ++change) {
        if (change->isValid()) {
            values.insert(change.key(), *change);
        } else {
            values.remove(change.key());
        }
    }
}

// Replaces an older copy.
QString keepDamaged(const QString& path) {
    const QString copy = path + ".damaged";
    QFile::remove(copy);
    return QFile::copy(path, copy)
               ? "The settings could not be read; a copy of the damaged file was kept: " + copy
               : "The settings could not be read, nor a copy of the damaged file made: " + path;
}

// Empty if the file, or a new one in its place, may be read and written.
QString reasonToRefuse(const QString& path) {
    const QFileInfo file(path);
    if (!file.exists()) return {};
    if (!file.isFile()) return path + " is no regular file";
    if (file.size() > largestFile) return path + " is too large";
    if (!file.isReadable()) return path + " may not be read";
    return {};
}

}  // namespace

QVariant setting(const QString& key, const QVariant& otherwise) {
    return storedValues().value(key, otherwise);
}

void storeSetting(const QString& key, const QVariant& value) {
    apply({{key, value}}, storedValues());
    if (SettingsFile* file = settingsFile()) file->change(key, value);
}

void removeSetting(const QString& key) {
    storeSetting(key, {});
}

void clearSettings() {
    for (const QString& key : storedValues().keys()) removeSetting(key);
}

QString SettingsFile::userPath() {
    QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    // The XDG standard says to ignore a relative folder, which Qt 6.4 takes.
    if (QDir::isRelativePath(folder)) folder = QDir::homePath() + "/.config";
    return folder + "/zorvel/zorvel.ini";
}

SettingsFile::SettingsFile(QString path, milliseconds patience)
    : path_(std::move(path)), late_(new QTimer(this)) {
    settingsFile() = this;
    late_->setSingleShot(true);
    late_->setInterval(patience);
    connect(late_, &QTimer::timeout, this, [this] {
        setProblem(
            QString("The settings are not stored yet and hold until you quit. If %1 is there and "
                    "no other Zorvel runs, remove it.")
                .arg(path_ + ".lock"));
    });
    if (auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance())) {
        connect(application, &QGuiApplication::applicationStateChanged, this,
                [this](Qt::ApplicationState state) {
                    if (state == Qt::ApplicationActive) refresh();
                });
    }
    start();
    thread_.finishWrites(patience);
}

SettingsFile::~SettingsFile() {
    settingsFile() = nullptr;
}

void SettingsFile::refresh() {
    if (!isRunning_) start();
}

void SettingsFile::change(const QString& key, const QVariant& value) {
    changes_.insert(key, value);
    refresh();
}

void SettingsFile::start() {
    isRunning_ = true;
    given_ = std::exchange(changes_, {});
    if (!given_.isEmpty()) late_->start();
    thread_.startWrite(
        this, [path = path_, changes = given_] { return exchange(path, changes); },
        [this](const Outcome& outcome) { take(outcome); });
}

// Runs on the thread, and may wait there for the lock that guards the file.
SettingsFile::Outcome SettingsFile::exchange(const QString& path, const Values& changes) {
    if (const QString reason = reasonToRefuse(path); !reason.isEmpty()) {
        return {{},
                false,
                "The settings are neither read nor stored: " + reason +
                    ". What you set holds until you quit."};
    }
    Outcome outcome;
    QSettings file(path, QSettings::IniFormat);
    static_cast<void>(file.allKeys());  // sections are parsed when they are first asked for
    if (file.status() == QSettings::FormatError) outcome.problem = keepDamaged(path);
    const QFileInfo folder(QFileInfo(path).path());
    const bool isWritable = file.isWritable() && (!folder.exists() || folder.isWritable());
    if (isWritable && !changes.isEmpty()) {
        for (auto change = changes.begin(); change != changes.end(); ++change) {
            change->isValid() ? file.setValue(change.key(), *change) : file.remove(change.key());
        }
        file.sync();
    }
    outcome.isStored = isWritable && file.status() != QSettings::AccessError;
    if (!outcome.isStored) {
        outcome.problem = QString(
                              "The settings cannot be stored and hold until you quit: %1 or its "
                              "folder may not be written.")
                              .arg(path);
    }
    outcome.values.emplace();
    for (const QString& key : file.allKeys()) outcome.values->insert(key, file.value(key));
    return outcome;
}

// Settings made while the thread was working are newer than the file.
void SettingsFile::take(const Outcome& outcome) {
    isRunning_ = false;
    late_->stop();
    // Reading alone does not withdraw a problem.
    if (!given_.isEmpty() || !outcome.problem.isEmpty()) setProblem(outcome.problem);
    if (!outcome.isStored) {
        given_.insert(changes_);
        changes_ = given_;
    }
    if (outcome.values) {
        Values now = *outcome.values;
        apply(changes_, now);
        const bool isNews = now != storedValues();
        storedValues() = now;
        if (isNews) emit valuesDidArrive();
    }
    if (outcome.isStored && !changes_.isEmpty()) start();
}

void SettingsFile::setProblem(const QString& problem) {
    if (problem == problem_) return;
    problem_ = problem;
    if (!problem.isEmpty()) writeConsoleLine("WARNING: " + problem.toStdString());
    emit problemDidChange();
}

bool SettingsFile::finish(milliseconds atMost) {
    const QDeadlineTimer end(atMost);
    if (!changes_.isEmpty()) refresh();
    while (isRunning_ && !end.hasExpired()) thread_.finishWrites(milliseconds(end.remainingTime()));
    return thread_.stop(std::max(milliseconds(end.remainingTime()), shortest));
}

}  // namespace zorvel
