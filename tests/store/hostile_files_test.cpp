// Files that are no projects, or no longer, or only look like one: each is refused with its own
// trouble, in little time, and stays byte for byte as it was, alone in its folder.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "store/project_file.h"
#include "tests/support/plain_sqlite.h"
#include "tests/support/project_story.h"
#include "tests/support/scratch_folder.h"

namespace zorvel {
namespace {

std::string numberOf(FileTrouble trouble) {
    return std::to_string(static_cast<int>(trouble));
}

class HostileFiles : public QuickScratchFolder {
  protected:
    void SetUp() override {
        QuickScratchFolder::SetUp();
        const auto made =
            ProjectFile::create(path("project.zorvel"), *story_.states().front().records);
        ASSERT_TRUE(made.ok()) << made.problem().detail;
        whole_ = bytesOf("project.zorvel");
    }

    // What open() and load() say of the project; "fine" if nothing.
    std::string outcome(bool readOnly = false) {
        ProjectFileOptions options;
        options.readOnly = readOnly;
        auto file = ProjectFile::open(path("project.zorvel"), options);
        if (!file) return numberOf(file.problem().trouble) + " " + file.problem().detail;
        auto records = file.value()->load();
        if (!records) return numberOf(records.problem().trouble) + " " + records.problem().detail;
        return "fine";
    }

    // Whether opened to write or to read only, it is refused and stays as it is.
    void expectRefused(FileTrouble trouble) {
        const std::string before = bytesOf("project.zorvel");
        const std::size_t files = entries();
        for (const bool readOnly : {false, true}) {
            const std::string said = outcome(readOnly);
            EXPECT_TRUE(said.starts_with(numberOf(trouble) + " ")) << said;
        }
        EXPECT_TRUE(bytesOf("project.zorvel") == before) << "it was changed";
        EXPECT_EQ(entries(), files) << "something was left beside it";
    }

    void alter(const std::string& sql) const { PlainDatabase(path("project.zorvel")).run(sql); }

