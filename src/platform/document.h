// One open project: its records, its file, and how the records get into the file. Every change is
// written within a second, by one background thread; what could not be written stays in memory and
// is tried again at growing intervals. An untitled project has a file in the user's data folder
// from its first edit on. Main thread.
#pragma once

#include <QObject>
#include <QString>
#include <memory>
#include <optional>
#include <utility>

#include "model/diversity_document.h"
#include "platform/document_saver.h"

namespace zorvel {

class DocumentController;

class Document : public QObject {
    Q_OBJECT
  public:
    using SaveState = DocumentSaver::State;
    using Done = DocumentSaver::Done;

    [[nodiscard]] DiversityDocument& project() { return project_; }
    [[nodiscard]] const DiversityDocument& project() const { return project_; }

    // The file's name without its ending; of an untitled project "Untitled", "Untitled 2", or the
    // name of the text file or project that it came from.
    [[nodiscard]] QString displayName() const;
    // Of the project file; empty while untitled.
    [[nodiscard]] QString path() const { return saver_.path(); }
    [[nodiscard]] bool isUntitled() const { return path().isEmpty(); }
    // Untitled and never edited, or every edit undone: it leaves no file, and an opened project
    // replaces it.
    [[nodiscard]] bool isUntouched() const;

    [[nodiscard]] SaveState saveState() const { return saver_.state(); }
    // Why it could not be written, or could not be opened for writing.
    [[nodiscard]] std::optional<FileProblem> problem() const { return saver_.problem(); }

    // While the changes cannot be written: a copy in the user's data folder has all of them and
    // opens at the next start.
    [[nodiscard]] bool isKeptAside() const { return saver_.isKeptAside(); }
    // A sentence about that copy, or why there is none; empty if none was needed.
    [[nodiscard]] QString asideNote() const;

    // Writes unsaved changes at once instead of within a second.
    void saveSoon() { saver_.saveSoon(); }

    // Text in open editors that is not a change of the records yet: drafts stores it in each copy
    // of the records that is written. Null for none. Call noteTyping() each time the text may have
    // changed and when an editor closes; it is in the file two seconds later.
    void setDrafts(ObjectContext::Edits drafts) { saver_.setDrafts(std::move(drafts)); }
    void noteTyping() { saver_.noteTyping(); }

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
    void displayNameDidChange();
    void saveStateDidChange();
    // There is no backup of the file as it was at opening; the project itself is saved all the
    // same. At most once per document; message: complete, for the user.
    void backupDidFail(const QString& message);

  private:
    friend class DocumentController;
    Document(const SaveServices& services, DocumentController& controller);
    void takeOver(ProjectRecords records);

    DocumentController& controller_;
    DiversityDocument project_;
    std::shared_ptr<const ObjectContext> opening_;
    // While untitled.
    QString untitledName_;
    // Untitled, but with contents that must not be lost.
    bool worthKeeping_ = false;
    DocumentSaver saver_;
};

}  // namespace zorvel
