#include "cli/output.h"

#include <utility>

#include "base/files.h"
#include "model/text_project.h"

namespace zorvel::cli {
namespace {

constexpr std::size_t chunkSize = std::size_t{1} << 16;

// As a project or a file that SQLite keeps beside one.
bool isNamedAsProject(std::string_view path) {
    for (const std::string_view ending : {"-journal", "-wal", "-shm"}) {
        if (path.ends_with(ending)) path.remove_suffix(ending.size());
    }
    return path.ends_with(".zorvel");
}

// By its content or its name, also at the end of symbolic links.
bool isProject(const std::string& path) {
    const Result<std::string> end = resolvedPath(path);
    return isNamedAsProject(path) || (end && isNamedAsProject(end.value())) || holdsProject(path);
}

}  // namespace

Output::Output(std::optional<std::string> path)
    : path_(std::move(path).value_or("-")), streams_(path_ == "-") {
    if (streams_) {
        path_ = "/dev/stdout";
    } else if (isProject(path_)) {
        problem_ = Problem{path_ +
                           ": is a project or named like one, and a result would replace it: give "
                           "--output another name"};
    }
}

void Output::write(std::string_view text) {
    if (failed()) return;
    pending_ += text;
    if (!streams_ || pending_.size() < chunkSize) return;
    sendPending();
}

void Output::write(const ByteProducer& produce) {
    if (!failed()) send(produce);
    produced_ = true;
}

void Output::send(const ByteProducer& produce) {
    problem_ = writeFileWhole(path_, produce);
    if (problem_) problem_->message = (streams_ ? "<stdout>" : path_) + ": " + problem_->message;
}

void Output::sendPending() {
    send([this](const ByteSink& sink) { sink(pending_); });
    pending_.clear();
}

std::optional<Problem> Output::finish() {
    const bool owed = !pending_.empty() || (!streams_ && !produced_);
    if (owed && !failed()) sendPending();
    return problem_;
}

}  // namespace zorvel::cli