    ProjectStory story_;
    std::string whole_;
};

const std::string editSchema = "PRAGMA writable_schema=ON;";
const std::string endless =
    "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n) SELECT i FROM n";

TEST_F(HostileFiles, AlteredProjectsAreRefused) {
    const std::pair<FileTrouble, std::vector<std::string>> rows[] = {
        {FileTrouble::hostile,
         {"CREATE VIEW v AS SELECT * FROM taxon",
          "DROP TABLE taxon; CREATE VIEW taxon AS SELECT i AS id, 1 AS census,"
          " 1 AS name, i AS abundance, 1 AS include FROM (" +
              endless + ")",
          "CREATE TRIGGER t AFTER UPDATE ON taxon BEGIN DELETE FROM census; END",
          "ALTER TABLE taxon ADD COLUMN more AS (abundance + 1)",
          "CREATE INDEX i ON taxon(abundance)", "CREATE TABLE more(id INTEGER PRIMARY KEY)",
          editSchema + "INSERT INTO sqlite_schema VALUES('table', 'v', 'v', 0,"
                       " 'CREATE VIRTUAL TABLE v USING fts5(a)')",
          "DROP TABLE name; CREATE TABLE name(id INTEGER PRIMARY KEY, text TEXT NOT NULL"
          " CHECK(length(text) < 10))",
          "DROP TABLE project; DROP TABLE taxon; DROP TABLE census; DROP TABLE name;"
          "VACUUM; PRAGMA encoding='UTF-16le'; CREATE TABLE name(a)"}},
        {FileTrouble::damaged,
         {"DROP TABLE taxon",
          editSchema + "INSERT INTO sqlite_schema SELECT type, name, tbl_name,"
                       " rootpage, sql FROM sqlite_schema WHERE name = 'taxon'",
          editSchema + "UPDATE sqlite_schema SET rootpage = (SELECT rootpage FROM"
                       " sqlite_schema WHERE name = 'name') WHERE name = 'taxon'",
          editSchema + "UPDATE sqlite_schema SET rootpage = 999999"
                       " WHERE name = 'taxon'",
          editSchema + "UPDATE sqlite_schema SET sql = 'CREATE TABLE taxon(('"
                       " WHERE name = 'taxon'",
          "PRAGMA user_version=0",
          "DELETE FROM project",
          "INSERT INTO project VALUES(2, 'x', 1, 1)",
          "UPDATE project SET id = 7",
          "UPDATE project SET token = 1.5",
          "UPDATE project SET identity = '../../etc'",
          "UPDATE project SET identity = hex(zeroblob(100000))",
          "UPDATE project SET generation = 9223372036854775807",
          "UPDATE census SET id = 0 WHERE id = (SELECT min(id) FROM census)",
          "INSERT INTO census VALUES(4611686018427387904, 'x', 0, 0, '', 0)",
          "INSERT INTO taxon VALUES(9223372036854775807, (SELECT min(id) FROM census),"
          " NULL, 0, 1)",
          "UPDATE taxon SET id = 0 WHERE id = (SELECT min(id) FROM taxon)",
          "UPDATE taxon SET id = (SELECT max(id) FROM census) WHERE id = (SELECT max(id) FROM "
          "taxon)",
          "INSERT INTO name VALUES(-1, 'x')",
          "UPDATE census SET name = CAST(x'C328' AS TEXT)",
          "UPDATE census SET latitude = 'north'",
          "UPDATE census SET longitude = x'00'",
          "UPDATE census SET time_stamp = 0.5",
          "UPDATE name SET text = CAST(x'FF' AS TEXT) WHERE id ="
          " (SELECT max(id) FROM name)",
          "UPDATE name SET text = x'41'",
          "INSERT INTO name SELECT max(id) + 1, min(text) FROM name",
          "UPDATE taxon SET census = 987654",
          "UPDATE taxon SET census = 'North'",
          "UPDATE taxon SET name = 987654",
          "UPDATE taxon SET name = 'Abies'",
          "UPDATE taxon SET abundance = 'many'",
          "UPDATE taxon SET include = 2",
          "UPDATE taxon SET include = 'yes'"}},
        {FileTrouble::newerVersion, {"PRAGMA user_version=2"}},
        {FileTrouble::foreignDatabase, {"PRAGMA application_id=1234"}},
    };
    for (const auto& [trouble, statements] : rows) {
        for (const std::string& sql : statements) {
            SCOPED_TRACE(sql);
            put("project.zorvel", whole_);
            ASSERT_NO_THROW(alter(sql));
            expectRefused(trouble);
        }
    }
}

// One flipped bit anywhere: it is found, or stands in a value, which then is another valid one.
TEST_F(HostileFiles, FlippedBits) {
    int refused = 0;
    int flips = 0;
    for (std::size_t place = 0; place < whole_.size(); place += 97) {
        SCOPED_TRACE(place);
        std::string bytes = whole_;
        bytes[place] =
            static_cast<char>(static_cast<unsigned char>(bytes[place]) ^ (1U << place % 8));
        put("project.zorvel", bytes);
        const std::string said = outcome();
        ASSERT_FALSE(said.starts_with(numberOf(FileTrouble::other))) << said;
        ASSERT_TRUE(bytesOf("project.zorvel") == bytes) << "it was changed";
        ++flips;
        refused += said == "fine" ? 0 : 1;
    }
    EXPECT_GT(refused, flips / 20);
}

// NULL where no value may be missing: the schema forbids it, but a file edited by hand may have it.
TEST_F(HostileFiles, MissingValues) {
    for (const char* column :
         {"taxon SET census", "taxon SET abundance", "taxon SET include", "name SET text",
          "project SET identity", "project SET generation", "project SET token"}) {
        SCOPED_TRACE(column);
        put("project.zorvel", whole_);
        // Each connection reads the schema anew: without the constraint, then with it again.
        alter(editSchema +
              "CREATE TABLE kept AS SELECT name AS n, sql AS s FROM sqlite_schema;"
              "UPDATE sqlite_schema SET sql = replace(sql, ' NOT NULL', '');");
        alter("UPDATE " + std::string(column) + " = NULL;" + editSchema +
              "UPDATE sqlite_schema SET sql = (SELECT s FROM kept WHERE n = name)"
              " WHERE name <> 'kept'");
        alter("DROP TABLE kept");
        expectRefused(FileTrouble::damaged);
    }
}

TEST_F(HostileFiles, OtherKindsOfFile) {
    PlainDatabase(path("other.db")).run("CREATE TABLE census(id INTEGER PRIMARY KEY, name TEXT)");
    const std::string database = bytesOf("other.db");
    std::filesystem::remove(path("other.db"));
    const struct {
        const char* what;
        std::string bytes;
        FileTrouble trouble;
    } rows[] = {
        {"nothing", "", FileTrouble::empty},
        {"text", "North,South\nAbies alba,1,2\n", FileTrouble::notAProject},
        {"one byte", "S", FileTrouble::notAProject},
        {"zeros", std::string(100000, '\0'), FileTrouble::notAProject},
        {"the first word of a database", whole_.substr(0, 16), FileTrouble::damaged},
        {"database of another program", database, FileTrouble::foreignDatabase},
        {"header and nothing else", whole_.substr(0, 100), FileTrouble::damaged},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        put("project.zorvel", row.bytes);
        expectRefused(row.trouble);
    }
}

TEST_F(HostileFiles, Truncated) {
    constexpr std::size_t pageSize = 4096;
    ASSERT_GT(whole_.size(), 3 * pageSize);
    std::vector<std::size_t> sizes;
    for (std::size_t size = pageSize; size < whole_.size(); size += pageSize) {
        sizes.insert(sizes.end(), {size - 1, size, size + 1});
    }
    for (std::size_t size = 17; size < whole_.size(); size += 499) sizes.push_back(size);
    for (const std::size_t size : sizes) {
        SCOPED_TRACE(size);
        put("project.zorvel", whole_.substr(0, size));
        expectRefused(FileTrouble::damaged);
    }
}

void setNumber(std::string& bytes, std::size_t place, std::uint32_t number) {
    for (std::size_t i = 0; i < 4; ++i)
        bytes[place + i] = static_cast<char>(number >> (24 - 8 * i));
}

// Sizes and lists of pages that the file does not have, in its header and at the start of a page.
TEST_F(HostileFiles, PagesThatAreNotThere) {
    const auto pages = static_cast<std::uint32_t>(whole_.size() / 4096);
    const struct {
        const char* what;
        std::size_t place;
        std::uint32_t number;
    } rows[] = {
        {"more pages than the file has", 28, 0xFFFFFFFE},
        {"a list of free pages from one in use", 32, 2},
        {"a list of free pages beyond the end", 32, pages + 100},
        {"free pages without a list", 36, 7},
        {"a page with more cells than it has room for", 4096 + 3, 0xFFFFFFFF},
        {"a page whose cells stand outside it", 4096 + 5, 0xFFFFFFFF},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        std::string bytes = whole_;
        setNumber(bytes, row.place, row.number);
        put("project.zorvel", bytes);
        expectRefused(FileTrouble::damaged);
    }
}

// The schema is read before it can be compared with what is expected.
TEST_F(HostileFiles, EndlessSchema) {
    const std::string numbers =
        "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 5000) ";
    alter(editSchema + "INSERT INTO sqlite_schema " + numbers +
          "SELECT 'table', 't' || i, 't' || i, 2, 'CREATE TABLE t' || i || '(a)' FROM n");
    expectRefused(FileTrouble::hostile);
    EXPECT_NE(outcome().find("too much to read"), std::string::npos) << "it was read whole";
}

// A journal that is played back when the project is opened; SQLite deletes the file that it names.
class StrangeCompanions : public HostileFiles {
  protected:
    void SetUp() override {
        HostileFiles::SetUp();
        {
            PlainDatabase writing(path("project.zorvel"));
            writing.run(largeWrite);
            half_ = bytesOf("project.zorvel");
            journal_ = bytesOf("project.zorvel-journal");
        }
        ASSERT_NE(half_, whole_);
        put("victim", "thesis");
        const std::string victim = path("victim");
        std::uint32_t sum = 0;
        for (const char c : victim) sum += static_cast<std::uint32_t>(c);
        std::string ending(8, '\0');
        setNumber(ending, 0, static_cast<std::uint32_t>(victim.size()));
        setNumber(ending, 4, sum);
        const std::string magic = journal_.substr(0, 8);
        killer_ = journal_ + victim + ending + magic;
    }
    [[nodiscard]] bool isVictimThere() const { return bytesOf("victim") == "thesis"; }

