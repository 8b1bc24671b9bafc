// Writing files so that a reader finds the old content or the new one, never a part. Messages are
// parts of sentences that follow the file's name, which they do not hold. Any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/result.h"

namespace zorvel {

// Writes a file whole or not at all: a temporary file beside it, synced, then renamed over it. An
// existing file keeps its mode, and its owner as far as the system allows; a symbolic link stays
// and its target is replaced. What cannot be replaced is written directly: pipes, devices, and open
// descriptors named as /dev/stdout or /dev/fd/N.
std::optional<Problem> writeFileWhole(const std::string& path, std::string_view bytes);

}  // namespace zorvel
