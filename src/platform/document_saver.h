// When an open project is written: a moment after its first change, never twice at once, again at
// growing intervals after a failure. It knows where the project lives and holds its file, which
// the writing thread alone touches. Main thread.
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

#include "platform/aside_copy.h"
#include "platform/project_writes.h"
#include "store/object_context.h"

namespace zorvel {

class JobQueue;
class UntitledFolder;

// How soon documents are written, and again after a failure; and through which layer of SQLite. The
// same for all documents of a run.
struct SaveSettings {
    // From the first change that is not in the file to its writing.
    std::chrono::milliseconds autosave{400};
    // The same for what is typed in an open editor, until it becomes a change.
    std::chrono::milliseconds typing{1500};
    // How often a writing that is due asks whether the open step of undo has ended.
    std::chrono::milliseconds stepPoll{50};
    // Between tries of a file that another program is using just now; after busyTries of them it is
    // a failure like any other.
    std::chrono::milliseconds busyRetry{100};
    int busyTries = 5;
    // After the first failure; doubled with each that follows, up to the last.
    std::chrono::milliseconds firstRetry{1000};
    std::chrono::milliseconds lastRetry{60000};
    // See ProjectFileOptions.
    const char* vfs = nullptr;
};

// What the saving of all documents of a run has in common.
struct SaveServices {
    JobQueue* writer = nullptr;  // of one thread
    SaveSettings settings;
    QString backupFolder;
    UntitledFolder* untitled = nullptr;
};

// What ends by waiting, or by what the user does elsewhere; the rest needs another file.
bool canPassBy(FileTrouble trouble);

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

    // The context must outlive the saver, which takes its state for what need not be written.
    DocumentSaver(ObjectContext& context, const SaveServices& services);
    ~DocumentSaver() override;

    // The project was read from this file. An untitled project lives in its file without a title.
    void setFile(std::unique_ptr<ProjectFile> file, bool untitled);
    // Where an untitled project is made when it is first written.
    void setUntitledPath(const QString& path) { untitledPath_ = path; }
    // The records are what the file holds.
    void setSavedAsItIs() { savedRevision_ = revision(); }
    // The project must get a file though nothing in it has changed.
    void keepAsItIs();

    // Of the project file; empty while untitled.
    [[nodiscard]] QString path() const;
    [[nodiscard]] const QString& untitledPath() const { return untitledPath_; }
    // Absent while there is no file.
    [[nodiscard]] const std::optional<FileFacts>& file() const { return facts_; }
    [[nodiscard]] State state() const;
    [[nodiscard]] std::optional<FileProblem> problem() const;
    // There is something that the file lacks, announced or not.
    [[nodiscard]] bool isUnsaved() const;
    // Something is under way in the writing thread.
    [[nodiscard]] bool isBusy() const { return running_ > 0 || aside_.isWriting(); }
    // From the first failure on a copy is kept in the user's data folder, until the file takes the
    // changes or the user discards them.
    [[nodiscard]] const AsideCopy& aside() const { return aside_; }
    // It holds all there is.
    [[nodiscard]] bool isKeptAside() const { return aside_.holds(revision()); }
    // release() has been called.
    [[nodiscard]] bool isEnding() const { return ending_; }
    // The file is being made or moved: nobody may open what lies there meanwhile.
    [[nodiscard]] bool isMakingFile() const;

    // To be called when the records have changed.
    void noteChange();
    // See document.h.
    void setDrafts(ObjectContext::Edits drafts) { drafts_ = std::move(drafts); }
    void noteTyping();
    // For the names of backups and of the copy aside.
    void setProjectName(const QString& name) { projectName_ = name; }
    // The writing that is due, now.
    void saveSoon();
    // The same, in the middle of a step of undo too; nothing where a write is running.
    void saveNow();
    // The same as saveSoon(), telling what has come of it.
    void saveThen(Done done);
    void moveTo(const QString& path, Done done);
    // Closes the file, when all that was begun before is done; then released() follows, and nothing
    // is written any more. With discard an untitled project's file is deleted, and the copy aside.
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
    void lookAtDrafts();
    // The same now, where it is due later.
    void settleDrafts();
    void keepAside();
    void asideDidChange();
    void tick();
    void write();
    void finishWrite(const WriteOutcome& outcome);
    void finishMove(std::uint64_t revision, const WriteOutcome& outcome);
    void takeFacts(const std::optional<FileFacts>& facts);
    void fail(const FileProblem& problem);
    void succeed(std::uint64_t revision);
    void retryLater();
    void answerSaves();
    [[nodiscard]] std::optional<BackupOrder> backupOrder() const;

    ObjectContext& context_;
    const SaveServices& services_;
    std::shared_ptr<FileHolder> holder_ = std::make_shared<FileHolder>();
    std::optional<FileFacts> facts_;
    QString untitledPath_;
    QString projectName_;
    bool backupDue_ = false;

    ObjectContext::Edits drafts_;
    QTimer typingTimer_;
    bool draftsWritten_ = false;  // the state that was written last has some
    std::uint64_t draftRevision_ = 0;

    AsideCopy aside_;
    QTimer asideTimer_;

    QTimer timer_;
    std::uint64_t savedRevision_;
    bool unsaved_ = false;
    // Jobs under way: at most one write, and any number of moves.
    int running_ = 0;
    int moving_ = 0;
    bool writing_ = false;
    std::uint64_t writtenRevision_ = 0;
    bool dueNow_ = false;
    bool ending_ = false;
    std::vector<Done> asked_;

    std::optional<FileProblem> problem_;
    bool stuck_ = false;
    int busyTries_ = 0;
    std::chrono::milliseconds retry_{0};
};

}  // namespace zorvel
