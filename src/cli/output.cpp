#include "cli/output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "interchange/text_file.h"

namespace zorvel::cli {
namespace {

constexpr std::size_t chunkSize = std::size_t{1} << 16;

Problem writeProblem(const std::string& target, int error) {
    return {"cannot write to " + target + ": " + std::strerror(error), error};
}

// A terminal, a pipe or a device has no contents to replace: a file renamed over its name would
// take its place.
bool isSpecialFile(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

std::optional<Problem> writeSpecialFile(const std::string& path, std::string_view bytes) {
    const int descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0) return writeProblem(path, errno);
    int error = writeAll(descriptor, bytes);
    if (close(descriptor) != 0 && error == 0) error = errno;
    if (error != 0) return writeProblem(path, error);
    return std::nullopt;
}

}  // namespace

int writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

Output::Output(std::optional<std::string> path) : path_(std::move(path)) {
    if (path_ == "-") path_.reset();
}

void Output::write(std::string_view text) {
    if (failed()) return;
    if (!path_ && text.size() >= chunkSize) {
        flush();
        if (!failed()) error_ = writeAll(STDOUT_FILENO, text);
        return;
    }
    pending_ += text;
    if (!path_ && pending_.size() >= chunkSize) flush();
}

void Output::flush() {
    if (!failed()) error_ = writeAll(STDOUT_FILENO, pending_);
    pending_.clear();
}

std::optional<Problem> Output::finish() {
    if (path_) {
        return isSpecialFile(*path_) ? writeSpecialFile(*path_, pending_)
                                     : writeFileWhole(*path_, pending_);
    }
    flush();
    if (failed()) return writeProblem("standard output", error_);
    return std::nullopt;
}

}  // namespace zorvel::cli
