// Decides when an open project is written: soon after its first change, never twice at once, and
// again at growing intervals after a failure. Owns the project's file, which only the writing
// thread uses. Main thread.
#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

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

class DocumentSaver : public QObject {
    Q_OBJECT
  public:
    enum class State {
        saved,    // the file holds all there is, or there is nothing to save
        waiting,  // changes will be written in a moment, or are being written
        failed,   // could not be written: problem() tells why; it is tried again
        stuck,    // cannot be written to this file (read-only, gone, changed): save as
    };
    using Done = std::function<void(const std::optional<FileProblem>&)>;

    // The context must outlive the saver; its state now counts as saved.
    DocumentSaver(ObjectContext& context, const SaveServices& services);
    ~DocumentSaver() override;

    // The project was read from this file.
    void setFile(std::unique_ptr<ProjectFile> file, bool untitled);
    // Where an untitled project is made when it is first written.
    void setUntitledPath(const QString& path) { untitledPath_ = path; }
    // The records are what is in the file.
    void setSaved() { savedRevision_ = revision(); }
    // The project is written although nothing in it has changed.
    void saveUnchanged();

    // Of the project file; empty while untitled.
    [[nodiscard]] QString path() const;
    [[nodiscard]] const QString& untitledPath() const { return untitledPath_; }
    // Absent while there is no file.
    [[nodiscard]] const std::optional<FileFacts>& file() const { return facts_; }
    [[nodiscard]] State state() const;
    [[nodiscard]] std::optional<FileProblem> problem() const;
    // There are changes that are not in the file, announced or not.
    [[nodiscard]] bool isUnsaved() const;
    // The writing thread works for this document.
    [[nodiscard]] bool isBusy() const { return running_ > 0 || aside_.isWriting(); }
    // From the first failure on, a copy is kept in the user's data folder, until the changes are in
    // the file or the user discards them.
    [[nodiscard]] const AsideCopy& aside() const { return aside_; }
    // The copy has all changes.
    [[nodiscard]] bool isKeptAside() const { return aside_.holds(revision()); }
    // release() has been called.
    [[nodiscard]] bool isEnding() const { return ending_; }
    // The file is being made or moved: it must not be opened meanwhile.
    [[nodiscard]] bool isMakingFile() const;

    // Call when the records have changed.
    void noteChange();
    // See document.h.
    void setDrafts(ObjectContext::Edits drafts) { drafts_ = std::move(drafts); }
    void noteTyping();
    // For the names of backups and of the copy aside.
    void setProjectName(const QString& name) { projectName_ = name; }
    // Writes unsaved changes now.
    void saveSoon();
    // The same, even within a step of undo; does nothing while a write is running.
    void saveNow();
    // Like saveSoon(), and reports the result.
    void saveThen(Done done);
    void moveTo(const QString& path, Done done);
    // Closes the file when the jobs already started are done; then released() follows, and nothing
    // is written any more. discard: deletes an untitled project's file and the copy aside.
    void release(bool discard);

  signals:
    void stateDidChange();
    void pathDidChange();
    void backupDidFail(const zorvel::FileProblem& problem);
    void released();

  private:
    // Of the records and the drafts.
    [[nodiscard]] std::uint64_t revision() const { return context_.revision() + draftRevision_; }
    [[nodiscard]] std::shared_ptr<const ObjectContext> stateToWrite();
    void checkDrafts();
    // Calls checkDrafts() now if typing is pending.
    void settleDrafts();
    void keepAside();
    void asideDidChange();
    void tick();
    void write();
    void finishWrite(const WriteOutcome& outcome);
    void finishMove(std::uint64_t revision, const WriteOutcome& outcome);
    void fail(const FileProblem& problem);
    void succeed(std::uint64_t revision);
    void retryLater();
    void reportSaves();

    ObjectContext& context_;
    const SaveServices& services_;
    std::shared_ptr<FileHolder> holder_ = std::make_shared<FileHolder>();
    std::optional<FileFacts> facts_;
    QString untitledPath_;
    QString projectName_;
    bool backupDue_ = false;

    ObjectContext::Edits drafts_;
    QTimer typingTimer_;
    bool draftsWritten_ = false;  // the state written last had some
    std::uint64_t draftRevision_ = 0;

    AsideCopy aside_;
    QTimer asideTimer_;

    QTimer timer_;
    std::uint64_t savedRevision_;
    bool unsaved_ = false;
    // Running jobs: at most one write, and any number of moves.
    int running_ = 0;
    int moving_ = 0;
    bool writing_ = false;
    std::uint64_t writtenRevision_ = 0;
    bool writeNext_ = false;
    bool ending_ = false;
    std::vector<Done> waitingForSave_;

    std::optional<FileProblem> problem_;
    bool stuck_ = false;
    int busyTries_ = 0;
    std::chrono::milliseconds retry_{0};
};

}  // namespace zorvel
