#include "interchange/open_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cstring>
#include <optional>

namespace zorvel {
namespace {

std::optional<Problem> whyNotRead(const struct stat& status) {
    if (S_ISREG(status.st_mode)) return std::nullopt;
    if (S_ISDIR(status.st_mode)) return systemProblem("cannot be read", EISDIR);
    return Problem{"cannot be read: it is a pipe or a device, not a file"};
}

}  // namespace

Problem systemProblem(std::string_view what, int error) {
    std::string buffer(256, '\0');
    const char* words = strerror_r(error, buffer.data(), buffer.size());
    return {std::string(what) + ": " + words, error};
}

// Looked at before as well: to open a pipe already wakes whoever waits to write to it.
Result<OpenFile> openRegularFile(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return systemProblem("cannot be opened", errno);
    if (const auto problem = whyNotRead(status)) return *problem;
    OpenFile file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY | O_NONBLOCK));
    if (!file || fstat(file.descriptor(), &status) != 0) {
        return systemProblem("cannot be opened", errno);
    }
    if (const auto problem = whyNotRead(status)) return *problem;
    return {std::move(file)};
}

}  // namespace zorvel
