#include "store/replacement_file.h"

#include <ctime>
#include <filesystem>
#include <utility>

#include "store/file_failure.h"
#include "store/project_format.h"

namespace zorvel {
namespace {

constexpr mode_t ownerOnly = 0600;

bool exists(const std::string& path) {
    struct stat status {};
    return lstat(path.c_str(), &status) == 0;
}

std::unique_ptr<FileHandle> heldForReplacement(const std::string& path, bool keepExisting) {
    if (!exists(path)) return nullptr;
    if (keepExisting) failWithErrno(EEXIST, "make the file");
    auto held = FileHandle::open(path, FileHandle::Use::write);
    if (!held->isMarked()) {
        fail(FileTrouble::readOnlyFile, "the file to be replaced", held->reasonUnmarked());
    }
    return held;
}

// Whether no program can be working on it unless it has marked it.
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

ReplacementFile::ReplacementFile(std::string path, const char* vfs, bool keepExisting)
    : path_(std::move(path)),
      vfs_(vfs),
      keepExisting_(keepExisting),
      replaced_(heldForReplacement(path_, keepExisting_)),
      temporary_(path_, TemporaryFile::Content::project, replaced_ ? ownerOnly : 0666) {
    if (const int error = temporary_.creationError()) {
        const bool folderForbids = error == EACCES || error == EPERM;
        fail(folderForbids ? FileTrouble::readOnlyFolder : troubleOfErrno(error),
             "make a file in the folder", error);
    }
    handle_ = FileHandle::open(temporary_.path(), FileHandle::Use::write);
    if (!handle_->isMarked()) failWithErrno(handle_->reasonUnmarked(), "open the new file");
    if (replaced_) adoptPermissions(*replaced_);
}

void ReplacementFile::adoptPermissions(const FileHandle& from, mode_t more) {
    struct stat status {};
    if (fstat(from.descriptor(), &status) != 0) failWithErrno(errno, "look at the file");
    if (const int error = temporary_.adoptPermissions(status, more)) {
        failWithErrno(error, "set the permissions");
    }
}

// A journal left beside the old file would be played back into the new one, so it is removed. It is
// played back into the old file first, in case the rename fails.
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

std::unique_ptr<FileHandle> ReplacementFile::takePlace() {
    if (const int error = temporary_.sync()) failWithErrno(error, "sync the new file");
    // If a file has appeared at the path, its companions belong to it.
    if (keepExisting_ && exists(path_)) failWithErrno(EEXIST, "make the file");
    clearCompanions();
    if (const int error = temporary_.moveTo(path_, keepExisting_)) {
        failWithErrno(error, "rename the new file");
    }
    if (const int error = syncFolder(folderOf(path_), handle_->descriptor())) {
        failWithErrno(error, "sync the folder");
    }
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
