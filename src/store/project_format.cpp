#include "store/project_format.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <utility>
#include <vector>

#include "base/files.h"
#include "store/file_failure.h"
#include "store/project_file.h"

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

// As SQLite stores it in the headers of its files.
std::uint32_t numberAt(std::string_view bytes, std::size_t place) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        number = number << 8 | static_cast<unsigned char>(bytes[place + i]);
    }
    return number;
}

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

// For a message: short and printable.
std::string shown(std::string_view text) {
    constexpr std::size_t longest = 60;
    std::string result;
    for (const char c : text.substr(0, longest)) result += c >= ' ' && c <= '~' ? c : '?';
    return result;
}

std::string_view tableOf(std::string_view statement) {
    constexpr std::string_view start = "CREATE TABLE ";
    return statement.substr(start.size(), statement.find('(') - start.size());
}

// A page that the disk cannot read is no damage of the file: such a finding ends with the error
// code.
FileTrouble troubleOfFinding(std::string_view finding) {
    constexpr std::string_view label = "error code=";
    const std::size_t place = finding.find(label);
    if (place == std::string_view::npos) return FileTrouble::damaged;
    int code = 0;
    const std::string_view number = finding.substr(place + label.size());
    std::from_chars(number.data(), number.data() + number.size(), code);
    return (code & 0xFF) == SQLITE_IOERR ? FileTrouble::inputOutput : FileTrouble::damaged;
}

// SQLite keeps statistics for its planner there if asked to (ANALYZE). They do no harm.
bool isStatistics(std::string_view sql) {
    return sql == "CREATE TABLE sqlite_stat1(tbl,idx,stat)";
}

void checkTables(Connection& connection) {
    std::vector<std::string_view> missing(projectTables.begin(), projectTables.end());
    Statement entries(connection, "SELECT type, name, sql FROM sqlite_schema");
    while (entries.next()) {
        const std::string_view sql = entries.text(2);
        const auto expected = std::find(missing.begin(), missing.end(), sql);
        if (entries.text(0) == "table" && expected != missing.end() &&
            entries.text(1) == tableOf(sql)) {
            missing.erase(expected);
        } else if (!isStatistics(sql)) {
            fail(FileTrouble::hostile, shown(entries.text(0)) + " " + shown(entries.text(1)) +
                                           " is none of a project: " + shown(sql));
        }
    }
    if (!missing.empty()) {
        fail(FileTrouble::damaged,
             "table " + std::string(tableOf(missing.front())) + " is missing");
    }
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

bool startsLikeProject(std::string_view bytes) {
    return bytes.starts_with(magic);
}

void checkHeader(std::string_view start) {
    if (start.empty()) fail(FileTrouble::empty);
    if (!startsLikeProject(start)) fail(FileTrouble::notAProject);
    if (start.size() < headerSize) fail(FileTrouble::damaged, "the file ends within its header");
    if (numberAt(start, applicationAt) != projectApplicationId) fail(FileTrouble::foreignDatabase);
    const std::uint32_t version = numberAt(start, versionAt);
    if (version != projectVersion) {
        fail(version > projectVersion ? FileTrouble::newerVersion : FileTrouble::damaged,
             "version " + std::to_string(version));
    }
    if (start[journalAt] != 1 || start[journalAt + 1] != 1) {
        fail(FileTrouble::hostile, "a write-ahead log instead of a rollback journal");
    }
    const std::uint32_t encoding = numberAt(start, encodingAt);
    if (encoding != utf8Encoding) {
        fail(FileTrouble::hostile, "text encoding " + std::to_string(encoding));
    }
}

std::uint32_t changeCount(std::string_view start) {
    if (start.size() < headerSize) fail(FileTrouble::damaged, "the file ends within its header");
    return numberAt(start, changeCountAt);
}

void makeTables(Connection& connection) {
    for (const char* table : projectTables) connection.run(table, "make the tables");
    const std::string marks = "PRAGMA application_id=" + std::to_string(projectApplicationId) +
                              "; PRAGMA user_version=" + std::to_string(projectVersion) + ";";
    connection.run(marks.c_str(), "mark as a project");
}

void checkDatabase(Connection& connection) {
    Transaction transaction(connection, Transaction::Kind::read);
    checkTables(connection);
    checkPages(connection);
    transaction.commit();
}

// Without an index, the full check costs no more than the quick one.
void checkPages(Connection& connection) {
    Statement findings(connection, "PRAGMA integrity_check(1)");
    while (findings.next()) {
        const std::string_view finding = findings.text(0);
        if (finding != "ok") fail(troubleOfFinding(finding), shown(finding));
    }
}

}  // namespace zorvel
