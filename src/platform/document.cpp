#include "platform/document.h"

#include <QMetaObject>
#include <functional>
#include <utility>

#include "model/file_messages.h"
#include "platform/document_controller.h"
#include "platform/document_saver.h"
#include "platform/file_names.h"
#include "platform/file_reading.h"
#include "store/object_context.h"
#include "store/project_file.h"

namespace zorvel {

// Changes are announced in the next turn of the event loop.
Document::Document(const SaveServices& services, DocumentController& controller)
    : controller_(controller),
      project_([&controller](std::function<void()> action) {
          QMetaObject::invokeMethod(&controller, std::move(action), Qt::QueuedConnection);
      }),
      opening_(project_.objectContext().frozenCopy()),
      saver_(project_.objectContext(), services) {
    project_.objectContext().addObserver([this](const ChangeSet&) { saver_.noteChange(); });
    connect(&saver_, &DocumentSaver::stateDidChange, this, &Document::saveStateDidChange);
    connect(&saver_, &DocumentSaver::pathDidChange, this, [this] {
        saver_.setProjectName(displayName());
        emit displayNameDidChange();
    });
    connect(&saver_, &DocumentSaver::backupDidFail, this, [this](const FileProblem& problem) {
        emit backupDidFail(projectMessage(displayName() + " could not be backed up", problem));
    });
}

// These records count as the state at opening and as saved.
void Document::takeOver(ProjectRecords records) {
    ObjectContext& context = project_.objectContext();
    context.adopt(std::move(records));
    opening_ = context.frozenCopy();
    saver_.setSaved();
}

QString Document::displayName() const {
    return isUntitled() ? untitledName_ : displayNameOf(path());
}

bool Document::isUntouched() const {
    const ObjectContext& context = project_.objectContext();
    return isUntitled() && !worthKeeping_ && !context.canUndo() && !context.isStepOpen();
}

QString Document::asideNote() const {
    const AsideCopy& aside = saver_.aside();
    if (aside.problem()) {
        return "They cannot be kept in your data folder either. " +
               QString::fromStdString(fileMessage(*aside.problem()));
    }
    if (!aside.exists()) return {};
    return "Until they are saved, the changes are kept in a copy that opens at the next start.";
}

void Document::saveAs(const QString& path, Done done) {
    const auto identity = fileIdentity(encodedPath(path));
    const Document* holder = identity ? controller_.documentAt(*identity) : nullptr;
    if (identity && (holder ? holder != this : controller_.isBeingRead(*identity))) {
        done(FileProblem{FileTrouble::other, "it is open in another window", 0});
        return;
    }
    // A file that has been renamed to that path is written there as a new file, so that it gets the
    // new path.
    const bool livesThere = holder && !isUntitled() && !saver_.isMakingFile() &&
                            fileIdentity(encodedPath(this->path())) == identity;
    if (livesThere && saver_.state() != SaveState::stuck) {
        saver_.saveThen(std::move(done));
        return;
    }
    saver_.moveTo(path, [&controller = controller_, path,
                         done = std::move(done)](const std::optional<FileProblem>& problem) {
        if (!problem) controller.noteRecent(path);
        done(problem);
    });
}

bool Document::canRevert() const {
    const ObjectContext& context = project_.objectContext();
    return !context.isStepOpen() && context.blocks() != opening_->blocks();
}

void Document::revertToOpening() {
    if (!canRevert()) return;
    ObjectContext& context = project_.objectContext();
    const UndoStep step(context, "Revert");
    context.changeTo(*opening_);
}

QString Document::backupFolder() const {
    const auto& file = saver_.file();
    if (isUntitled() || !file || file->projectId.isEmpty()) return {};
    return controller_.folders_.backups + "/" + file->projectId;
}

}  // namespace zorvel
