// Paths beside a project file, for this folder alone: failures are thrown as FileFailure.
#pragma once

#include <string>
#include <string_view>

namespace zorvel {

// The absolute path of what a path stands for in the end: symbolic links followed, to a file that
// need not be there.
std::string resolvedPath(const std::string& path);

std::string folderOf(const std::string& path);

bool isFolderWritable(const std::string& folder);

// A name that no file has, in the same folder as path, with this start and end.
inline constexpr std::string_view temporaryStart = ".zorvel-";
inline constexpr std::string_view temporaryEnd = ".tmp";
std::string temporaryBeside(const std::string& path);

// Makes a rename safe on the disk. descriptor: of a file in the folder, through which all of its
// disk is synced where the folder itself may not be read.
void syncFolder(const std::string& folder, int descriptor);

}  // namespace zorvel
