#include "store/companion_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <string_view>
#include <utility>

#include "base/files.h"
#include "store/file_failure.h"
#include "store/project_header.h"

namespace zorvel {
namespace {

constexpr std::string_view journalMagic("\xD9\xD5\x05\xF9\x20\xA1\x63\xD7", 8);

// A journal may end with the name of a file, its length, the sum of its bytes, and the magic.
constexpr std::size_t lengthFromEnd = 16;
constexpr std::size_t sumFromEnd = 12;

// The last bytes of a file, enough for the longest name.
std::string tailOf(const std::string& path) {
    constexpr off_t longest = 4096;
    const OpenFile file(open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file) {
        // Gone by now, or one that SQLite cannot read either.
        if (errno == ENOENT || errno == EACCES) return {};
        failWithErrno(errno, "open the journal");
    }
    const off_t start = std::max<off_t>(lseek(file.descriptor(), 0, SEEK_END) - longest, 0);
    Result<std::string> bytes =
        readBytes(file.descriptor(), longest, static_cast<std::size_t>(start));
    if (!bytes) failWithErrno(bytes.problem().systemError, "read the journal");
    return std::move(bytes).value();
}

bool namesAnotherFile(std::string_view tail) {
    if (tail.size() < lengthFromEnd || !tail.ends_with(journalMagic)) return false;
    const std::size_t nameEnd = tail.size() - lengthFromEnd;
    const std::size_t length = numberAt(tail, nameEnd);
    if (length == 0 || length > nameEnd) return false;
    std::uint32_t sum = numberAt(tail, tail.size() - sumFromEnd);
    for (const char c : tail.substr(nameEnd - length, length)) sum -= static_cast<std::uint32_t>(c);
    return sum == 0;
}

[[noreturn]] void refuse(const std::string& companion, const char* why) {
    fail(FileTrouble::strangeCompanion, companion + " " + why);
}

}  // namespace

std::string journalOf(const std::string& path) {
    return path + companionEndings.front();
}

void checkCompanions(const std::string& path) {
    for (const char* ending : companionEndings) {
        const std::string companion = path + ending;
        struct stat status {};
        if (lstat(companion.c_str(), &status) != 0) continue;
        if (!S_ISREG(status.st_mode)) refuse(companion, "is a link or a device");
        if (companion != journalOf(path)) refuse(companion, "is a write-ahead log");
        if (namesAnotherFile(tailOf(companion))) refuse(companion, "names a file to be deleted");
    }
}

}  // namespace zorvel
