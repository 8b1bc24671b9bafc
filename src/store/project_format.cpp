#include "store/project_format.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "store/file_failure.h"
#include "store/sqlite_statement.h"

namespace zorvel {
namespace {

// Latitude and longitude have no declared type: in a column of type REAL, SQLite turns -0 into 0.
// There is no index and no constraint: rows are found by their identity, and all of them are
// checked when they are read.
std::vector<ProjectFormat> publishedFormats() {
    return {{1,
             {
                 "CREATE TABLE project(id INTEGER PRIMARY KEY, identity TEXT NOT NULL,"
                 " generation INTEGER NOT NULL, token INTEGER NOT NULL)",
                 "CREATE TABLE name(id INTEGER PRIMARY KEY, text TEXT NOT NULL)",
                 "CREATE TABLE census(id INTEGER PRIMARY KEY, name TEXT, latitude, longitude,"
                 " notes TEXT, time_stamp INTEGER)",
                 "CREATE TABLE taxon(id INTEGER PRIMARY KEY,"
                 " census INTEGER NOT NULL REFERENCES census(id),"
                 " name INTEGER REFERENCES name(id), abundance INTEGER NOT NULL,"
                 " include INTEGER NOT NULL)",
             },
             {}}};
}

std::vector<ProjectFormat>& formatsInUse() {
    static std::vector<ProjectFormat> formats = publishedFormats();
    return formats;
}

// What stands in a message: short, and of characters that do no harm.
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

// A page that the disk does not give is no damage of the file: such a finding ends with the code of
// the error.
FileTrouble troubleOfFinding(std::string_view finding) {
    constexpr std::string_view label = "error code=";
    const std::size_t place = finding.find(label);
    if (place == std::string_view::npos) return FileTrouble::damaged;
    int code = 0;
    const std::string_view number = finding.substr(place + label.size());
    std::from_chars(number.data(), number.data() + number.size(), code);
    return (code & 0xFF) == SQLITE_IOERR ? FileTrouble::inputOutput : FileTrouble::damaged;
}

// SQLite keeps statistics there for its planner if a person asks for them; of no use to us and of
// no harm.
bool isStatistics(std::string_view sql) {
    return sql == "CREATE TABLE sqlite_stat1(tbl,idx,stat)";
}

}  // namespace

const std::vector<ProjectFormat>& projectFormats() {
    return formatsInUse();
}

FormatsForTest::FormatsForTest(std::vector<ProjectFormat> formats) {
    formatsInUse() = std::move(formats);
}

FormatsForTest::~FormatsForTest() {
    formatsInUse() = publishedFormats();
}

void makeTables(Connection& connection, const ProjectFormat& format) {
    for (const std::string& table : format.tables) connection.run(table.c_str(), "make the tables");
    markAsProject(connection, format.version);
}

void markAsProject(Connection& connection, int version) {
    const std::string marks = "PRAGMA application_id=" + std::to_string(projectApplicationId) +
                              "; PRAGMA user_version=" + std::to_string(version) + ";";
    connection.run(marks.c_str(), "mark as a project");
}

void checkDatabase(Connection& connection, int version) {
    const auto format =
        std::find_if(projectFormats().begin(), projectFormats().end(),
                     [&](const ProjectFormat& known) { return known.version == version; });
    if (format == projectFormats().end()) fail(FileTrouble::damaged, "no such version");
    Transaction transaction(connection, Transaction::Kind::read);
    checkTables(connection, *format);
    checkPages(connection);
    transaction.commit();
}

void checkTables(Connection& connection, const ProjectFormat& format) {
    std::vector<std::string> missing = format.tables;
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

// Without an index, the full check costs no more than the quick one.
void checkPages(Connection& connection) {
    Statement findings(connection, "PRAGMA integrity_check(1)");
    while (findings.next()) {
        const std::string_view finding = findings.text(0);
        if (finding != "ok") fail(troubleOfFinding(finding), shown(finding));
    }
}

}  // namespace zorvel
