// Files of the system: opened for reading, synced, and replaced so that a reader finds the old
// content or the new one, never a part. Messages are parts of sentences that follow the file's
// name, which they do not contain; a function that returns an int returns the system's error
// number, 0 for success. Any thread.
#pragma once

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "base/result.h"

namespace zorvel {

// A file descriptor that closes itself.
class OpenFile {
  public:
    // -1: no file.
    explicit OpenFile(int descriptor) : descriptor_(descriptor) {}
    ~OpenFile() { close(); }
    OpenFile(OpenFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    OpenFile& operator=(OpenFile&&) = delete;

    explicit operator bool() const { return descriptor_ >= 0; }
    [[nodiscard]] int descriptor() const { return descriptor_; }
    // Some file systems report a failed write only here.
    int close() {
        const int descriptor = std::exchange(descriptor_, -1);
        return descriptor < 0 || ::close(descriptor) == 0 ? 0 : errno;
    }

  private:
    int descriptor_;
};

// "<what>: <the system's words for the error number>".
Problem systemProblem(std::string_view what, int error);

// A regular file to read. A pipe or a device is refused without being opened: it might never give a
// byte.
Result<OpenFile> openRegularFile(const std::string& path);

// Up to size bytes of a regular file from that place on; fewer where the file ends.
Result<std::string> readBytes(int descriptor, std::size_t size, std::size_t place = 0);

// Empty for a name without a folder.
std::string folderOf(const std::string& path);

// The absolute path at the end of all symbolic links; the file itself need not exist. Fails with
// ELOOP.
Result<std::string> resolvedPath(const std::string& path);

// Makes a rename in the folder safe on the disk. descriptor: of a file in the folder, through which
// the whole disk is synced where the folder may not be read; -1 if there is none.
int syncFolder(const std::string& folder, int descriptor);

// The names of temporary files begin and end like this. Texts have a further dash in theirs.
inline constexpr std::string_view temporaryStart = ".zorvel-";
inline constexpr std::string_view temporaryEnd = ".tmp";

// A new file in the folder of the one that it is to replace; removed again unless it is moved
// there.
class TemporaryFile {
  public:
    enum class Content { project, text };

    // mode: its permissions before the umask.
    TemporaryFile(const std::string& replaced, Content content, mode_t mode = 0666);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    [[nodiscard]] int creationError() const { return creationError_; }
    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] int descriptor() const { return file_.descriptor(); }

    // The permissions of another file, with more added, and its owner and group as far as the
    // system allows. Nobody gets more access than to the other file: without its group, the group
    // has none.
    [[nodiscard]] int adoptPermissions(const struct stat& other, mode_t more = 0) const;
    [[nodiscard]] int sync() const;
    int close() { return file_.close(); }
    // keepExisting: fails with EEXIST if a file is there.
    int moveTo(const std::string& path, bool keepExisting = false);

  private:
    std::string path_;
    OpenFile file_;
    int creationError_ = 0;
    bool moved_ = false;
};

// Takes the bytes of a file piece by piece; false once they cannot be written.
using ByteSink = std::function<bool(std::string_view piece)>;
// Hands all bytes of a file to the sink.
using ByteProducer = std::function<void(const ByteSink& sink)>;

// Writes a file whole or not at all: a temporary file beside it, synced, then renamed over it. An
// existing file keeps its permissions; a symbolic link stays and its target is replaced. What
// cannot be replaced is written directly: pipes, devices, and open descriptors named as /dev/stdout
// or /dev/fd/N.
std::optional<Problem> writeFileWhole(const std::string& path, const ByteProducer& produce);
std::optional<Problem> writeFileWhole(const std::string& path, std::string_view bytes);

}  // namespace zorvel
