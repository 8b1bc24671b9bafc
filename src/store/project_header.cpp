#include "store/project_header.h"

#include <string>

#include "store/file_failure.h"
#include "store/project_file.h"
#include "store/project_format.h"

namespace zorvel {
namespace {

constexpr std::string_view magic("SQLite format 3\0", 16);

// Places in the header of an SQLite database, and what a project has there.
constexpr std::size_t journalAt = 18;  // 1 and 1: a rollback journal; 2: a write-ahead log
constexpr std::size_t changeCountAt = 24;
constexpr std::size_t encodingAt = 56;
constexpr std::size_t versionAt = 60;
constexpr std::size_t applicationAt = 68;
constexpr std::uint32_t utf8Encoding = 1;

}  // namespace

std::uint32_t numberAt(std::string_view bytes, std::size_t place) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        number = number << 8 | static_cast<unsigned char>(bytes[place + i]);
    }
    return number;
}

bool startsLikeProject(std::string_view bytes) {
    return bytes.starts_with(magic);
}

int checkHeader(std::string_view start) {
    if (start.empty()) fail(FileTrouble::empty);
    if (!startsLikeProject(start)) fail(FileTrouble::notAProject);
    if (start.size() < headerSize) fail(FileTrouble::damaged, "the file ends within its header");
    if (numberAt(start, applicationAt) != projectApplicationId) fail(FileTrouble::foreignDatabase);
    const std::uint32_t version = numberAt(start, versionAt);
    if (version > static_cast<std::uint32_t>(projectFormats().back().version)) {
        fail(FileTrouble::newerVersion, "version " + std::to_string(version));
    }
    if (version < static_cast<std::uint32_t>(projectFormats().front().version)) {
        fail(FileTrouble::damaged, "version " + std::to_string(version));
    }
    if (start[journalAt] != 1 || start[journalAt + 1] != 1) {
        fail(FileTrouble::hostile, "a write-ahead log instead of a rollback journal");
    }
    const std::uint32_t encoding = numberAt(start, encodingAt);
    if (encoding != utf8Encoding) {
        fail(FileTrouble::hostile, "text encoding " + std::to_string(encoding));
    }
    return static_cast<int>(version);
}

std::uint32_t changeCount(std::string_view start) {
    if (start.size() < headerSize) fail(FileTrouble::damaged, "the file ends within its header");
    return numberAt(start, changeCountAt);
}

}  // namespace zorvel
