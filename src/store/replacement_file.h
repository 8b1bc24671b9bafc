// A project file that is built under another name in the same folder, and takes its path only when
// it is whole and safe on the disk: until then the file at the path stays as it was. If it never
// does, it is removed. Failures are thrown as FileFailure.
#pragma once

#include <memory>
#include <string>

#include "base/files.h"
#include "store/file_handle.h"

namespace zorvel {

class ReplacementFile {
  public:
    // An empty file. A file at the path must be one that may be written, and must not be open
    // elsewhere; the new one adopts its permissions. path: see resolvedPath().
    // keepExisting: fails with EEXIST if a file is there.
    ReplacementFile(std::string path, const char* vfs, bool keepExisting = false);
    // Those of another file, before this one is filled. more: permissions added to them.
    void adoptPermissions(const FileHandle& from, mode_t more = 0);

    [[nodiscard]] const std::string& temporaryPath() const { return temporary_.path(); }

    // Takes the path. Returns the handle of the new file, marked as open. If it fails to sync the
    // folder, the file has its place already.
    std::unique_ptr<FileHandle> takePlace();

  private:
    void clearCompanions();

    std::string path_;
    const char* vfs_;
    bool keepExisting_;
    std::unique_ptr<FileHandle> replaced_;
    TemporaryFile temporary_;
    std::unique_ptr<FileHandle> handle_;
};

// Removes unfinished files that killed programs have left in a folder: those that no running
// program has marked as its own, or that have not changed for a day.
void removeUnfinishedFiles(const std::string& folder);

}  // namespace zorvel
