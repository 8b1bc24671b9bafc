#include "interchange/text_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "base/numbers.h"
#include "base/text.h"
#include "interchange/characters.h"

namespace zorvel {
namespace {

using namespace std::string_view_literals;

constexpr std::string_view utf8Mark = "\xEF\xBB\xBF";

std::string hexadecimal(char byte) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto value = static_cast<unsigned char>(byte);
    return {'0', 'x', digits[value >> 4U], digits[value & 15U]};
}

// Most devices give bytes without end, except terminals and the null device.
bool mayNeverEnd(int descriptor, const struct stat& status) {
    if (!S_ISCHR(status.st_mode) || isatty(descriptor) == 1) return false;
    struct stat null {};
    return stat("/dev/null", &null) != 0 || null.st_rdev != status.st_rdev;
}

// What bytes that are not UTF-8 text seem to be, for a message: the first byte at fault, and a name
// for what the bytes are.
struct NotUtf8 {
    std::size_t offset = 0;
    std::string seems;
};

struct Mark {
    std::string_view bytes;
    const char* encoding;
};

// The marks of UTF-32 before those of UTF-16 that begin like them.
constexpr std::array<Mark, 4> marks = {{{"\xFF\xFE\0\0"sv, "UTF-32"},
                                        {"\0\0\xFE\xFF"sv, "UTF-32"},
                                        {"\xFF\xFE"sv, "UTF-16"},
                                        {"\xFE\xFF"sv, "UTF-16"}}};

constexpr std::size_t sampleSize = 65536;

// Western text in UTF-16 has a NUL in most characters, always the same of their two bytes; in
// UTF-32 the third byte and the first or last are NUL in all characters.
const char* wideEncoding(std::string_view sample) {
    std::array<std::size_t, 4> zeros{};
    for (std::size_t i = 0; i < sample.size(); ++i) zeros[i % 4] += sample[i] == '\0';
    const std::size_t units = sample.size() / 4;
    if (units == 0) return nullptr;
    if (zeros[1] >= units && zeros[2] >= units && (zeros[0] == 0 || zeros[3] == 0)) {
        return "UTF-32";
    }
    const std::size_t even = zeros[0] + zeros[2];
    const std::size_t odd = zeros[1] + zeros[3];
    const bool oneSided = std::min(even, odd) * 16 <= std::max(even, odd);
    return oneSided && std::max(even, odd) >= units ? "UTF-16" : nullptr;
}

bool isControl(unsigned char byte) {
    return byte < 0x20 && byte != '\t' && !(byte >= '\n' && byte <= '\r') && byte != 0x1A;
}

// Sequences of two bytes or more that are well-formed, and bytes that belong to none.
struct Utf8Census {
    std::size_t sequences = 0;
    std::size_t strays = 0;
};

Utf8Census takeUtf8Census(std::string_view sample) {
    Utf8Census census;
    while (!sample.empty()) {
        const std::size_t valid = firstInvalidUtf8(sample).value_or(sample.size());
        census.sequences += static_cast<std::size_t>(
            std::count_if(sample.begin(), sample.begin() + static_cast<std::ptrdiff_t>(valid),
                          [](char c) { return static_cast<unsigned char>(c) >= 0xC2; }));
        if (valid == sample.size()) break;
        ++census.strays;
        sample.remove_prefix(valid + 1);
    }
    return census;
}

// Windows-1252 has characters where Latin-1 has none (0x80 to 0x9F), except at five places.
const char* eightBitEncoding(std::string_view sample) {
    bool windows = false;
    for (const char c : sample) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x80 || byte > 0x9F) continue;
        if ("\x81\x8D\x8F\x90\x9D"sv.find(c) != std::string_view::npos) {
            return "text in another 8-bit encoding";
        }
        windows = true;
    }
    return windows ? "Windows-1252 text" : "Latin-1 (ISO 8859-1) text";
}

std::string describe(std::string_view sample) {
    const bool binary = std::any_of(sample.begin(), sample.end(), [](char c) {
        return isControl(static_cast<unsigned char>(c));
    });
    if (binary) return "binary data";
    const Utf8Census census = takeUtf8Census(sample);
    if (census.sequences > census.strays) return "damaged UTF-8 text";
    return eightBitEncoding(sample);
}

// A part of the text around the fault, from its start where that is near.
std::string_view sampleAround(std::string_view bytes, std::size_t offset) {
    const std::size_t start = offset < sampleSize / 2 ? 0 : offset - sampleSize / 2;
    return bytes.substr(start / 4 * 4, sampleSize);
}

