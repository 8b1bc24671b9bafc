#include "cli/output.h"

#include <utility>

#include "interchange/whole_file.h"

namespace zorvel::cli {
namespace {

constexpr std::size_t chunkSize = std::size_t{1} << 16;

}  // namespace

Output::Output(std::optional<std::string> path)
    : path_(std::move(path).value_or("-")), streams_(path_ == "-") {
    if (streams_) path_ = "/dev/stdout";
}

void Output::write(std::string_view text) {
    if (failed()) return;
    pending_ += text;
    if (!streams_ || pending_.size() < chunkSize) return;
    send(pending_);
    pending_.clear();
}

void Output::send(std::string_view bytes) {
    problem_ = writeFileWhole(path_, bytes);
    if (problem_) problem_->message = (streams_ ? "<stdout>" : path_) + ": " + problem_->message;
}

std::optional<Problem> Output::finish() {
    const bool owed = !streams_ || !pending_.empty();
    if (owed && !failed()) send(pending_);
    return problem_;
}

}  // namespace zorvel::cli
