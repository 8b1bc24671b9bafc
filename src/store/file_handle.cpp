#include "store/file_handle.h"

#include <fcntl.h>
#include <unistd.h>

#include <map>
#include <mutex>
#include <vector>

#include "store/file_failure.h"

namespace zorvel {
namespace {

// Beyond every byte that SQLite locks, and beyond the end of any file.
constexpr off_t markOffset = off_t{1} << 62;

constexpr int alwaysFlags = O_NONBLOCK | O_NOCTTY | O_CLOEXEC;

// All that this process holds open of one file.
struct Held {
    std::vector<int> descriptors;
    int writable = -1;  // one of them, if any may write
    bool marked = false;
    std::size_t users = 0;
};

struct IdentityLess {
    bool operator()(const FileIdentity& a, const FileIdentity& b) const {
        return a.device != b.device ? a.device < b.device : a.inode < b.inode;
    }
};

// Recursive: a handle that cannot be completed goes while the list is locked.
struct HeldFiles {
    std::recursive_mutex mutex;
    std::map<FileIdentity, Held, IdentityLess> files;
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

// Opens once more, and keeps, the file of that identity; an error number where that fails.
int addDescriptor(Held& held, const std::string& path, int access, FileIdentity identity) {
    held.descriptors.reserve(held.descriptors.size() + 1);
    const int descriptor = ::open(path.c_str(), access | alwaysFlags);
    if (descriptor < 0) return errno;
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || !(identityOf(status) == identity)) {
        close(descriptor);
        return ESTALE;
    }
    held.descriptors.push_back(descriptor);
    if (access == O_RDWR) held.writable = descriptor;
    return 0;
}

// Whether the file may be there to be read all the same.
bool forbidsWriting(int error) {
    return error == EACCES || error == EPERM || error == EROFS || error == ETXTBSY;
}

// It is the folder that says no.
[[noreturn]] void failToMake(int error) {
    const bool forbidden = error == EACCES || error == EPERM;
    fail(forbidden ? FileTrouble::readOnlyFolder : troubleOfErrno(error),
         "make a file in the folder", error);
}

// An error number; 0 where the lock is set.
int setLock(int descriptor, short type) {
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = markOffset;
    range.l_len = 1;
    return fcntl(descriptor, F_OFD_SETLK, &range) == 0 ? 0 : errno;
}

}  // namespace

std::optional<FileStamp> fileStamp(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return std::nullopt;
    return FileStamp{identityOf(status), status.st_size, status.st_mtim};
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
        setLock(held.writable, F_UNLCK);
        held.marked = false;
    }
    if (--held.users > 0) return;
    for (const int descriptor : held.descriptors) close(descriptor);
    heldFiles().files.erase(place);
}

std::unique_ptr<FileHandle> FileHandle::open(const std::string& path, Use use) {
    const std::lock_guard lock(heldFiles().mutex);
    std::unique_ptr<FileHandle> handle(new FileHandle(identityOfRegularFile(path)));
    Held& held = heldFiles().files[handle->identity_];
    if (use == Use::write) {
        if (held.writable < 0) {
            const int error = addDescriptor(held, path, O_RDWR, handle->identity_);
            if (error != 0 && !forbidsWriting(error)) failWithErrno(error, "open");
            handle->reasonUnmarked_ = error;
        }
        if (held.writable >= 0) handle->mark();
    }
    if (held.descriptors.empty()) {
        const int error = addDescriptor(held, path, O_RDONLY, handle->identity_);
        if (error != 0) failWithErrno(error, "open");
    }
    return handle;
}

std::unique_ptr<FileHandle> FileHandle::create(const std::string& path, mode_t mode) {
    const std::lock_guard lock(heldFiles().mutex);
    const int created = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | alwaysFlags, mode);
    if (created < 0) failToMake(errno);
    // Nobody else has it open, so that closing it here drops no locks.
    close(created);
    try {
        std::unique_ptr<FileHandle> handle = open(path, Use::write);
        if (!handle->isMarked()) failWithErrno(handle->reasonUnmarked_, "open the new file");
        return handle;
    } catch (...) {
        unlink(path.c_str());
        throw;
    }
}

void FileHandle::mark() {
    Held& held = heldFiles().files[identity_];
    if (held.marked) fail(FileTrouble::heldElsewhere, "by this program");
    const int error = setLock(held.writable, F_WRLCK);
    if (error == EAGAIN || error == EACCES) fail(FileTrouble::heldElsewhere);
    // Some network file systems know no such locks: there the file goes unmarked, yet is written.
    held.marked = true;
    marked_ = true;
}

std::string FileHandle::start(std::size_t size) const {
    std::string bytes(size, '\0');
    const ssize_t count = pread(descriptor(), bytes.data(), size, 0);
    if (count < 0) failWithErrno(errno, "read");
    bytes.resize(static_cast<std::size_t>(count));
    return bytes;
}

int FileHandle::descriptor() const {
    const std::lock_guard lock(heldFiles().mutex);
    const Held& held = heldFiles().files[identity_];
    return held.writable >= 0 ? held.writable : held.descriptors.front();
}

}  // namespace zorvel
