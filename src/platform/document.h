// One open project: its records, the file that they live in, and the saving of the one to the
// other. Every change reaches the file within a second, written by one background thread; what
// could not be written stays in memory and is tried again, at growing intervals. An untitled
// project lives in a file in the user's data folder from its first edit on. Main thread.
#pragma once

#include <QObject>
#include <QString>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "model/diversity_document.h"
#include "platform/document_saver.h"

namespace zorvel {

class DocumentController;
class TurnEnd;

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
    // Untitled, and never edited, or every edit undone: leaves no file, and gives way to an opened
    // project.
    [[nodiscard]] bool isUntouched() const;

    [[nodiscard]] SaveState saveState() const { return saver_.state(); }
    // Why it could not be written, or could not be opened for writing.
    [[nodiscard]] std::optional<FileProblem> problem() const { return saver_.problem(); }

    // While the changes cannot be written: a copy in the user's data folder, which opens at the
    // next start, holds all of them.
    [[nodiscard]] bool isKeptAside() const { return saver_.isKeptAside(); }
    // A sentence on that copy, or on why there is none; empty where none was tried.
    [[nodiscard]] QString asideNote() const;

    // Writes at once what waits, instead of within a second.
    void saveSoon() { saver_.saveSoon(); }

    // What is typed in open editors and is no change of the records yet: the drafts store it in
    // each copy of the records that is written. Null for none. noteTyping() is called each time
    // that it may have changed, and when an editor closes; it is in the file two seconds later.
    void setDrafts(ObjectContext::Edits drafts) { saver_.setDrafts(std::move(drafts)); }
    void noteTyping() { saver_.noteTyping(); }

    // A whole new file of that path, in place of one that is there, which the project lives in from
    // then on; the untitled file that it lived in is deleted, another one stays as it was. On a
    // problem all stays as it was. Calls done on the main thread, at once or later, with the
    // problem or with none. A file that is open in another document is not replaced; the file that
    // the project lives in is just written. Of several calls in a row the last one has its way.
    void saveAs(const QString& path, Done done);

    // Makes the records what they were at opening; this can be undone.
    [[nodiscard]] bool canRevert() const;
    void revertToOpening();

    // Of the backups of this project, see backupsIn(); empty for an untitled one.
    [[nodiscard]] QString backupFolder() const;

  signals:
    void displayNameDidChange();
    void saveStateDidChange();
    // There is no backup of what the file held at opening; the project itself is saved all the
    // same. At most once a document; message: whole, for the person.
    void backupDidFail(const QString& message);

  private:
    friend class DocumentController;
    Document(TurnEnd& turns, const SaveServices& services, DocumentController& controller);
    void takeOver(ProjectRecords records);

    DocumentController& controller_;
    DiversityDocument project_;
    std::shared_ptr<const ObjectContext> opening_;
    std::uint64_t openingRevision_ = 0;
    // While untitled.
    QString untitledName_;
    // Untitled, but of contents that must not be lost.
    bool worthKeeping_ = false;
    DocumentSaver saver_;
};

}  // namespace zorvel
