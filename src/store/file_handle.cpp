#include "store/file_handle.h"

#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <map>
#include <mutex>
#include <string_view>
#include <utility>

#include "base/files.h"
#include "store/file_failure.h"
#include "store/project_format.h"

namespace zorvel {
namespace {

// The byte that is locked as the mark: beyond every byte that SQLite locks, and beyond the end of
// any file.
constexpr off_t markOffset = off_t{1} << 62;

constexpr int alwaysFlags = O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

// All that this process holds open of one file; a descriptor of -1 stands for none.
struct Held {
    int readable = -1;
    int writable = -1;  // may read as well
    bool marked = false;
    std::size_t users = 0;
    [[nodiscard]] int any() const { return writable >= 0 ? writable : readable; }
};

// Recursive: a handle that cannot be completed is destroyed while the list is locked.
struct HeldFiles {
    std::recursive_mutex mutex;
    std::map<FileIdentity, Held> files;
};

HeldFiles& heldFiles() {
    // Never destroyed: files may be closed while the program ends.
    static auto* const all = new HeldFiles;
    return *all;
}

FileIdentity identityOf(const struct stat& status) {
    return {status.st_dev, status.st_ino};
}

FileIdentity identityOfRegularFile(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) failWithErrno(errno, "look at the file");
    if (!S_ISREG(status.st_mode)) fail(FileTrouble::notAFile);
    return identityOf(status);
}

// Opens the file of that identity once more and keeps the descriptor. Returns an error number.
int addDescriptor(Held& held, const std::string& path, int access, FileIdentity identity) {
    const int descriptor = ::open(path.c_str(), access | alwaysFlags);
    if (descriptor < 0) return errno;
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || identityOf(status) != identity) {
        close(descriptor);
        return ESTALE;
    }
    (access == O_RDWR ? held.writable : held.readable) = descriptor;
    return 0;
}

// Whether the file may still be readable.
bool forbidsWriting(int error) {
    return error == EACCES || error == EPERM || error == EROFS || error == ETXTBSY;
}

// Of the file that any descriptor leads to; nothing if no FileHandle holds it.
Held heldOf(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) return {};
    const std::lock_guard lock(heldFiles().mutex);
    const auto place = heldFiles().files.find(identityOf(status));
    return place == heldFiles().files.end() ? Held() : place->second;
}

// Sets, or asks about, a lock of an open file description. An error number; EOPNOTSUPP if the file
// system has no locks.
int lockFile(int descriptor, int command, struct flock& range) {
    if (fcntl(descriptor, command, &range) == 0) return 0;
    // SQLite would take the first for a lock of another program.
    return errno == ENOLCK || errno == EINVAL ? EOPNOTSUPP : errno;
}

// Sets or removes the mark. Returns an error number.
int setMark(int descriptor, short type) {
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = markOffset;
    range.l_len = 1;
    return lockFile(descriptor, F_OFD_SETLK, range);
}

// SQLite counts the locks of all connections to a file in this process as one, and may set a lock
// by way of one connection and release it by way of another.
int lockHeld(const Held& held, int command, struct flock& range) {
    const int ours = command == F_GETLK ? F_OFD_GETLK : F_OFD_SETLK;
    range.l_pid = 0;  // must be, for these locks
    // SQLite releases everything to the end in one call; the mark must stay.
    if (range.l_len == 0) range.l_len = markOffset - range.l_start;
    const bool release = command == F_SETLK && range.l_type == F_UNLCK;
    if (release && held.readable >= 0) lockFile(held.readable, ours, range);
    errno = lockFile(held.any(), ours, range);
    return errno == 0 ? 0 : -1;
}

}  // namespace
}  // namespace zorvel

