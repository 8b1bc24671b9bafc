// The files that this process holds open besides SQLite's own handles, each once however often it
// is asked for: all locks on a file in this process go through it (sqlite_system_calls.h). A file
// held for writing bears a mark (a lock on one byte far behind its end) that every process sees.
// Any thread.
#pragma once

#include <fcntl.h>
#include <sys/stat.h>

#include <memory>
#include <optional>
#include <string>

#include "store/project_file.h"

namespace zorvel {

// The byte that bears the mark: beyond every byte that SQLite locks, and beyond the end of any
// file.
inline constexpr off_t markOffset = off_t{1} << 62;

// What tells that nobody but us has written to a file.
struct FileStamp {
    FileIdentity identity;
    off_t size = 0;
    timespec modified{};

    friend bool operator==(const FileStamp& a, const FileStamp& b) {
        return a.identity == b.identity && a.size == b.size &&
               a.modified.tv_sec == b.modified.tv_sec && a.modified.tv_nsec == b.modified.tv_nsec;
    }
};

// Follows symbolic links; absent where nothing is there.
std::optional<FileStamp> fileStamp(const std::string& path);

// What is held open of a file; -1 stands for none.
struct HeldDescriptors {
    int readable = -1;
    int writable = -1;  // may read as well
    [[nodiscard]] int any() const { return writable >= 0 ? writable : readable; }
};

// Of the file that any descriptor leads to; none where no FileHandle holds it.
HeldDescriptors heldDescriptors(int descriptor);

// Asks for, or about, a lock of an open file description. An error number; EOPNOTSUPP where the
// file system has no locks.
int lockFile(int descriptor, int command, struct flock& range);

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

}  // namespace zorvel
