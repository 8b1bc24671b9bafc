// What the program keeps from run to run, by key. The values are in memory: a read or a write never
// waits for a disk or for another program. A SettingsFile stores them in a file of the user;
// without one they last as long as the process. Main thread.
#pragma once

#include <QMap>
#include <QObject>
#include <QString>
#include <QVariant>
#include <chrono>

#include "platform/job_queue.h"

class QTimer;

namespace zorvel {

QVariant setting(const QString& key, const QVariant& otherwise = {});
void storeSetting(const QString& key, const QVariant& value);
void removeSetting(const QString& key);
void clearSettings();

// The file of the settings, read and written by a thread of its own. Programs that run at the same
// time and store different keys lose nothing. A file that cannot be parsed is copied to
// NAME.damaged before it is replaced. A file that cannot be written is tried again with the next
// setting, at refresh() and at finish(); until then the values are only in memory. At most one per
// process.
class SettingsFile : public QObject {
    Q_OBJECT
  public:
    static QString userPath();

    // Reads the file and waits for it, but no longer than patience; values that come later are
    // taken then. A setting that is not stored after patience is a problem.
    explicit SettingsFile(QString path,
                          std::chrono::milliseconds patience = std::chrono::seconds(1));
    ~SettingsFile() override;

    // Reads what another program may have stored meanwhile, in the background.
    void refresh();

    // What the user should know, a sentence or two, also written to the console; empty if all is
    // well.
    [[nodiscard]] const QString& problem() const { return problem_; }

    // For quitting: waits until all is stored or has failed, but no longer than atMost. False if
    // the thread does not answer: this must then not be destroyed, which would wait for it.
    bool finish(std::chrono::milliseconds atMost);

  signals:
    void problemDidChange();
    // Another program has changed the values, or they came late.
    void valuesDidArrive();

  private:
    friend void storeSetting(const QString& key, const QVariant& value);
    using Values = QMap<QString, QVariant>;  // invalid: to be removed
    struct Outcome {
        std::optional<Values> values;  // of the file, as they are now
        bool isStored = false;
        QString problem;
    };

    static Outcome exchange(const QString& path, const Values& changes);
    void change(const QString& key, const QVariant& value);
    void start();
    void take(const Outcome& outcome);
    void setProblem(const QString& problem);

    QString path_;
    JobQueue thread_{1};
    QTimer* late_;
    bool isRunning_ = false;
    Values changes_;  // not yet given to the thread
    Values given_;
    QString problem_;
};

}  // namespace zorvel