extern "C" {

static int fcntlOfSqlite(int descriptor, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    if (command != F_SETLK && command != F_GETLK) {
        const int argument = va_arg(arguments, int);
        va_end(arguments);
        return fcntl(descriptor, command, argument);
    }
    auto* const range = va_arg(arguments, struct flock*);
    va_end(arguments);
    const zorvel::Held held = zorvel::heldOf(descriptor);
    if (held.any() < 0) return fcntl(descriptor, command, range);
    return zorvel::lockHeld(held, command, *range);
}

static int unlinkOfSqlite(const char* path) {
    const std::string_view whole(path);
    const std::string_view name = whole.substr(whole.rfind('/') + 1);
    if (name.starts_with("etilqs_")) return unlink(path);  // SQLite's own temporary files
    for (const std::string_view ending : zorvel::companionEndings) {
        if (name.ends_with(ending)) return unlink(path);
    }
    errno = EPERM;
    return -1;
}
}

namespace zorvel {

std::optional<FileStamp> fileStamp(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return std::nullopt;
    return FileStamp{identityOf(status), status.st_size, status.st_mtim.tv_sec,
                     status.st_mtim.tv_nsec};
}

std::optional<FileIdentity> fileIdentity(const std::string& path) {
    const std::optional<FileStamp> stamp = fileStamp(path);
    if (!stamp) return std::nullopt;
    return stamp->identity;
}

FileHandle::FileHandle(FileIdentity identity) : identity_(identity) {
    ++heldFiles().files[identity_].users;
}

FileHandle::~FileHandle() {
    const std::lock_guard lock(heldFiles().mutex);
    const auto place = heldFiles().files.find(identity_);
    Held& held = place->second;
    if (marked_) {
        setMark(held.writable, F_UNLCK);
        held.marked = false;
    }
    if (--held.users > 0) return;
    for (const int descriptor : {held.readable, held.writable}) {
        if (descriptor >= 0) close(descriptor);
    }
    heldFiles().files.erase(place);
}

std::unique_ptr<FileHandle> FileHandle::open(const std::string& path, Use use) {
    const std::lock_guard lock(heldFiles().mutex);
    std::unique_ptr<FileHandle> handle(new FileHandle(identityOfRegularFile(path)));
    Held& held = heldFiles().files[handle->identity_];
    if (use != Use::read) {
        if (held.writable < 0) {
            const int error = addDescriptor(held, path, O_RDWR, handle->identity_);
            if (error != 0 && !forbidsWriting(error)) failWithErrno(error, "open");
            handle->reasonUnmarked_ = error;
        }
        if (use == Use::write && held.writable >= 0) handle->mark();
    }
    if (held.any() < 0) {
        const int error = addDescriptor(held, path, O_RDONLY, handle->identity_);
        if (error != 0) failWithErrno(error, "open");
    }
    return handle;
}

void FileHandle::mark() {
    Held& held = heldFiles().files[identity_];
    if (held.marked) fail(FileTrouble::heldElsewhere, "by this program");
    const int error = setMark(held.writable, F_WRLCK);
    if (error == EAGAIN || error == EACCES) fail(FileTrouble::heldElsewhere);
    if (error != 0) failWithErrno(error, "mark the file as open");
    held.marked = true;
    marked_ = true;
}

std::string FileHandle::start(std::size_t size) const {
    Result<std::string> bytes = readBytes(descriptor(), size);
    if (!bytes) failWithErrno(bytes.problem().systemError, "read");
    return std::move(bytes).value();
}

int FileHandle::descriptor() const {
    const std::lock_guard lock(heldFiles().mutex);
    return heldFiles().files[identity_].any();
}

void useOurSystemCalls() {
    static std::once_flag once;
    std::call_once(once, [] {
        sqlite3_vfs* const vfs = sqlite3_vfs_find("unix");
        const auto replace = [vfs](const char* name, auto* call) {
            vfs->xSetSystemCall(vfs, name, reinterpret_cast<sqlite3_syscall_ptr>(call));
        };
        replace("fcntl", fcntlOfSqlite);
        replace("unlink", unlinkOfSqlite);
    });
}

}  // namespace zorvel
