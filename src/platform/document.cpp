#include "platform/document.h"

#include <QMetaObject>

#include "model/file_messages.h"
#include "platform/document_controller.h"
#include "platform/file_names.h"
#include "store/object_context.h"
#include "store/project_file.h"

namespace zorvel {

// Changes are announced in the next turn of the event loop.
Document::Document(const SaveServices& services, DocumentController& controller,
                   QString untitledName, QString untitledPath)
    : controller_(controller),
      services_(services),
      project_([&controller](std::function<void()> action) {
          QMetaObject::invokeMethod(&controller, std::move(action), Qt::QueuedConnection);
      }),
      opening_(project_.objectContext().frozenCopy()),
      untitledName_(std::move(untitledName)),
      untitledPath_(std::move(untitledPath)),
      aside_(services),
      savedRevision_(revision()) {
    project_.objectContext().addObserver([this](const ChangeSet&) { noteChange(); });
    for (QTimer* timer : {&timer_, &asideTimer_, &typingTimer_}) timer->setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, &Document::tick);
    connect(&asideTimer_, &QTimer::timeout, this, &Document::keepAside);
    connect(&typingTimer_, &QTimer::timeout, this, &Document::checkDrafts);
    connect(&aside_, &AsideCopy::didChange, this, &Document::asideDidChange);
}

Document::~Document() {
    if (!ending_) release(false);
}

void Document::takeOver(ProjectRecords records) {
    ObjectContext& context = project_.objectContext();
    context.adopt(std::move(records));
    opening_ = context.frozenCopy();
    savedRevision_ = revision();
}

void Document::setFile(std::unique_ptr<ProjectFile> file, bool untitled) {
    file_ = factsOf(*file);
    holder_->file = std::move(file);
    if (untitled) untitledPath_ = file_->path;
    backupDue_ = !untitled;
}

QString Document::displayName() const {
    return isUntitled() ? untitledName_ : displayNameOf(path());
}

QString Document::path() const {
    return file_ && untitledPath_.isEmpty() ? file_->path : QString();
}

bool Document::isUntouched() const {
    const ObjectContext& context = project_.objectContext();
    return isUntitled() && !worthKeeping_ && !context.canUndo() && !context.isStepOpen();
}

QString Document::asideNote() const {
    if (aside_.problem()) {
        return "They cannot be kept in your data folder either. " +
               QString::fromStdString(fileMessage(*aside_.problem()));
    }
    if (!aside_.exists()) return {};
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
    const bool livesThere = holder && !isUntitled() && !isMakingFile() &&
                            fileIdentity(encodedPath(this->path())) == identity;
    if (livesThere && saveState() != SaveState::stuck) {
        saveThen(std::move(done));
    } else {
        moveTo(path, std::move(done));
    }
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
    if (isUntitled() || file_->projectId.isEmpty()) return {};
    return services_.backupFolder + "/" + file_->projectId;
}

}  // namespace zorvel
