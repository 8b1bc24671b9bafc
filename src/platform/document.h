// One open project: its records, its file, and how the records get into the file. Every change is
// written within a second, by one background thread, never twice at once; what could not be written
// stays in memory and is tried again at growing intervals. An untitled project has a file in the
// user's data folder from its first edit on. Main thread.
#pragma once

#include <QObject>
#include <QString>
#include <QTimer>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "model/diversity_document.h"
#include "platform/saving.h"

namespace zorvel {

class DocumentController;

class Document : public QObject {
    Q_OBJECT
  public:
    enum class SaveState {
        saved,    // the file holds all there is, or there is nothing to save
        waiting,  // changes will be written in a moment, or are being written
        failed,   // could not be written: problem() tells why; it is tried again
        stuck,    // cannot be written to this file (read-only, gone, changed): save as
    };
    using Done = std::function<void(const std::optional<FileProblem>&)>;

    // The writing thread closes the file, after the jobs already started.
    ~Document() override;

    [[nodiscard]] DiversityDocument& project() { return project_; }
    [[nodiscard]] const DiversityDocument& project() const { return project_; }

    // The file's name without its ending; of an untitled project "Untitled", "Untitled 2", or the
    // name of the text file or project that it came from.
    [[nodiscard]] QString displayName() const;
    // Of the project file; empty while untitled.
    [[nodiscard]] QString path() const;
    [[nodiscard]] bool isUntitled() const { return path().isEmpty(); }
    // Untitled and never edited, or every edit undone: it leaves no file, and an opened project
    // replaces it.
    [[nodiscard]] bool isUntouched() const;

    [[nodiscard]] SaveState saveState() const;
    // Why it could not be written, or could not be opened for writing.
    [[nodiscard]] std::optional<FileProblem> problem() const;

    // While the changes cannot be written: a copy in the user's data folder has all of them and
    // opens at the next start.
    [[nodiscard]] bool isKeptAside() const { return aside_.holds(revision()); }
    // A sentence about that copy, or why there is none; empty if none was needed.
    [[nodiscard]] QString asideNote() const;

    // Writes unsaved changes at once instead of within a second.
    void saveSoon();

    // Text in open editors that is not a change of the records yet: drafts stores it in each copy
    // of the records that is written. Null for none. Call noteTyping() each time the text may have
    // changed and when an editor closes; it is in the file two seconds later.
    void setDrafts(ObjectContext::Edits drafts) { drafts_ = std::move(drafts); }
    void noteTyping();

    // Makes a new file at the path, replacing one that is there; from then on it is the project's
    // file. The old file stays as it was, or is deleted if the project was untitled. On a problem
    // nothing changes. Calls done on the main thread, at once or later, with the problem or with
    // none. A file that is open in another document is not replaced; the project's own file is just
    // written. The last of several calls wins.
    void saveAs(const QString& path, Done done);

    // Restores the records as they were at opening; this can be undone.
    [[nodiscard]] bool canRevert() const;
    void revertToOpening();

    // Of the backups of this project, see backupsIn(); empty for an untitled project.
    [[nodiscard]] QString backupFolder() const;

  signals:
    // The state, or the file and with it the display name.
    void saveStateDidChange();
    // There is no backup of the file as it was at opening; the project itself is saved all the
    // same. At most once per document; message: complete, for the user.
    void backupDidFail(const QString& message);

  private:
    friend class DocumentController;
    // untitledPath: where the file of an untitled project is made when it is first written.
    Document(const SaveServices& services, DocumentController& controller, QString untitledName,
             QString untitledPath);
    // These records count as the state at opening and as saved.
    void takeOver(ProjectRecords records);
    // The project was read from this file.
    void setFile(std::unique_ptr<ProjectFile> file, bool untitled);

    // Saving (document_saving.cpp).

    // Of the records and the drafts.
    [[nodiscard]] std::uint64_t revision() const;
    // The file has another revision, even if only because changes were taken back at once, of which
    // no notice comes.
    [[nodiscard]] bool isUnsaved() const { return revision() != savedRevision_; }
    // The project is being written or moved.
    [[nodiscard]] bool isBeingWritten() const { return writing_ || moves_ > 0; }
    // The writing thread works for this document.
    [[nodiscard]] bool isBusy() const { return isBeingWritten() || ending_ || aside_.isWriting(); }
    // The file is being made or moved: it must not be opened meanwhile.
    [[nodiscard]] bool isMakingFile() const { return moves_ > 0 || (writing_ && !file_); }

    void noteChange();
    void announceState();
    [[nodiscard]] std::shared_ptr<const ObjectContext> stateToWrite();
    void checkDrafts();
    // Calls checkDrafts() now if typing is pending.
    void settleDrafts();
    void keepAside();
    void asideDidChange();
    // The project is written although nothing in it has changed.
    void saveUnchanged();
    // Like saveSoon(), even within a step of undo; does nothing while a write is running.
    void saveNow();
    // Like saveSoon(), and reports the result.
    void saveThen(Done done);
    void reportSaves();
    void tick();
    void write();
    void finishWrite(const WriteOutcome& outcome);
    void fail(const FileProblem& problem);
    void succeed(std::uint64_t revision);
    void retryLater();
    void moveTo(const QString& path, Done done);
    void finishMove(std::uint64_t revision, const WriteOutcome& outcome);
    // Closes the file when the jobs already started are done, and lets the controller know; nothing
    // is written any more. discard: deletes an untitled project's file and the copy aside.
    void release(bool discard);

    DocumentController& controller_;
    const SaveServices& services_;
    DiversityDocument project_;
    std::shared_ptr<const ObjectContext> opening_;
    // While untitled.
    QString untitledName_;
    QString untitledPath_;
    // Untitled, but with contents that must not be lost.
    bool worthKeeping_ = false;
    // The file, which only the writing thread uses; its facts are absent while there is none.
    std::shared_ptr<FileHolder> holder_ = std::make_shared<FileHolder>();
    std::optional<FileFacts> file_;
    bool backupDue_ = false;

    ObjectContext::Edits drafts_;
    QTimer typingTimer_;
    bool draftsWritten_ = false;  // the state written last had some
    std::uint64_t draftRevision_ = 0;

    // From the first failure on, until the changes are in the file or the user discards them.
    AsideCopy aside_;
    QTimer asideTimer_;

    // Inactive while the next write is due: it follows the one that is running.
    QTimer timer_;
    std::uint64_t savedRevision_;
    bool unsaved_ = false;  // as the notices of changes say
    bool writing_ = false;
    std::uint64_t writtenRevision_ = 0;
    int moves_ = 0;  // that are running
    std::vector<Done> waitingForSave_;

    std::optional<FileProblem> problem_;
    bool stuck_ = false;
    int busyTries_ = 0;
    std::chrono::milliseconds retry_{0};

    // Closed by the user; it exists until its file is closed.
    bool closing_ = false;
    bool ending_ = false;  // release() has been called
};

}  // namespace zorvel
