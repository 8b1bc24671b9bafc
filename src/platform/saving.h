// What the saving of documents consists of: its intervals, the services that all documents share,
// and the copy of a project that is kept aside. Main thread.
#pragma once

#include <QObject>
#include <QString>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "platform/project_writes.h"
#include "store/object_context.h"

namespace zorvel {

class JobQueue;
class UntitledFolder;

// How soon documents are written, and tried again after a failure; the same for all documents of a
// run.
struct SaveSettings {
    // From the first unsaved change to its writing.
    std::chrono::milliseconds autosave{400};
    // From typing in an open editor until it counts as a change.
    std::chrono::milliseconds typing{1500};
    // How often a write checks whether the open step of undo has ended.
    std::chrono::milliseconds stepPoll{50};
    // Between tries of a file that another program is using; after busyTries it is a failure.
    std::chrono::milliseconds busyRetry{100};
    int busyTries = 5;
    // After the first failure; doubled with each one that follows, up to lastRetry.
    std::chrono::milliseconds firstRetry{1000};
    std::chrono::milliseconds lastRetry{60000};
    ProjectFileOptions file;
};

// Shared by all documents of a run.
struct SaveServices {
    JobQueue* writer = nullptr;  // of one thread
    SaveSettings settings;
    QString backupFolder;
    UntitledFolder* untitled = nullptr;
};

// Whether a later try may succeed; otherwise another file is needed.
bool isTemporary(FileTrouble trouble);

// Closes the file after the jobs already started; done() follows if the receiver still exists. The
// holder is a new one afterwards. deleteAt: the path at which the file is deleted; empty if it
// stays.
void closeInBackground(const SaveServices& services, QObject* receiver,
                       std::shared_ptr<FileHolder>& holder, const QString& deleteAt,
                       std::function<void()> done);

// A copy of a project whose own file cannot be written, in the folder of untitled projects. It
// opens at the next start of the program, unless it is dropped before.
class AsideCopy : public QObject {
    Q_OBJECT
  public:
    explicit AsideCopy(const SaveServices& services) : services_(services) {}

    // Makes the copy or brings it up to date; then didChange() follows. Not to be called while the
    // copy is being written. name, path: of the project.
    void write(std::shared_ptr<const ObjectContext> state, std::uint64_t revision,
               const QString& name, const QString& path);
    [[nodiscard]] bool isWriting() const { return writing_; }
    [[nodiscard]] bool holds(std::uint64_t revision) const { return held_ == revision; }
    // There is a copy, of any revision.
    [[nodiscard]] bool exists() const { return held_.has_value(); }
    // Of the last write.
    [[nodiscard]] const std::optional<FileProblem>& problem() const { return problem_; }

    // Closes the copy, and deletes it unless it is to stay.
    void drop(bool stays = false);

  signals:
    void didChange();

  private:
    void finishWrite(std::uint64_t revision, const WriteOutcome& outcome);

    const SaveServices& services_;
    std::shared_ptr<FileHolder> holder_ = std::make_shared<FileHolder>();
    QString path_;
    std::optional<std::uint64_t> held_;
    std::optional<FileProblem> problem_;
    bool writing_ = false;
};

}  // namespace zorvel
