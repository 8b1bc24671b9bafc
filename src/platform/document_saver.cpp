#include "platform/document_saver.h"

#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "platform/file_names.h"
#include "platform/job_queue.h"

namespace zorvel {

namespace {

// Whether a later try may succeed; otherwise another file is needed.
bool isTemporary(FileTrouble trouble) {
    switch (trouble) {
        case FileTrouble::busy:
        case FileTrouble::heldElsewhere:
        case FileTrouble::strangeCompanion:
        case FileTrouble::diskFull:
        case FileTrouble::inputOutput:
        case FileTrouble::other:
            return true;
        default:
            return false;
    }
}

// After the jobs already started; done() follows. deleteAt: the path at which the file is deleted;
// empty if it stays.
template <class Done>
void closeInBackground(const SaveServices& services, QObject* receiver,
                       std::shared_ptr<FileHolder>& holder, const QString& deleteAt, Done done) {
    services.writer->start(
        receiver,
        [closing = std::exchange(holder, std::make_shared<FileHolder>()),
         path = encodedPath(deleteAt)] {
            closeProject(*closing, path);
            return true;
        },
        [done](bool) { done(); });
}

}  // namespace

void AsideCopy::write(std::shared_ptr<const ObjectContext> state, std::uint64_t revision,
                      const QString& name, const QString& path) {
    if (path_.isEmpty()) path_ = services_.untitled->claimNew(name + " (unsaved changes)");
    writing_ = true;
    const WriteOrder order{holder_, std::move(state), services_.settings.file, path_};
    services_.writer->start(
        this, [order, path] { return writeAside(order, path); },
        [this, holder = holder_, revision](const WriteOutcome& outcome) {
            if (holder == holder_) finishWrite(revision, outcome);
        });
}

// A copy that was deleted or changed by another program is made again.
void AsideCopy::finishWrite(std::uint64_t revision, const WriteOutcome& outcome) {
    writing_ = false;
    const bool lost = outcome.problem && exists() && !isTemporary(outcome.problem->trouble);
    if (lost) drop(true);
    problem_ = outcome.problem;
    if (!problem_) held_ = revision;
    emit didChange();
}

void AsideCopy::drop(bool stays) {
    if (path_.isEmpty()) return;
    closeInBackground(services_, this, holder_, stays ? QString() : path_, [] {});
    path_.clear();
    held_.reset();
    problem_.reset();
    writing_ = false;
}

DocumentSaver::DocumentSaver(ObjectContext& context, const SaveServices& services)
    : context_(context), services_(services), aside_(services), savedRevision_(context.revision()) {
    timer_.setSingleShot(true);
    timer_.setTimerType(Qt::PreciseTimer);
    connect(&timer_, &QTimer::timeout, this, [this] { tick(); });
    asideTimer_.setSingleShot(true);
    connect(&asideTimer_, &QTimer::timeout, this, [this] { keepAside(); });
    connect(&aside_, &AsideCopy::didChange, this, &DocumentSaver::asideDidChange);
    typingTimer_.setSingleShot(true);
    connect(&typingTimer_, &QTimer::timeout, this, [this] { checkDrafts(); });
}

// The writing thread closes the file, after the jobs already started.
DocumentSaver::~DocumentSaver() {
    if (!ending_) release(false);
}

void DocumentSaver::setFile(std::unique_ptr<ProjectFile> file, bool untitled) {
    facts_ = factsOf(*file);
    holder_->file = std::move(file);
    if (untitled) untitledPath_ = facts_->path;
    backupDue_ = !untitled;
}

void DocumentSaver::saveUnchanged() {
    savedRevision_ = revision() - 1;
    unsaved_ = true;
    saveSoon();
}

QString DocumentSaver::path() const {
    return facts_ && untitledPath_.isEmpty() ? facts_->path : QString();
}

DocumentSaver::State DocumentSaver::state() const {
    if (unsaved_ && problem()) return stuck_ || !problem_ ? State::stuck : State::failed;
    return unsaved_ || running_ > 0 ? State::waiting : State::saved;
}

std::optional<FileProblem> DocumentSaver::problem() const {
    if (problem_) return problem_;
    return facts_ ? facts_->whyNotWritable : std::nullopt;
}

bool DocumentSaver::isUnsaved() const {
    return revision() != savedRevision_;
}

bool DocumentSaver::isMakingFile() const {
    return moving_ > 0 || (writing_ && !facts_);
}

void DocumentSaver::noteChange() {
    if (ending_) return;
    unsaved_ = true;
    if (!timer_.isActive() && !writeNext_) {
        timer_.start(stuck_ ? std::max(services_.settings.autosave, retry_)
                            : services_.settings.autosave);
    }
    if (problem_ && !asideTimer_.isActive()) asideTimer_.start(services_.settings.autosave);
    emit stateDidChange();
}

// Not for a project without a file: its file would be in the same folder.
void DocumentSaver::keepAside() {
    if (ending_ || !problem_ || !facts_ || aside_.isWriting() || isKeptAside()) return;
    if (context_.isStepOpen()) return asideTimer_.start(services_.settings.stepPoll);
    aside_.write(stateToWrite(), revision(), projectName_, path());
}

void DocumentSaver::asideDidChange() {
    if (problem_ && !isKeptAside()) {
        const auto pause = services_.settings.autosave;
        asideTimer_.start(aside_.problem() ? std::max(pause, retry_) : pause);
    }
    emit stateDidChange();
}

void DocumentSaver::noteTyping() {
    if (!ending_ && !typingTimer_.isActive()) typingTimer_.start(services_.settings.typing);
}

// A draft that was given up is also removed from the file.
void DocumentSaver::checkDrafts() {
    const bool drafted = drafts_ && context_.frozenCopy(drafts_)->revision() != 0;
    if (!drafted && !draftsWritten_) return;
    ++draftRevision_;
    noteChange();
}

void DocumentSaver::settleDrafts() {
    if (!typingTimer_.isActive()) return;
    typingTimer_.stop();
    checkDrafts();
}

std::shared_ptr<const ObjectContext> DocumentSaver::stateToWrite() {
    auto state = context_.frozenCopy(drafts_);
    draftsWritten_ = state->revision() != 0;
    return state;
}

void DocumentSaver::saveSoon() {
    if (ending_) return;
    settleDrafts();
    if (!isUnsaved()) return;
    timer_.stop();
    tick();
}

void DocumentSaver::saveThen(Done done) {
    waitingForSave_.push_back(std::move(done));
    saveSoon();
    if (!isUnsaved() && running_ == 0) reportSaves();
}

void DocumentSaver::reportSaves() {
    if (unsaved_ && !problem_) return;
    for (const Done& done : std::exchange(waitingForSave_, {})) done(problem_);
}

// A step of undo is one transaction: it is never written in parts.
void DocumentSaver::tick() {
    if (context_.isStepOpen()) {
        timer_.start(services_.settings.stepPoll);
    } else if (running_ > 0) {
        writeNext_ = true;
    } else {
        write();
    }
}

void DocumentSaver::saveNow() {
    if (ending_ || running_ > 0) return;
    settleDrafts();
    if (!isUnsaved()) return;
    timer_.stop();
    write();
}

void DocumentSaver::write() {
    writeNext_ = false;
    unsaved_ = true;
    writing_ = true;
    ++running_;
    writtenRevision_ = revision();
    WriteOrder order{holder_, stateToWrite(), services_.settings.file, untitledPath_};
    if (backupDue_) order.backup = BackupOrder{services_.backupFolder, projectName_};
    services_.writer->start(
        this, [order = std::move(order)] { return writeProject(order); },
        [this](const WriteOutcome& outcome) { finishWrite(outcome); });
    emit stateDidChange();
}

void DocumentSaver::finishWrite(const WriteOutcome& outcome) {
    --running_;
    writing_ = false;
    if (outcome.facts) facts_ = outcome.facts;
    // If nothing was written either, the next try may still make the backup.
    const bool again = outcome.problem && outcome.backupProblem;
    if (!again && (!facts_ || !facts_->whyNotWritable)) backupDue_ = false;
    if (outcome.problem) {
        fail(*outcome.problem);
    } else {
        succeed(writtenRevision_);
    }
    reportSaves();
    emit stateDidChange();
    if (outcome.backupProblem && !again) emit backupDidFail(*outcome.backupProblem);
}

void DocumentSaver::succeed(std::uint64_t revision) {
    savedRevision_ = revision;
    problem_.reset();
    aside_.drop();
    if (facts_) facts_->whyNotWritable.reset();
    stuck_ = false;
    busyTries_ = 0;
    retry_ = std::chrono::milliseconds(0);
    unsaved_ = isUnsaved();
    if (ending_) return;
    if (!unsaved_) {
        timer_.stop();
        writeNext_ = false;
    } else if (writeNext_ && running_ == 0) {
        tick();
    } else if (!timer_.isActive()) {
        timer_.start(services_.settings.autosave);
    }
}

void DocumentSaver::fail(const FileProblem& problem) {
    writeNext_ = false;
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

void DocumentSaver::retryLater() {
    const SaveSettings& settings = services_.settings;
    const bool first = retry_.count() == 0;
    retry_ = first ? settings.firstRetry : std::min(retry_ * 2, settings.lastRetry);
    timer_.stop();
    if (ending_) return;
    const bool changedMeanwhile = revision() != writtenRevision_;
    if (!stuck_ || changedMeanwhile) timer_.start(retry_);
}

void DocumentSaver::moveTo(const QString& path, Done done) {
    ++running_;
    ++moving_;
    timer_.stop();
    const WriteOrder order{holder_, stateToWrite(), services_.settings.file, untitledPath_};
    services_.writer->start(
        this, [order, to = QFileInfo(path).absoluteFilePath()] { return moveProject(order, to); },
        [this, revision = revision(), done = std::move(done)](const WriteOutcome& outcome) {
            finishMove(revision, outcome);
            if (done) done(outcome.problem);
        });
    emit stateDidChange();
}

void DocumentSaver::finishMove(std::uint64_t revision, const WriteOutcome& outcome) {
    --running_;
    --moving_;
    if (!outcome.problem) {
        if (outcome.facts) facts_ = outcome.facts;
        untitledPath_.clear();
        backupDue_ = false;
        succeed(revision);
        reportSaves();
    } else if (isUnsaved() && !ending_ && !timer_.isActive()) {
        timer_.start(std::max(services_.settings.autosave, retry_));
    }
    emit stateDidChange();
    if (!outcome.problem) emit pathDidChange();
}

void DocumentSaver::release(bool discard) {
    ending_ = true;
    timer_.stop();
    typingTimer_.stop();
    asideTimer_.stop();
    aside_.drop(!discard);
    ++running_;
    // With the path of now: jobs already started may still make or move the untitled file.
    closeInBackground(services_, this, holder_, discard ? untitledPath_ : QString(), [this] {
        --running_;
        emit released();
    });
}

}  // namespace zorvel
