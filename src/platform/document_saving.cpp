// When an open project is written: soon after its first change, and again at growing intervals
// after a failure.
#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "platform/document.h"
#include "platform/document_controller.h"
#include "platform/file_reading.h"
#include "platform/job_queue.h"

namespace zorvel {

void Document::saveUnchanged() {
    savedRevision_ = revision() - 1;
    unsaved_ = true;
    saveSoon();
}

Document::SaveState Document::saveState() const {
    if (unsaved_ && problem()) return stuck_ || !problem_ ? SaveState::stuck : SaveState::failed;
    return unsaved_ || isBeingWritten() ? SaveState::waiting : SaveState::saved;
}

std::optional<FileProblem> Document::problem() const {
    if (problem_) return problem_;
    return file_ ? file_->whyNotWritable : std::nullopt;
}

std::uint64_t Document::revision() const {
    return project_.objectContext().revision() + draftRevision_;
}

void Document::noteChange() {
    if (ending_) return;
    unsaved_ = true;
    if (!timer_.isActive()) {
        timer_.start(stuck_ ? std::max(services_.settings.autosave, retry_)
                            : services_.settings.autosave);
    }
    if (problem_ && !asideTimer_.isActive()) asideTimer_.start(services_.settings.autosave);
    announceState();
}

void Document::announceState() {
    emit saveStateDidChange();
    controller_.continueClosing(*this);
}

// Not for a project without a file: its file would be in the same folder.
void Document::keepAside() {
    if (ending_ || !problem_ || !file_ || aside_.isWriting() || isKeptAside()) return;
    if (project_.objectContext().isStepOpen()) {
        asideTimer_.start(services_.settings.stepPoll);
        return;
    }
    aside_.write(stateToWrite(), revision(), displayName(), path());
}

void Document::asideDidChange() {
    if (problem_ && !isKeptAside()) {
        const auto pause = services_.settings.autosave;
        asideTimer_.start(aside_.problem() ? std::max(pause, retry_) : pause);
    }
    announceState();
}

void Document::noteTyping() {
    if (!ending_ && !typingTimer_.isActive()) typingTimer_.start(services_.settings.typing);
}

// A draft that was given up is also removed from the file.
void Document::checkDrafts() {
    const bool drafted = drafts_ && project_.objectContext().frozenCopy(drafts_)->revision() != 0;
    if (!drafted && !draftsWritten_) return;
    ++draftRevision_;
    noteChange();
}

void Document::settleDrafts() {
    if (!typingTimer_.isActive()) return;
    typingTimer_.stop();
    checkDrafts();
}

std::shared_ptr<const ObjectContext> Document::stateToWrite() {
    auto state = project_.objectContext().frozenCopy(drafts_);
    draftsWritten_ = state->revision() != 0;
    return state;
}

void Document::saveSoon() {
    if (ending_) return;
    settleDrafts();
    if (!isUnsaved()) return;
    timer_.stop();
    tick();
}

void Document::saveThen(Done done) {
    waitingForSave_.push_back(std::move(done));
    saveSoon();
    if (!isUnsaved() && !isBeingWritten()) reportSaves();
}

void Document::reportSaves() {
    if (unsaved_ && !problem_) return;
    for (const Done& done : std::exchange(waitingForSave_, {})) done(problem_);
}

// A step of undo is one transaction: it is never written in parts.
void Document::tick() {
    if (ending_) return;
    if (project_.objectContext().isStepOpen()) {
        timer_.start(services_.settings.stepPoll);
    } else if (!isBeingWritten()) {
        write();
    }
}

void Document::saveNow() {
    if (ending_) return;
    settleDrafts();
    if (isBeingWritten() || !isUnsaved()) return;
    timer_.stop();
    write();
}

void Document::write() {
    unsaved_ = true;
    writing_ = true;
    writtenRevision_ = revision();
    WriteOrder order{holder_, stateToWrite(), services_.settings.file, untitledPath_};
    if (backupDue_) order.backup = BackupOrder{services_.backupFolder, displayName()};
    services_.writer->start(
        this, [order = std::move(order)] { return writeProject(order); },
        [this](const WriteOutcome& outcome) { finishWrite(outcome); });
    announceState();
}

void Document::finishWrite(const WriteOutcome& outcome) {
    writing_ = false;
    if (outcome.facts) file_ = outcome.facts;
    // If nothing was written either, the next try may still make the backup.
    const bool again = outcome.problem && outcome.backupProblem;
    if (!again && (!file_ || !file_->whyNotWritable)) backupDue_ = false;
    if (outcome.problem) {
        fail(*outcome.problem);
    } else {
        succeed(writtenRevision_);
    }
    reportSaves();
    announceState();
    if (outcome.backupProblem && !again) {
        emit backupDidFail(
            projectMessage(displayName() + " could not be backed up", *outcome.backupProblem));
    }
}

void Document::succeed(std::uint64_t revision) {
    savedRevision_ = revision;
    problem_.reset();
    aside_.drop();
    if (file_) file_->whyNotWritable.reset();
    stuck_ = false;
    busyTries_ = 0;
    retry_ = std::chrono::milliseconds(0);
    unsaved_ = isUnsaved();
    // What changed meanwhile follows at once.
    timer_.stop();
    if (unsaved_) tick();
}

void Document::fail(const FileProblem& problem) {
    const SaveSettings& settings = services_.settings;
    if (problem.trouble == FileTrouble::busy && busyTries_ < settings.busyTries) {
        ++busyTries_;
        timer_.start(settings.busyRetry);
        return;
    }
    busyTries_ = 0;
    problem_ = problem;
    stuck_ = !isTemporary(problem.trouble);
    retryLater();
    keepAside();
}

void Document::retryLater() {
    const SaveSettings& settings = services_.settings;
    const bool first = retry_.count() == 0;
    retry_ = first ? settings.firstRetry : std::min(retry_ * 2, settings.lastRetry);
    timer_.stop();
    if (ending_) return;
    const bool changedMeanwhile = revision() != writtenRevision_;
    if (!stuck_ || changedMeanwhile) timer_.start(retry_);
}

void Document::moveTo(const QString& path, Done done) {
    ++moves_;
    timer_.stop();
    const WriteOrder order{holder_, stateToWrite(), services_.settings.file, untitledPath_};
    services_.writer->start(
        this, [order, to = QFileInfo(path).absoluteFilePath()] { return moveProject(order, to); },
        [this, path, revision = revision(), done = std::move(done)](const WriteOutcome& outcome) {
            finishMove(revision, outcome);
            if (!outcome.problem) controller_.noteRecent(path);
            done(outcome.problem);
        });
    announceState();
}

void Document::finishMove(std::uint64_t revision, const WriteOutcome& outcome) {
    --moves_;
    if (!outcome.problem) {
        if (outcome.facts) file_ = outcome.facts;
        untitledPath_.clear();
        backupDue_ = false;
        succeed(revision);
        reportSaves();
    } else if (isUnsaved() && !ending_ && !timer_.isActive()) {
        timer_.start(std::max(services_.settings.autosave, retry_));
    }
    announceState();
}

void Document::release(bool discard) {
    ending_ = true;
    timer_.stop();
    typingTimer_.stop();
    asideTimer_.stop();
    aside_.drop(!discard);
    // With the path of now: jobs already started may still make or move the untitled file.
    closeInBackground(services_, this, holder_, discard ? untitledPath_ : QString(),
                      [this] { controller_.forget(*this); });
}

}  // namespace zorvel
