// The shape of a project file, version by version (docs/file-format.md is its description for
// others). What is published never changes: a change is a new version with a step that leads to it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "store/sqlite_connection.h"

namespace zorvel {

// "Zrvl", in the header of the file.
inline constexpr std::uint32_t projectApplicationId = 0x5A72766C;

struct ProjectFormat {
    // The user_version in the header of the file.
    int version = 0;
    // Of each table, the statement that made it, letter by letter.
    std::vector<std::string> tables;
    // Statements that turn a file of the version before into one of this version.
    std::string upgrade;
};

// All versions that can be read, oldest first; the last one is what is written.
const std::vector<ProjectFormat>& projectFormats();

// Puts other versions in the place of those above while it lives, so that the way from an older
// version to a newer one can be tried before there is one.
class FormatsForTest {
  public:
    explicit FormatsForTest(std::vector<ProjectFormat> formats);
    ~FormatsForTest();
    FormatsForTest(const FormatsForTest&) = delete;
    FormatsForTest& operator=(const FormatsForTest&) = delete;
};

// Makes the tables in an empty database, and marks it as a project.
void makeTables(Connection& connection, const ProjectFormat& format);

// Sets the marks in the header of the file.
void markAsProject(Connection& connection, int version);

// Both checks below, for a database of that version that anybody may have made.
void checkDatabase(Connection& connection, int version);

// Fails where the database holds anything but the tables of that version.
void checkTables(Connection& connection, const ProjectFormat& format);

// Fails where the pages of the database contradict one another.
void checkPages(Connection& connection);

}  // namespace zorvel
