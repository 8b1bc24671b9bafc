// The open projects of this run: makes, opens, recovers and closes them, and knows the recent ones.
// It owns the documents. Files are read and checked in the background; what comes of it is told by
// signals. Main thread.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <chrono>
#include <vector>

#include "platform/document.h"

namespace zorvel {

class JobQueue;

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
    DocumentController(JobQueue& jobs, Folders folders);
    ~DocumentController() override;

    // An empty untitled project.
    Document& newDocument();

    // Opens a project, or any text file of counts as an untitled project of what is in it. A
    // project that is open already, by this path or another, is not opened twice: documentDidOpen
    // tells of the one that is there. Exactly one of documentDidOpen and openDidFail follows, at
    // once or later.
    void open(const QString& path);

    // Opens each untitled project that an earlier run has left and no other run has open now.
    void recover();

    // The records of a document, or of a backup, as a new untitled project.
    Document& duplicate(const Document& document);
    void openBackup(const QString& path, const QString& displayName);

    // Forgets the document; what still waits is written first, in the background. An untitled
    // project with edits is kept for the next run, or with discard deleted.
    void close(Document& document);
    void discard(Document& document);

    // For quitting: writes all that waits, and waits for it no longer than atMost. The documents
    // whose last changes are not on the disk; empty where all is safe.
    std::vector<Document*> finish(std::chrono::milliseconds atMost);

    [[nodiscard]] std::vector<Document*> documents() const;
    // Paths of projects and text files, newest first; those that are no longer there are left out.
    [[nodiscard]] QStringList recentPaths() const;
    void clearRecentPaths();

  signals:
    // path: as given to open(); empty for a recovered or duplicated project.
    void documentDidOpen(zorvel::Document* document, const QString& path);
    // message: whole, for the person, with the file's name.
    void openDidFail(const QString& path, const QString& message);
    void recentPathsDidChange();
};

}  // namespace zorvel
