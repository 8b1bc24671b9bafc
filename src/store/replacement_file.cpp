#include "store/replacement_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <ctime>
#include <filesystem>
#include <utility>

#include "store/companion_files.h"
#include "store/file_failure.h"
#include "store/file_paths.h"
#include "store/project_header.h"
#include "store/sqlite_connection.h"
#include "store/sqlite_statement.h"

namespace zorvel {
namespace {

constexpr mode_t newFileMode = 0666;  // less what the umask takes away

bool exists(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

std::unique_ptr<FileHandle> heldForReplacement(const std::string& path,
                                               ReplacementFile::Place place) {
    if (!exists(path)) return nullptr;
    if (place == ReplacementFile::Place::free) failWithErrno(EEXIST, "make the file");
    auto held = FileHandle::open(path, FileHandle::Use::write);
    if (!held->isMarked()) {
        fail(FileTrouble::readOnlyFile, "the file to be replaced", held->reasonUnmarked());
    }
    return held;
}

// Whether nobody can be at work on it, if nobody has marked it.
bool isUnfinished(const std::string& path) {
    constexpr std::time_t day = 86400;
    const std::string name = std::filesystem::path(path).filename();
    struct stat status {};
    if (!name.starts_with(temporaryStart) || !name.ends_with(temporaryEnd) ||
        lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
        return false;
    }
    if (status.st_mtime < std::time(nullptr) - day) return true;
    // One of no bytes may be just about to be marked; exported texts, which have a further dash in
    // their names, bear no mark.
    return status.st_size > 0 && name.find('-', temporaryStart.size()) == std::string::npos;
}

}  // namespace

ReplacementFile::ReplacementFile(const std::string& path, const char* vfs, Place place)
    : ReplacementFile(path, vfs, heldForReplacement(path, place)) {
    place_ = place;
}

ReplacementFile::ReplacementFile(std::string path, const char* vfs,
                                 std::unique_ptr<FileHandle> replaced)
    : path_(std::move(path)),
      temporary_(temporaryBeside(path_)),
      vfs_(vfs),
      replaced_(std::move(replaced)),
      handle_(FileHandle::create(temporary_, newFileMode)) {
    try {
        if (replaced_) adoptPermissions(*replaced_);
    } catch (...) {
        unlink(temporary_.c_str());
        throw;
    }
}

ReplacementFile::~ReplacementFile() {
    if (!placed_) unlink(temporary_.c_str());
}

void ReplacementFile::adoptPermissions(const FileHandle& from, mode_t more) {
    struct stat status {};
    if (fstat(from.descriptor(), &status) != 0) failWithErrno(errno, "look at the file");
    // Only the super-user may give a file away; for others it stays theirs.
    if (fchown(handle_->descriptor(), status.st_uid, status.st_gid) != 0) errno = 0;
    if (fchmod(handle_->descriptor(), (status.st_mode & 07777U) | more) != 0) {
        failWithErrno(errno, "set the permissions");
    }
}

// A journal that was left beside the old file would be played back into the new one. It goes; but
// the old file gets what is its due first, in case that the new one does not take its place.
void ReplacementFile::clearCompanions() {
    if (replaced_ && exists(journalOf(path_))) {
        guarded([this] {
            checkHeader(replaced_->start(headerSize));
            Connection old(path_, Connection::Access::write, vfs_);
            Statement(old, "SELECT count(*) FROM sqlite_schema").run();
        });
    }
    for (const char* ending : companionEndings) {
        const std::string companion = path_ + ending;
        if (unlink(companion.c_str()) != 0 && errno != ENOENT) {
            failWithErrno(errno, "remove what was left beside the file");
        }
    }
}

// The error number, 0 if all went well.
int ReplacementFile::move() const {
    if (place_ == Place::free) {
        if (renameat2(AT_FDCWD, temporary_.c_str(), AT_FDCWD, path_.c_str(), RENAME_NOREPLACE) ==
            0) {
            return 0;
        }
        // Some file systems know no such renaming.
        if (errno != EINVAL || exists(path_)) return errno == EINVAL ? EEXIST : errno;
    }
    return std::rename(temporary_.c_str(), path_.c_str()) == 0 ? 0 : errno;
}

std::unique_ptr<FileHandle> ReplacementFile::takePlace() {
    if (fsync(handle_->descriptor()) != 0) failWithErrno(errno, "sync the new file");
    // What lies beside a file that came meanwhile belongs to that file.
    if (place_ == Place::free && exists(path_)) failWithErrno(EEXIST, "make the file");
    clearCompanions();
    if (const int error = move()) failWithErrno(error, "rename the new file");
    placed_ = true;
    syncFolder(folderOf(path_), handle_->descriptor());
    return std::move(handle_);
}

void removeUnfinishedFiles(const std::string& folder) {
    guarded([&] {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            const std::string path = entry.path();
            guarded([&] {
                if (isUnfinished(path) &&
                    FileHandle::open(path, FileHandle::Use::write)->isMarked()) {
                    unlink(path.c_str());
                }
            });
        }
    });
}

}  // namespace zorvel
