// The open projects of this run: makes, opens, recovers and closes them, and knows the recent ones.
// It owns the documents. Files are read and checked in the background; what comes of it is told by
// signals. Main thread.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "model/text_project.h"
#include "platform/document.h"
#include "platform/event_loop_turns.h"
#include "platform/file_names.h"
#include "store/project_file.h"

namespace zorvel {

class JobQueue;
struct FileReading;

class DocumentController : public QObject {
    Q_OBJECT
  public:
    // Where untitled projects and backups live; folders are made when needed.
    struct Folders {
        QString untitled;
        QString backups;
    };
    // In the user's data folder.
    static Folders userFolders();

    // The queue, which reads files, must outlive the controller; writing has a thread of its own.
    DocumentController(JobQueue& jobs, Folders folders, const SaveSettings& settings = {});
    // Closes what is open, as close() and finish() with a few seconds do.
    ~DocumentController() override;

    // An empty untitled project.
    Document& newDocument();

    // Opens a project, or any text file of counts as an untitled project of what is in it. A
    // project that is open already, by this path or another, is not opened twice: documentDidOpen
    // tells of the one that is there. Exactly one of documentDidOpen and openDidFail follows, at
    // once or later. kind: of a text file, guessed where there is none; what its format leaves out
    // by its rules is told of by documentDidReadText after documentDidOpen.
    void open(const QString& path, std::optional<FileKind> kind = std::nullopt);

    // Opens each untitled project that an earlier run has left and no other run has open now.
    void recover();

    // The records of a document, or of a backup, as a new untitled project.
    Document& duplicate(const Document& document);
    void openBackup(const QString& path, const QString& displayName);

    // Forgets the document; what still waits is written first, in the background. An untitled
    // project with edits is kept for the next run, or with discard deleted. What a closed document
    // can no longer write to its file stays in its copy aside, of which changesWereKept() tells. Of
    // a project with a file, discard drops what is not in it yet.
    void close(Document& document);
    void discard(Document& document);

    // For quitting: writes all that waits, and waits for it no longer than atMost. The documents
    // whose last changes are not on the disk, closed ones too; empty where all is safe.
    std::vector<Document*> finish(std::chrono::milliseconds atMost);

    [[nodiscard]] std::vector<Document*> documents() const;
    // Paths of projects and text files, newest first; without those known to be missing.
    [[nodiscard]] QStringList recentPaths() const;
    // Looks in the background which of them are still there; recentPathsDidChange() tells.
    void lookForRecentPaths();
    void clearRecentPaths();

  signals:
    // path: as given to open(); empty for a recovered or duplicated project.
    void documentDidOpen(zorvel::Document* document, const QString& path);
    void documentDidReadText(zorvel::Document* document, const QString& path,
                             const zorvel::LeftOut& leftOut);
    // message: whole, for the person, with the file's name.
    void openDidFail(const QString& path, const QString& message);
    void recentPathsDidChange();
    // message: whole, for the person, about a document that was closed.
    void changesWereKept(const QString& message);
    // After documentDidOpen, of a copy that was kept aside; message: whole, what it is.
    void asideDidOpen(zorvel::Document* document, const QString& message);

  private:
    friend class Document;

    enum class Source {
        any,
        untitledFolder,  // one of the user's untitled projects, that was asked for
        recovered,       // the same, found at the start
        backup,
    };
    struct Request {
        QString path;  // as given
        Source source = Source::any;
        QString shownName;
        std::optional<FileIdentity> identity;
        std::optional<FileKind> kind = std::nullopt;  // of a text file
    };

    // Opening (document_opening.cpp).
    void locate(const Request& request);
    void identified(Request request, const std::optional<FileIdentity>& identity);
    void read(const Request& request);
    void finishReading(const Request& request, FileReading& reading);
    void tellFailure(const Request& request, const FileReading& reading);
    void openRecords(const Request& request, FileReading& reading);
    void finishWithOpen(const Request& request, Document& document);
    void addCopy(const Request& request, ProjectRecords records);
    void resumeWaiting();
    [[nodiscard]] bool mustWait(const FileIdentity& identity) const;
    [[nodiscard]] bool isBeingRead(const FileIdentity& identity) const;
    // Of those that are open or closing.
    [[nodiscard]] Document* documentAt(const FileIdentity& identity) const;
    // The one to show for that file, if any.
    Document* reopened(const FileIdentity& identity);

    Document& addDocument(const QString& untitledName, const QString& untitledPath);
    Document& addUntitledCopy(ProjectRecords records, const QString& name);
    // An untouched project keeps its name from a new one, but gives it up to one that is opened.
    [[nodiscard]] QString freeUntitledName(bool forOpened) const;
    void noteRecent(const QString& path);

    using Owned = std::vector<std::unique_ptr<Document>>;
    [[nodiscard]] std::vector<Document*> openAndClosing() const;
    // Null if the document is not in the list.
    static std::unique_ptr<Document> taken(Owned& from, const Document& document);

    // For documents.
    void saveDocumentAs(Document& document, const QString& path, Document::Done done);
    [[nodiscard]] QString backupFolderOf(const Document& document) const;

    // Closing. A document that is closed stays until its file is let go of.
    void beginClosing(Document& document, bool discard);
    void continueClosing(Document& document);
    [[nodiscard]] bool isClosing(const Document& document) const;
    void leaveAside(Document& document);
    void forget(Document& document);
    [[nodiscard]] bool hasWorkToFinish() const;
    [[nodiscard]] std::vector<Document*> unsafeDocuments() const;

    JobQueue& jobs_;
    Folders folders_;
    std::unique_ptr<JobQueue> writer_;
    SaveServices services_;
    EventLoopTurns turns_;
    UntitledFolder untitled_;
    RecentPaths recent_;
    bool lookingForRecent_ = false;
    Owned documents_;
    Owned closing_;
    Owned gone_;  // until the turn is over in which their files were let go of
    std::vector<FileIdentity> reading_;
    std::vector<Request> waiting_;
};

}  // namespace zorvel
