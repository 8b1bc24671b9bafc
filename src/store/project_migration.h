// Brings a project of an older version up to date, always on a copy: what is there stays whole
// until the new file is. Failures are thrown as FileFailure.
#pragma once

#include <memory>
#include <string>

#include "store/file_handle.h"
#include "store/sqlite_connection.h"

namespace zorvel {

// A copy in memory, of today's version, for a file that is not to be written. old: checked, of that
// version.
std::unique_ptr<Connection> upgradedInMemory(Connection& old, int version);

// Puts a file of today's version in the place of the old one, which is kept beside it under the
// name that keptOldPath() gives. held: the old file, marked. The handle of the new one.
std::unique_ptr<FileHandle> upgradeFile(const std::string& path, std::unique_ptr<FileHandle> held,
                                        std::unique_ptr<Connection> old, int version,
                                        const char* vfs);

// "NAME.zorvel.version-1.bak", or with a number behind it where that name is taken.
std::string keptOldPath(const std::string& path, int version);

}  // namespace zorvel
