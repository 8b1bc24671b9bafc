// The open projects of this run: makes, opens, recovers, closes and owns them, and knows the recent
// files. Files are read and checked in the background; signals report the results. Main thread.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include "interchange/file_kind.h"
#include "interchange/parsers.h"
#include "platform/document.h"
#include "platform/file_names.h"
#include "store/project_file.h"

namespace zorvel {

class JobQueue;
struct FileReading;
struct NamedFile;

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
    DocumentController(JobQueue& jobs, const Folders& folders, const SaveSettings& settings = {});
    // Closes what is open, like close() and finish() with a short wait.
    ~DocumentController() override;

    // An empty untitled project.
    Document& newDocument();

    // Opens a project, or a text file of counts as an untitled project. A project that is open
    // already, by this path or another, is not opened twice: documentDidOpen names the document
    // that is there. Exactly one of documentDidOpen and openDidFail follows, at once or later.
    // kind: of a text file, guessed if absent; documentDidReadText then reports what its format
    // leaves out.
    void open(const std::shared_ptr<NamedFile>& file, std::optional<FileKind> kind);

    // Opens each untitled project that an earlier run left and no other run has open.
    void recover();

    // The records of a document, or of a backup, as a new untitled project.
    Document& duplicate(const Document& document);
    void openBackup(const QString& path, const QString& displayName);

    // Closes the document; unsaved changes are written first, in the background. An untitled
    // project with edits is kept for the next run. Changes that cannot be written stay in the copy
    // aside, and changesWereKept() follows. discard() drops unsaved changes and untitled projects.
    void close(Document& document);
    void discard(Document& document);

    // For quitting: writes all unsaved changes and waits for that no longer than atMost. Returns
    // the documents, closed ones too, whose last changes are not on the disk.
    std::vector<Document*> finish(std::chrono::milliseconds atMost);

    [[nodiscard]] std::vector<Document*> documents() const;
    // Of the projects and text files that were opened or saved last, kept between runs in the
    // settings: absolute, newest first, without those known to be missing.
    [[nodiscard]] QStringList recentPaths() const;
    // Looks in the background which of them still exist; recentPathsDidChange() follows. The disk
    // may be slow.
    void lookForRecentPaths();
    void clearRecentPaths();

  signals:
    // path: of the file given to open(); empty for a recovered or duplicated project.
    void documentDidOpen(zorvel::Document* document, const QString& path);
    void documentDidReadText(zorvel::Document* document, const QString& path,
                             const zorvel::LeftOut& leftOut);
    // message: complete, for the user, with the file's name.
    void openDidFail(const QString& path, const QString& message);
    void recentPathsDidChange();
    // message: complete, for the user, about a document that was closed.
    void changesWereKept(const QString& message);
    // After documentDidOpen, for a copy that was kept aside; message: complete, what it is.
    void asideDidOpen(zorvel::Document* document, const QString& message);

  private:
    friend class Document;

    enum class Source {
        any,
        untitledFolder,  // one of the user's untitled projects, opened by the user
        recovered,       // the same, found at start-up
        backup,
    };
    struct Request {
        std::shared_ptr<NamedFile> file;
        Source source = Source::any;
        QString shownName;  // of the file, or of the project whose backup it is
        std::optional<FileKind> kind = std::nullopt;  // of a text file

        [[nodiscard]] bool isInFolder() const {
            return source == Source::untitledFolder || source == Source::recovered;
        }
    };

    // Opening (document_opening.cpp).
    void locate(const QString& path, const Request& request);
    void openLocated(const Request& request);
    void read(const Request& request);
    void finishReading(const Request& request, FileReading& reading);
    void reportFailure(const Request& request, const FileReading& reading);
    void openRecords(const Request& request, FileReading& reading);
    void showOpen(const Request& request, Document& document);
    void addCopy(const Request& request, ProjectRecords records);
    void resumeWaiting();
    [[nodiscard]] bool mustWait(const FileIdentity& identity) const;
    [[nodiscard]] bool isBeingRead(const FileIdentity& identity) const;
    [[nodiscard]] Document* documentAt(const FileIdentity& identity) const;
    // The document to show for that file, if any.
    [[nodiscard]] static bool canReopen(const Document& closing);
    Document* reopened(const FileIdentity& identity);

    Document& addDocument(const QString& untitledName, const QString& untitledPath);
    Document& addUntitledCopy(ProjectRecords records, const QString& name);
    // An untouched project keeps its name when a new one is made, but not when one is opened.
    [[nodiscard]] QString freeUntitledName(bool forOpened) const;
    void noteRecent(const QString& path);

    // Closing.
    void beginClosing(Document& document, bool discard);
    // Called each time that the state of a document has changed.
    void continueClosing(Document& document);
    void leaveAside(Document& document);
    void forget(Document& document);
    [[nodiscard]] bool hasWorkToFinish() const;
    [[nodiscard]] std::vector<Document*> unsafeDocuments() const;

    using Owned = std::vector<std::unique_ptr<Document>>;

    JobQueue& jobs_;
    std::unique_ptr<JobQueue> writer_;
    SaveServices services_;
    UntitledFolder untitled_;
    QStringList missingPaths_;    // found by the last look
    QStringList pathsSinceLook_;  // used since it began: they are not missing
    bool lookingForRecent_ = false;
    Owned documents_;  // closed ones too, until their files are closed
    Owned gone_;       // deleted in the next turn of the event loop
    std::vector<FileIdentity> reading_;
    std::vector<Request> waiting_;
};

}  // namespace zorvel
