#include "platform/document.h"

#include <QTimer>
#include <utility>

#include "model/file_messages.h"
#include "platform/backups.h"
#include "platform/document_controller.h"
#include "platform/document_saver.h"
#include "platform/file_names.h"
#include "platform/file_reading.h"
#include "store/project_file.h"
#include "store/undo_step.h"

namespace zorvel {

Document::Document(TurnEnd& turns, const SaveServices& services, DocumentController& controller)
    : controller_(controller),
      project_(&turns),
      opening_(project_.objectContext().frozenCopy()),
      saver_(std::make_unique<DocumentSaver>(project_.objectContext(), services)) {
    openingRevision_ = project_.objectContext().revision();
    project_.objectContext().addObserver([this](const ChangeSet&) { noteChange(); });
    watchSaver();
}

Document::~Document() = default;

void Document::watchSaver() {
    connect(saver_.get(), &DocumentSaver::stateDidChange, this, &Document::saveStateDidChange);
    connect(saver_.get(), &DocumentSaver::pathDidChange, this, [this] {
        saver_->setProjectName(displayName());
        emit displayNameDidChange();
    });
    connect(saver_.get(), &DocumentSaver::backupDidFail, this, [this](const FileProblem& problem) {
        emit backupDidFail(
            projectMessage(tr("%1 could not be backed up").arg(displayName()), problem));
    });
}

// As at opening: the saver is told afterwards what it has.
void Document::takeOver(ProjectRecords records) {
    ObjectContext& context = project_.objectContext();
    context.adopt(std::move(records));
    opening_ = context.frozenCopy();
    openingRevision_ = context.revision();
    saver_->setSavedAsItIs();
}

DiversityDocument& Document::project() {
    return project_;
}

const DiversityDocument& Document::project() const {
    return project_;
}

QString Document::displayName() const {
    return isUntitled() ? untitledName_ : displayNameOf(path());
}

QString Document::path() const {
    return saver_->path();
}

bool Document::isUntouched() const {
    const ObjectContext& context = project_.objectContext();
    return isUntitled() && !worthKeeping_ && !context.canUndo() && !context.isStepOpen();
}

Document::SaveState Document::saveState() const {
    return saver_->state();
}

std::optional<FileProblem> Document::problem() const {
    return saver_->problem();
}

bool Document::isKeptAside() const {
    return saver_->isKeptAside();
}

QString Document::asideNote() const {
    const AsideCopy& aside = saver_->aside();
    if (aside.problem()) {
        return tr("They cannot be kept in your data folder either. %1")
            .arg(QString::fromStdString(fileMessage(*aside.problem())));
    }
    return aside.exists() ? tr("Until they are saved, the changes are kept in a copy that opens at "
                               "the next start.")
                          : QString();
}

void Document::saveSoon() {
    saver_->saveSoon();
}

void Document::setDrafts(ObjectContext::Edits drafts) {
    saver_->setDrafts(std::move(drafts));
}

void Document::noteTyping() {
    saver_->noteTyping();
}

void Document::saveAs(const QString& path, Done done) {
    controller_.saveDocumentAs(*this, path, std::move(done));
}

bool Document::canRevert() const {
    const ObjectContext& context = project_.objectContext();
    return !context.isStepOpen() && context.revision() != openingRevision_ &&
           context.blocks() != opening_->blocks();
}

void Document::revertToOpening() {
    if (!canRevert()) return;
    ObjectContext& context = project_.objectContext();
    const UndoStep step(context, "Revert");
    context.changeTo(*opening_);
}

QString Document::backupFolder() const {
    return controller_.backupFolderOf(*this);
}

void Document::noteChange() {
    saver_->noteChange();
    noteHistory();
}

// Nothing tells when a step ends that has changed records before: it is asked until it has.
void Document::noteHistory() {
    const ObjectContext& context = project_.objectContext();
    if (context.isStepOpen()) QTimer::singleShot(50, this, &Document::noteHistory);
    HistoryState now{context.canUndo(), context.canRedo(), context.undoName(), context.redoName()};
    if (now == history_) return;
    history_ = std::move(now);
    emit historyDidChange();
}

}  // namespace zorvel
