#include "store/file_paths.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <system_error>

#include "store/file_failure.h"
#include "store/random_bytes.h"

namespace zorvel {

std::string resolvedPath(const std::string& path) {
    constexpr int longestChain = 40;
    std::error_code error;
    std::filesystem::path resolved = std::filesystem::absolute(path, error);
    for (int i = 0; i < longestChain; ++i) {
        const std::filesystem::path next = std::filesystem::read_symlink(resolved, error);
        if (error) return resolved.string();
        resolved = resolved.parent_path() / next;
    }
    failWithErrno(ELOOP, "follow the symbolic links");
}

std::string folderOf(const std::string& path) {
    return std::filesystem::path(path).parent_path().string();
}

bool isFolderWritable(const std::string& folder) {
    return faccessat(AT_FDCWD, folder.c_str(), W_OK | X_OK, AT_EACCESS) == 0;
}

std::string temporaryBeside(const std::string& path) {
    return folderOf(path) + "/" + std::string(temporaryStart) + randomHexadecimal(8) +
           std::string(temporaryEnd);
}

void syncFolder(const std::string& folder, int descriptor) {
    const int opened = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened < 0 && errno != EACCES) failWithErrno(errno, "open the folder");
    const int error = (opened < 0 ? syncfs(descriptor) : fsync(opened)) == 0 ? 0 : errno;
    if (opened >= 0) close(opened);
    // Some network file systems cannot sync a folder, and say so.
    if (error != 0 && error != EINVAL) failWithErrno(error, "sync the folder");
}

}  // namespace zorvel
