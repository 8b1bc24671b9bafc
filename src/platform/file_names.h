// Between the names of projects and those of their files. Any thread.
#pragma once

#include <QString>

namespace zorvel {

inline constexpr char projectEnding[] = ".zorvel";

// The file's name without folder and ending: what a project from that file is called.
QString displayNameOf(const QString& path);

// The display name as a part of a file's name: without the characters that no file can have there,
// and of no more than 120 bytes.
QString asFileName(const QString& displayName);

}  // namespace zorvel
