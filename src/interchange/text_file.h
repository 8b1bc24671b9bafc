// Reading a file as text, guessing which format it holds, and writing files whole. Messages are
// parts of sentences that follow the file's name, which they do not hold. Any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/result.h"

namespace zorvel {

// The text of a file's bytes: a UTF-8 byte-order mark is dropped; anything that is not UTF-8 is
// refused with a message that names the encoding it seems to be (UTF-16, UTF-32, Latin-1 or
// Windows-1252, or none: binary) and the place of the first byte at fault: its offset from 0, its
// line from 1. Text of which a quarter or more is NUL bytes is not taken for UTF-8.
Result<std::string> decodeText(std::string bytes);

// The bytes of a file or a pipe, or of standard input for "-". Directories and files that cannot be
// opened or read are problems with the system's words.
Result<std::string> readFileBytes(const std::string& path);

// Both.
Result<std::string> readTextFile(const std::string& path);

enum class FileKind { list, census, matrix, ios };

// True where the bytes begin as a project file does.
bool looksLikeProjectFile(std::string_view bytes);

// The kind that a text seems to be: ios by its quoted header cells and the shape of the next line,
// list where there are only whole numbers and separators, census where the first line is a name and
// a whole number; matrix where nothing speaks for another.
FileKind guessFileKind(std::string_view text);

// Writes a file whole or not at all: a temporary file beside it, synced, then renamed over it. An
// existing file keeps its mode, and its owner as far as the system allows; a symbolic link stays
// and its target is replaced. What cannot be replaced is written directly: pipes, devices, and open
// descriptors named as /dev/stdout or /dev/fd/N.
std::optional<Problem> writeFileWhole(const std::string& path, std::string_view bytes);

}  // namespace zorvel
