#include "platform/saving.h"

#include <utility>

#include "platform/file_names.h"
#include "platform/job_queue.h"

namespace zorvel {

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

void closeInBackground(const SaveServices& services, QObject* receiver,
                       std::shared_ptr<FileHolder>& holder, const QString& deleteAt,
                       std::function<void()> done) {
    services.writer->start(
        receiver,
        [closing = std::exchange(holder, std::make_shared<FileHolder>()),
         path = encodedPath(deleteAt)] {
            closeProject(*closing, path);
            return true;
        },
        [done = std::move(done)](bool) { done(); });
}

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

}  // namespace zorvel
