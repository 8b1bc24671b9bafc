#include "base/files.h"

#include <fcntl.h>

#include <climits>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include "base/numbers.h"

namespace zorvel {
namespace {

std::optional<Problem> whyNotRead(const struct stat& status) {
    if (S_ISREG(status.st_mode)) return std::nullopt;
    if (S_ISDIR(status.st_mode)) return systemProblem("cannot be read", EISDIR);
    return Problem{"cannot be read: it is a pipe or a device, not a file"};
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

// Follows symbolic links as long as the condition holds.
template <class Condition>
int followLinks(std::string& path, Condition goesOn) {
    constexpr int mostLinks = 40;
    for (int links = 0; links < mostLinks; ++links) {
        if (!goesOn(path)) return 0;
        std::error_code error;
        const std::filesystem::path target = std::filesystem::read_symlink(path, error);
        if (error) return 0;  // no link, or nothing there
        path = (std::filesystem::path(path).parent_path() / target).string();
    }
    return ELOOP;
}

int writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t count = write(descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return 0;
}

int writeAll(int descriptor, const ByteProducer& produce) {
    int error = 0;
    produce([&](std::string_view piece) {
        if (error == 0) error = writeAll(descriptor, piece);
        return error == 0;
    });
    return error;
}

int replaceFile(const std::string& path, const ByteProducer& produce, const struct stat* existing) {
    // A file that may not be written is not to be replaced either.
    if (existing && faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) return errno;
    constexpr mode_t ownerOnly = 0600;  // until it has the permissions of the existing file
    TemporaryFile file(path, TemporaryFile::Content::text, existing ? ownerOnly : 0666);
    int error = file.creationError();
    if (error == 0 && existing) error = file.adoptPermissions(*existing);
    if (error == 0) error = writeAll(file.descriptor(), produce);
    if (error == 0) error = file.sync();
    // Some file systems cannot sync, which is no failure to write.
    if (error == EINVAL || error == ENOTSUP) error = 0;
    if (error == 0) error = file.close();
    if (error == 0) error = file.moveTo(path);
    // The file has its place even if its folder cannot be synced.
    if (error == 0) syncFolder(folderOf(path), -1);
    return error;
}

int writeInPlace(const std::string& path, const ByteProducer& produce) {
    OpenFile file(open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    if (!file) return errno;
    const int error = writeAll(file.descriptor(), produce);
    return error != 0 ? error : file.close();
}

int writeWherever(std::string path, const ByteProducer& produce) {
    if (path.empty()) return ENOENT;
    const auto goesOn = [](const std::string& at) { return descriptorNamed(at) < 0; };
    if (const int error = followLinks(path, goesOn)) return error;
    if (const int descriptor = descriptorNamed(path); descriptor >= 0) {
        std::fflush(stdout);  // earlier output comes first
        return writeAll(descriptor, produce);
    }
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return errno == ENOENT ? replaceFile(path, produce, nullptr) : errno;
    }
    if (S_ISREG(status.st_mode)) return replaceFile(path, produce, &status);
    return S_ISDIR(status.st_mode) ? EISDIR : writeInPlace(path, produce);
}

}  // namespace

Problem systemProblem(std::string_view what, int error) {
    return {std::string(what) + ": " + std::generic_category().message(error), error};
}

// Also checked before opening: opening a pipe already wakes a program that waits to write to it.
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

Result<std::string> readBytes(int descriptor, std::size_t size, std::size_t place) {
    std::string bytes(size, '\0');
    std::size_t filled = 0;
    while (filled < size) {
        const ssize_t count = pread(descriptor, bytes.data() + filled, size - filled,
                                    static_cast<off_t>(place + filled));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return systemProblem("cannot be read", errno);
        if (count == 0) break;
        filled += static_cast<std::size_t>(count);
    }
    bytes.resize(filled);
    return bytes;
}

std::string folderOf(const std::string& path) {
    return std::filesystem::path(path).parent_path().string();
}

Result<std::string> resolvedPath(const std::string& path) {
    std::error_code error;
    std::string resolved = std::filesystem::absolute(path, error).string();
    const int number = followLinks(resolved, [](const std::string&) { return true; });
    if (number != 0) return systemProblem("cannot be found", number);
    return resolved;
}

int syncFolder(const std::string& folder, int descriptor) {
    const OpenFile opened(
        open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!opened && (errno != EACCES || descriptor < 0)) return errno;
    const int result = opened ? fsync(opened.descriptor()) : syncfs(descriptor);
    // Some network file systems cannot sync a folder.
    return result == 0 || errno == EINVAL ? 0 : errno;
}

TemporaryFile::TemporaryFile(const std::string& replaced, Content content, mode_t mode)
    : path_(std::filesystem::path(replaced).replace_filename(
          std::string(temporaryStart) + (content == Content::text ? "text-" : "") +
          randomHexadecimal(8) + std::string(temporaryEnd))),
      file_(open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode)) {
    if (!file_) creationError_ = errno;
}

TemporaryFile::~TemporaryFile() {
    if (creationError_ == 0 && !moved_) unlink(path_.c_str());
}

int TemporaryFile::adoptPermissions(const struct stat& other, mode_t more) const {
    mode_t mode = (other.st_mode & 0777U) | more;
    const int descriptor = file_.descriptor();
    // Only the superuser may give a file to another owner.
    if (fchown(descriptor, other.st_uid, other.st_gid) != 0 &&
        fchown(descriptor, static_cast<uid_t>(-1), other.st_gid) != 0) {
        mode &= ~static_cast<mode_t>(S_IRWXG);
    }
    return fchmod(descriptor, mode) == 0 ? 0 : errno;
}

int TemporaryFile::sync() const {
    return fsync(file_.descriptor()) == 0 ? 0 : errno;
}

int TemporaryFile::moveTo(const std::string& path, bool keepExisting) {
    if (keepExisting) {
        moved_ = renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, path.c_str(), RENAME_NOREPLACE) == 0;
        if (moved_) return 0;
        // Some file systems do not support such a renaming.
        if (errno != EINVAL) return errno;
        struct stat status {};
        if (lstat(path.c_str(), &status) == 0) return EEXIST;
    }
    moved_ = std::rename(path_.c_str(), path.c_str()) == 0;
    return moved_ ? 0 : errno;
}

std::optional<Problem> writeFileWhole(const std::string& path, const ByteProducer& produce) {
    const int error = writeWherever(path, produce);
    if (error == 0) return std::nullopt;
    return systemProblem("cannot be written", error);
}

std::optional<Problem> writeFileWhole(const std::string& path, std::string_view bytes) {
    return writeFileWhole(path, [bytes](const ByteSink& sink) { sink(bytes); });
}

}  // namespace zorvel