// Absent for UTF-8 text (without a byte-order mark). Text that is full of NUL bytes is UTF-8 only
// by accident and counts as UTF-16, UTF-32 or binary data.
std::optional<NotUtf8> whyNotUtf8(std::string_view bytes) {
    for (const Mark& mark : marks) {
        if (bytes.starts_with(mark.bytes)) return NotUtf8{0, std::string(mark.encoding) + " text"};
    }
    const std::string_view start = bytes.substr(0, sampleSize);
    const auto zeros = static_cast<std::size_t>(std::count(start.begin(), start.end(), '\0'));
    const bool manyZeros = zeros > 0 && zeros * 4 >= start.size();
    const char* wide = manyZeros ? wideEncoding(start) : nullptr;
    if (wide) return NotUtf8{start.find('\0'), std::string(wide) + " text"};
    if (manyZeros) return NotUtf8{start.find('\0'), "binary data"};
    const std::optional<std::size_t> invalid = firstInvalidUtf8(bytes);
    if (!invalid) return std::nullopt;
    return NotUtf8{*invalid, describe(sampleAround(bytes, *invalid))};
}

}  // namespace

Result<InputFile> InputFile::open(const std::string& path) {
    Result<OpenFile> file = openRegularFile(path);
    if (!file) return file.problem();
    return made(std::move(file).value());
}

Result<InputFile> InputFile::openAny(const std::string& path) {
    OpenFile file(path == "-" ? fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)
                              : ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!file) return systemProblem("cannot be opened", errno);
    return made(std::move(file));
}

Result<InputFile> InputFile::made(OpenFile file) {
    struct stat status {};
    if (fstat(file.descriptor(), &status) != 0) return systemProblem("cannot be read", errno);
    if (S_ISDIR(status.st_mode)) return systemProblem("cannot be read", EISDIR);
    if (mayNeverEnd(file.descriptor(), status)) return Problem{"cannot be read: it is a device"};
    return InputFile(std::move(file), status);
}

void InputFile::readStart(std::size_t size) {
    if (atEnd_ || bytes_.size() >= size) return;
    std::size_t used = bytes_.size();
    try {
        readOn(size, used);
    } catch (const std::bad_alloc&) {
        end(ENOMEM);
    } catch (const std::length_error&) {
        end(ENOMEM);
    }
    bytes_.resize(used);
}

void InputFile::readOn(std::size_t size, std::size_t& used) {
    constexpr std::size_t smallestStep = 65536;
    const auto expected = S_ISREG(status_.st_mode) ? static_cast<std::size_t>(status_.st_size) : 0;
    while (used < size && !atEnd_) {
        if (used == bytes_.size()) {
            // One byte more than expected, so that the end of the file shows without more room.
            const std::size_t all = std::max({used + smallestStep, expected + 1, 2 * used});
            bytes_.resize(std::min(all, size));
        }
        used += readNext(bytes_.data() + used, bytes_.size() - used);
    }
}

std::size_t InputFile::readNext(char* bytes, std::size_t size) {
    while (!atEnd_) {
        const ssize_t count = ::read(file_.descriptor(), bytes, size);
        if (count > 0) return static_cast<std::size_t>(count);
        if (count == 0) end(0);
        if (count < 0 && errno != EINTR) end(errno);
    }
    return 0;
}

void InputFile::end(int error) {
    error_ = error;
    atEnd_ = true;
    file_.close();
}

std::size_t InputFile::read(char* bytes, std::size_t size) {
    if (given_ == bytes_.size()) return readNext(bytes, size);
    const std::size_t count = bytes_.copy(bytes, size, given_);
    given_ += count;
    if (given_ == bytes_.size()) {
        bytes_ = {};
        given_ = 0;
    }
    return count;
}

std::optional<Problem> InputFile::problem() const {
    if (error_ == 0) return std::nullopt;
    return systemProblem("cannot be read", error_);
}

Result<std::string> InputFile::bytes() && {
    readStart(SIZE_MAX);
    if (const auto why = problem()) return *why;
    return std::exchange(bytes_, {});
}

Result<std::string> InputFile::text() && {
    Result<std::string> read = std::move(*this).bytes();
    return read ? decodeText(std::move(read).value()) : std::move(read);
}

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

}  // namespace zorvel
