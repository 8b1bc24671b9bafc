// A file descriptor that closes itself, the opening of a file that is to be read, and the system's
// words for what went wrong with a file. Any thread.
#pragma once

#include <unistd.h>

#include <cerrno>
#include <string>
#include <string_view>
#include <utility>

#include "base/result.h"

namespace zorvel {

class OpenFile {
  public:
    // -1: no file.
    explicit OpenFile(int descriptor) : descriptor_(descriptor) {}
    ~OpenFile() { close(); }
    OpenFile(OpenFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    OpenFile& operator=(OpenFile&&) = delete;

    explicit operator bool() const { return descriptor_ >= 0; }
    [[nodiscard]] int descriptor() const { return descriptor_; }
    // The error number, 0 if all went well: some file systems tell of a failed write only here.
    int close() {
        if (descriptor_ < 0) return 0;
        const int result = ::close(descriptor_);
        descriptor_ = -1;
        return result == 0 ? 0 : errno;
    }

  private:
    int descriptor_;
};

// A regular file to read. A pipe or a device is refused, and left alone: it may never give a byte.
Result<OpenFile> openRegularFile(const std::string& path);

// "<what>: <the system's words for the error number>".
Problem systemProblem(std::string_view what, int error);

}  // namespace zorvel
