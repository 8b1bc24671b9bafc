#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>

#include "base/numbers.h"
#include "interchange/open_file.h"
#include "interchange/whole_file.h"
#include "interchange/whole_integer.h"

namespace zorvel {
namespace {

constexpr const char* cannotWrite = "cannot be written";

// The error number, 0 if all was written.
int writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return 0;
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

// The open descriptor that a path such as /dev/stdout stands for; -1 if it stands for none.
int descriptorNamed(std::string_view path) {
    if (path == "/dev/stdout") return STDOUT_FILENO;
    if (path == "/dev/stderr") return STDERR_FILENO;
    for (const std::string_view folder : {"/dev/fd/", "/proc/self/fd/"}) {
        if (!path.starts_with(folder)) continue;
        const auto number = parseWholeInteger(path.substr(folder.size()));
        if (number && *number >= 0 && *number <= INT_MAX) return static_cast<int>(*number);
    }
    return -1;
}

// Where the symbolic links of a path lead, so that the file is replaced and the link stays; stops
// at a path that stands for an open descriptor. The error number is 0 if the way has an end.
int followLinks(std::string& path) {
    constexpr int mostLinks = 40;
    for (int links = 0; links < mostLinks; ++links) {
        if (descriptorNamed(path) >= 0) return 0;
        std::string target(PATH_MAX, '\0');
        const ssize_t size = readlink(path.c_str(), target.data(), target.size());
        if (size < 0) return 0;  // no link, or nothing there
        target.resize(static_cast<std::size_t>(size));
        path = target.starts_with('/') ? target : folderOf(path) + target;
    }
    return ELOOP;
}

// A new file beside the one to be replaced; gone again unless it took that one's place.
class TemporaryFile {
  public:
    explicit TemporaryFile(const std::string& folder) : file_(create(folder, path_)) {
        if (!file_) error_ = errno;
    }
    ~TemporaryFile() {
        if (!path_.empty()) unlink(path_.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    // Each gives the error number, 0 if all went well.
    [[nodiscard]] int creationError() const { return error_; }
    int fill(std::string_view bytes) {
        const int error = writeAll(file_.descriptor(), bytes);
        if (error != 0) return error;
        // Some file systems cannot sync, which is no failure to write.
        if (fsync(file_.descriptor()) != 0 && errno != EINVAL && errno != ENOTSUP) return errno;
        return 0;
    }
    // Owner and group only as far as the system allows.
    int takeAttributes(const struct stat& status) {
        if (fchown(file_.descriptor(), status.st_uid, status.st_gid) != 0 && errno != EPERM) {
            return errno;
        }
        return fchmod(file_.descriptor(), status.st_mode & 0777) == 0 ? 0 : errno;
    }
    int moveTo(const std::string& path) {
        const int error = file_.close();
        if (error != 0) return error;
        if (rename(path_.c_str(), path.c_str()) != 0) return errno;
        path_.clear();
        return 0;
    }

  private:
    // Made with the mode that the system gives to new files here. The path stays empty on failure.
    static int create(const std::string& folder, std::string& path) {
        for (int attempt = 0; attempt < 1000; ++attempt) {
            const std::string candidate =
                folder + ".zorvel-" + integerText(getpid()) + "-" + integerText(attempt) + ".tmp";
            const int descriptor =
                open(candidate.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (descriptor >= 0) path = candidate;
            if (descriptor >= 0 || errno != EEXIST) return descriptor;
        }
        return -1;
    }

    std::string path_;
    OpenFile file_;
    int error_ = 0;
};

// So that the new name survives a power cut; where a folder cannot be synced, it may not.
void syncFolder(const std::string& folder) {
    const OpenFile file(
        open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (file) fsync(file.descriptor());
}

int replaceFile(const std::string& path, std::string_view bytes, const struct stat* existing) {
    // A file that may not be written is not to be replaced either.
    if (existing && faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) return errno;
    const std::string folder = folderOf(path);
    TemporaryFile temporary(folder);
    int error = temporary.creationError();
    if (error == 0 && existing) error = temporary.takeAttributes(*existing);
    if (error == 0) error = temporary.fill(bytes);
    if (error == 0) error = temporary.moveTo(path);
    if (error == 0) syncFolder(folder);
    return error;
}

// Pipes and devices, which cannot be replaced.
int writeInPlace(const std::string& path, std::string_view bytes) {
    OpenFile file(open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    if (!file) return errno;
    const int error = writeAll(file.descriptor(), bytes);
    return error != 0 ? error : file.close();
}

int writeWherever(std::string path, std::string_view bytes) {
    if (path.empty()) return ENOENT;
    const int linkError = followLinks(path);
    if (linkError != 0) return linkError;
    if (const int descriptor = descriptorNamed(path); descriptor >= 0) {
        std::fflush(stdout);  // what was printed before comes before
        return writeAll(descriptor, bytes);
    }
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return errno == ENOENT ? replaceFile(path, bytes, nullptr) : errno;
    }
    if (S_ISREG(status.st_mode)) return replaceFile(path, bytes, &status);
    return S_ISDIR(status.st_mode) ? EISDIR : writeInPlace(path, bytes);
}

}  // namespace

std::optional<Problem> writeFileWhole(const std::string& path, std::string_view bytes) {
    const int error = writeWherever(path, bytes);
    if (error == 0) return std::nullopt;
    return systemProblem(cannotWrite, error);
}

}  // namespace zorvel
