// What a project file looks like before its rows are read: the files beside it, the header of the
// file, and its tables (docs/file-format.md describes them for others). What is published never
// changes: a change is a new version. Failures are thrown as FileFailure.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "store/sqlite_connection.h"

namespace zorvel {

// --- The files that SQLite looks for beside a database, to read them into it. Whoever can write to
// the folder can put one there, so they are checked before SQLite reads them.

// What is appended to the name of the database.
inline constexpr std::array<const char*, 3> companionEndings = {"-journal", "-wal", "-shm"};

// The companion that holds a write that was cut off.
std::string journalOf(const std::string& path);

// Fails if a companion is not one that this program leaves beside a project: SQLite would add a log
// to the file, and, after playing back a journal, delete whatever file the journal names at its
// end.
void checkCompanions(const std::string& path);

// --- The header: enough to tell a project from any other file before SQLite opens it.

inline constexpr std::size_t headerSize = 100;

// "Zrvl" and the version, as the header has them.
inline constexpr std::uint32_t projectApplicationId = 0x5A72766C;
inline constexpr std::uint32_t projectVersion = 1;

// start: the first headerSize bytes, or all there are. Fails if the file is no project, or one of a
// later version.
void checkHeader(std::string_view start);

// SQLite's count of the transactions that have changed the file.
std::uint32_t changeCount(std::string_view start);

// --- The tables.

// The statement that made each table, letter by letter.
inline constexpr std::array<const char*, 4> projectTables = {
    "CREATE TABLE project(id INTEGER PRIMARY KEY, identity TEXT NOT NULL,"
    " generation INTEGER NOT NULL, token INTEGER NOT NULL)",
    "CREATE TABLE name(id INTEGER PRIMARY KEY, text TEXT NOT NULL)",
    // Latitude and longitude have no declared type: in a column of type REAL, SQLite turns -0 into
    // 0. There is no index and no constraint: rows are found by their identity, and all of them are
    // checked when they are read.
    "CREATE TABLE census(id INTEGER PRIMARY KEY, name TEXT, latitude, longitude,"
    " notes TEXT, time_stamp INTEGER)",
    "CREATE TABLE taxon(id INTEGER PRIMARY KEY,"
    " census INTEGER NOT NULL REFERENCES census(id),"
    " name INTEGER REFERENCES name(id), abundance INTEGER NOT NULL,"
    " include INTEGER NOT NULL)"};

// Makes the tables in an empty database, and marks it as a project.
void makeTables(Connection& connection);

// Fails if the database holds anything but these tables, or if its pages contradict one another.
void checkDatabase(Connection& connection);
// Only the second of these checks.
void checkPages(Connection& connection);

}  // namespace zorvel
