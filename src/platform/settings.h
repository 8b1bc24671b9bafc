// What the program keeps from run to run, by key. The values in memory are the store: a read or a
// write never waits for a disk or for another program. A SettingsFile brings them into a file of
// the user's; where there is none they last as long as the process. Main thread.
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
// time and store different keys lose nothing. A file that cannot be parsed is copied beside itself,
// as NAME.damaged, before it is replaced. One that cannot be stored to is tried again with the next
// setting, at refresh() and at finish(); until then the values are in memory alone. At most one a
// process.
class SettingsFile : public QObject {
    Q_OBJECT
  public:
    static QString userPath();

    // Reads the file and waits for it, but no longer than patience; what comes later is taken then.
    // After patience a setting that is not stored yet is a problem.
    explicit SettingsFile(QString path,
                          std::chrono::milliseconds patience = std::chrono::seconds(1));
    ~SettingsFile() override;

    // Reads what another program may have stored meanwhile, in the background.
    void refresh();

    // What the user has to know, a sentence or two; empty where all is well. The console has it,
    // too.
    [[nodiscard]] const QString& problem() const { return problem_; }

    // For quitting: waits until all is stored or has failed, but no longer than atMost. False where
    // the thread does not answer: this must then not be destroyed, which would wait on.
    bool finish(std::chrono::milliseconds atMost);

  signals:
    void problemDidChange();
    // The values in memory follow another program, or came late.
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
