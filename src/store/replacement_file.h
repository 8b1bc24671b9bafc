// A file that is built under another name in the same folder, and takes its path only when it is
// whole and safe on the disk; until then what stood at the path stays as it was. Gone without a
// trace where it does not come to that. Failures are thrown as FileFailure.
#pragma once

#include <memory>
#include <string>

#include "base/files.h"
#include "store/file_handle.h"

namespace zorvel {

class ReplacementFile {
  public:
    using Place = TemporaryFile::Place;
    // An empty file. A file at the path must be one that may be written, and must not be open
    // elsewhere; its permissions, and where possible its owner, go over to the new one. path: see
    // resolvedPath().
    ReplacementFile(const std::string& path, const char* vfs, Place place = Place::any);
    // The same where the file at the path is held already, and marked.
    ReplacementFile(std::string path, const char* vfs, std::unique_ptr<FileHandle> replaced);
    // Those of another file, before this one is filled. more: permissions added to them.
    void adoptPermissions(const FileHandle& from, mode_t more = 0);

    [[nodiscard]] const std::string& temporaryPath() const { return temporary_.path(); }

    // Takes the path. The handle of the new file, marked as open. It has its place already where
    // only the syncing of the folder failed.
    std::unique_ptr<FileHandle> takePlace();

  private:
    void clearCompanions();

    std::string path_;
    const char* vfs_;
    Place place_ = Place::any;
    std::unique_ptr<FileHandle> replaced_;
    TemporaryFile temporary_;
    std::unique_ptr<FileHandle> handle_;
};

// Removes what killed programs have left in a folder of files that they had not finished: what no
// running program has marked as its own, or nobody has touched for a day.
void removeUnfinishedFiles(const std::string& folder);

}  // namespace zorvel
