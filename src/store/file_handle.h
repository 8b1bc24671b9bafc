// The files that this process holds open besides SQLite's own handles, each opened once however
// many FileHandles it has: all locks on a file in this process go through it. A file held for
// writing has a mark (a lock on one byte far behind its end) that every process sees. Any thread.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <memory>
#include <optional>
#include <string>

#include "store/project_file.h"

namespace zorvel {

// The same as long as no other program has written to the file.
struct FileStamp {
    FileIdentity identity;
    off_t size = 0;
    time_t modified = 0;
    long nanoseconds = 0;  // of the time of change

    friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

// Follows symbolic links; absent if there is no file.
std::optional<FileStamp> fileStamp(const std::string& path);

// One file held open, for as long as the object lives.
class FileHandle {
  public:
    enum class Use {
        read,
        // A write that was cut off is undone; the file is not marked.
        recover,
        // Marked as open, if it may be written at all.
        write,
    };

    // Fails for what is no file, for one that may not be read, and, for writing, one that is
    // marked already, by this process or another.
    static std::unique_ptr<FileHandle> open(const std::string& path, Use use);
    ~FileHandle();
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    [[nodiscard]] FileIdentity identity() const { return identity_; }
    // Whether the mark is on it: false too where the file may not be written, for the reason below.
    [[nodiscard]] bool isMarked() const { return marked_; }
    [[nodiscard]] int reasonUnmarked() const { return reasonUnmarked_; }
    // The first bytes, up to size.
    [[nodiscard]] std::string start(std::size_t size) const;
    [[nodiscard]] int descriptor() const;

  private:
    explicit FileHandle(FileIdentity identity);
    void mark();

    FileIdentity identity_;
    bool marked_ = false;
    int reasonUnmarked_ = 0;
};

// Changes what SQLite asks of the system in this process. Its locks on a file that a FileHandle
// holds are set through the descriptor of that handle, as open-file-description locks: other
// programs meet them like any others, but closing the file elsewhere in the process, in whatever
// library, does not drop them. And SQLite deletes nothing except the companions of databases and
// its own temporary files: a journal may name any file to be deleted after it was played back.
// To be called before each connection is opened; does its work once.
void useOurSystemCalls();

}  // namespace zorvel
