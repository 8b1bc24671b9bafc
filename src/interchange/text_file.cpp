#include "interchange/text_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <new>
#include <stdexcept>
#include <utility>

#include "base/files.h"
#include "base/numbers.h"
#include "interchange/characters.h"
#include "interchange/encoding_guess.h"

namespace zorvel {
namespace {

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

std::string hexadecimal(char byte) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    return {'0', 'x', digits[value >> 4U], digits[value & 15U]};
}

// Appends all that is left to read; the error number, 0 if all went well.
int readAll(int descriptor, std::size_t expected, std::string& bytes) {
    constexpr std::size_t smallestStep = 65536;
    std::size_t size = 0;
    while (true) {
        // One byte more than expected, so that the end of the file shows without another growth.
        const std::size_t step = std::max({smallestStep, expected + 1, size});
        if (size == bytes.size()) bytes.resize(size + step);
        const ssize_t count = read(descriptor, bytes.data() + size, bytes.size() - size);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return errno;
        if (count == 0) break;
        size += static_cast<std::size_t>(count);
        expected = 0;
    }
    bytes.resize(size);
    return 0;
}

// A device gives bytes without an end, but for terminals and the one that has none at all.
bool mayNeverEnd(int descriptor, const struct stat& status) {
    if (!S_ISCHR(status.st_mode) || isatty(descriptor) == 1) return false;
    struct stat null {};
    return stat("/dev/null", &null) != 0 || null.st_rdev != status.st_rdev;
}

Result<std::string> readDescriptor(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0) return systemProblem("cannot be read", errno);
    if (S_ISDIR(status.st_mode)) return systemProblem("cannot be read", EISDIR);
    if (mayNeverEnd(descriptor, status)) return Problem{"cannot be read: it is a device"};
    const auto expected = S_ISREG(status.st_mode) ? static_cast<std::size_t>(status.st_size) : 0;
    std::string bytes;
    int error = ENOMEM;
    try {
        error = readAll(descriptor, expected, bytes);
    } catch (const std::bad_alloc&) {
    } catch (const std::length_error&) {
    }
    if (error != 0) return systemProblem("cannot be read", error);
    return bytes;
}

}  // namespace

Result<std::string> decodeText(std::string bytes) {
    const std::size_t start = bytes.starts_with(utf8Mark) ? utf8Mark.size() : 0;
    const std::optional<NotUtf8> fault = whyNotUtf8(std::string_view(bytes).substr(start));
    if (!fault) {
        bytes.erase(0, start);
        return bytes;
    }
    const std::size_t offset = start + fault->offset;
    return Problem{"not UTF-8 text: it seems to be " + fault->seems + " (byte " +
                   hexadecimal(bytes[offset]) + " at offset " +
                   integerText(static_cast<std::int64_t>(offset)) + ", line " +
                   integerText(static_cast<std::int64_t>(lineNumber(bytes, offset))) +
                   "); save it as UTF-8 and try again"};
}

Result<std::string> readFileBytes(const std::string& path) {
    if (path == "-") return readDescriptor(STDIN_FILENO);
    const OpenFile file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!file) return systemProblem("cannot be opened", errno);
    return readDescriptor(file.descriptor());
}

Result<std::string> readTextFile(const std::string& path) {
    const Result<OpenFile> file = openRegularFile(path);
    if (!file) return file.problem();
    Result<std::string> bytes = readDescriptor(file.value().descriptor());
    if (!bytes) return bytes;
    return decodeText(std::move(bytes).value());
}

}  // namespace zorvel