    std::string half_;
    std::string journal_;
    std::string killer_;
};

TEST_F(StrangeCompanions, AreRefused) {
    const struct {
        const char* name;
        std::function<void(const std::string& companion)> make;
    } rows[] = {
        {"-journal", [&](const std::string& name) { put(name, killer_); }},
        {"-journal",
         [&](const std::string& name) {
             std::filesystem::create_symlink(path("victim"), path(name));
         }},
        {"-journal", [&](const std::string& name) { mkfifo(path(name).c_str(), 0600); }},
        {"-wal", [&](const std::string& name) { put(name, ""); }},
        {"-shm", [&](const std::string& name) { put(name, ""); }},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const std::string companion = std::string("project.zorvel") + row.name;
        put("project.zorvel", half_);
        row.make(companion);
        expectRefused(FileTrouble::strangeCompanion);
        EXPECT_TRUE(isVictimThere());
        std::filesystem::remove(path(companion));
    }
}

TEST_F(StrangeCompanions, PutBesideAnOpenProjectStopItsWrites) {
    put("project.zorvel", whole_);
    const auto file = ProjectFile::open(path("project.zorvel"));
    ASSERT_TRUE(file.ok() && file.value()->load().ok());
    put("project.zorvel-journal", killer_);
    const auto problem = file.value()->write(story_.states()[1].records);
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->trouble, FileTrouble::strangeCompanion);
    EXPECT_TRUE(file.value()->copyTo(path("copy.zorvel")));
    EXPECT_TRUE(bytesOf("project.zorvel") == whole_ && isVictimThere());
    std::filesystem::remove(path("project.zorvel-journal"));
    EXPECT_FALSE(file.value()->write(story_.states()[1].records));
}

// A journal that is put there after the check and before SQLite looks for it.
TEST_F(StrangeCompanions, DeleteNothingEvenIfPlayedBack) {
    put("project.zorvel", half_);
    put("project.zorvel-journal", killer_);
    EXPECT_ANY_THROW(alter("SELECT * FROM taxon"));
    EXPECT_TRUE(bytesOf("project.zorvel") == whole_) << "it was not played back";
    EXPECT_TRUE(isVictimThere());
}

// Changes may stand in the log alone, which a copy of the file is without.
TEST_F(HostileFiles, WriteAheadLog) {
    alter("PRAGMA journal_mode=WAL; UPDATE taxon SET abundance = 4");
    expectRefused(FileTrouble::hostile);
}

}  // namespace
}  // namespace zorvel
