// Reading a file as text. Messages are parts of sentences that follow the file's name, which they
// do not hold. Any thread.
#pragma once

#include <string>

#include "base/result.h"

namespace zorvel {

// The text of a file's bytes: a UTF-8 byte-order mark is dropped; anything that is not UTF-8 is
// refused with a message that names the encoding it seems to be (UTF-16, UTF-32, Latin-1 or
// Windows-1252, or none: binary) and the place of the first byte at fault: its offset from 0, its
// line from 1. Text of which a quarter or more is NUL bytes is not taken for UTF-8.
Result<std::string> decodeText(std::string bytes);

// The bytes of a file or a pipe, or of standard input for "-". Directories and files that cannot be
// opened or read are problems with the system's words; devices that may never end are refused.
Result<std::string> readFileBytes(const std::string& path);

// The text of a regular file; pipes and devices are refused, see openRegularFile().
Result<std::string> readTextFile(const std::string& path);

}  // namespace zorvel
