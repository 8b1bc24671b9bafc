#include "platform/aside_copy.h"

#include <utility>

#include "platform/document_saver.h"
#include "platform/file_names.h"
#include "platform/job_queue.h"

namespace zorvel {

void AsideCopy::write(std::shared_ptr<const ObjectContext> state, std::uint64_t revision,
                      const QString& name, const QString& path) {
    if (path_.isEmpty()) path_ = services_.untitled->claimNew(UntitledFolder::asideName(name));
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
    const bool lost = outcome.problem && exists() && !canPassBy(outcome.problem->trouble);
    if (lost) letGo();
    problem_ = outcome.problem;
    if (!problem_) held_ = revision;
    emit didChange();
}

void AsideCopy::end(bool remove) {
    if (path_.isEmpty()) return;
    services_.writer->start(
        this,
        [holder = std::move(holder_), path = remove ? encodedPath(path_) : std::string()] {
            closeProject(*holder, path);
            return true;
        },
        [](bool) {});
    holder_ = std::make_shared<FileHolder>();
    path_.clear();
    held_.reset();
    problem_.reset();
    writing_ = false;
}

}  // namespace zorvel
