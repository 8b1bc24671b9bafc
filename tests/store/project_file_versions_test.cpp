// A file of an older version, made up for the purpose: without notes, and with the names in the
// rows of the taxa.
#include "store/project_format.h"
#include "tests/store/project_file_support.h"
#include "tests/support/plain_sqlite.h"

namespace zorvel {
namespace {

// Today's shape becomes the second version.
std::vector<ProjectFormat> madeUpFormats(const std::string& lastStatement) {
    ProjectFormat today = projectFormats().back();
    ProjectFormat older{1,
                        {today.tables[0], "CREATE TABLE census(id INTEGER PRIMARY KEY, name TEXT)",
                         "CREATE TABLE taxon(id INTEGER PRIMARY KEY, census INTEGER, name TEXT,"
                         " abundance INTEGER)"},
                        {}};
    today.version = 2;
    today.upgrade =
        "PRAGMA legacy_alter_table=ON;"
        "ALTER TABLE census RENAME TO old_census; ALTER TABLE taxon RENAME TO old_taxon;" +
        today.tables[1] + ";" + today.tables[2] + ";" + today.tables[3] +
        ";"
        "INSERT INTO name(text) SELECT DISTINCT name FROM old_taxon WHERE name IS NOT NULL;"
        "INSERT INTO census SELECT id, name, 0.0, 0.0, NULL, NULL FROM old_census;"
        "INSERT INTO taxon SELECT t.id, census, n.id, abundance, 1"
        " FROM old_taxon t LEFT JOIN name n ON n.text = t.name ORDER BY t.id;"
        "DROP TABLE old_census; DROP TABLE old_taxon;" +
        lastStatement;
    return {older, today};
}

class ProjectVersions : public ProjectFileTest {
  protected:
    void makeOld(const ProjectFormat& format) {
        PlainDatabase database(path("p.zorvel"));
        for (const std::string& table : format.tables) database.run(table);
        database.run(
            "INSERT INTO project VALUES(1, 'old-one', 5, 6);"
            "INSERT INTO census VALUES(1, 'North'), (4, NULL);"
            "INSERT INTO taxon VALUES(2, 1, 'Abies alba', 7), (3, 1, NULL, -1),"
            " (5, 4, 'Abies alba', 9);"
            "PRAGMA user_version=1;"
            "PRAGMA application_id=" +
            std::to_string(projectApplicationId));
    }
    static std::string summary(const ProjectRecords& records) {
        std::string text;
        for (const BlockPointer& block : records.censuses) {
            text += block->attributes.name.value_or("?").str() + ":";
            block->forEachTaxon([&](const TaxonRecord& taxon) {
                text += " " + taxon.values.name.value_or("?").str() + "=" +
                        std::to_string(taxon.values.abundance);
            });
            text += ";";
        }
        return text;
    }
    static constexpr const char* expected = "North: Abies alba=7 ?=-1;?: Abies alba=9;";
};

TEST_F(ProjectVersions, OlderFileIsBroughtUpToDateAndKept) {
    const FormatsForTest formats(madeUpFormats(""));
    makeOld(projectFormats().front());
    put("p.zorvel.version-1.bak", "something else");
    {
        const Opened found = opened(path("p.zorvel"));
        EXPECT_EQ(summary(found.records), expected);
        EXPECT_EQ(found.file->projectId(), "old-one");
        ObjectContext context;
        context.adopt(found.records);
        context.setNotes(context.censuses().front(), "new");
        EXPECT_FALSE(found.file->write(context.frozenCopy()));
        EXPECT_EQ(troubleOf(path("p.zorvel")), numberOf(FileTrouble::heldElsewhere));
    }
    EXPECT_EQ(rows(path("p.zorvel"), "SELECT notes FROM census WHERE id = 1"),
              std::vector<std::string>{"new"});
    EXPECT_EQ(rows(path("p.zorvel"), "PRAGMA user_version"), std::vector<std::string>{"2"});
    EXPECT_EQ(rows(path("p.zorvel.version-1.bak-2"), "SELECT * FROM taxon"),
              (std::vector<std::string>{"2|1|Abies alba|7", "3|1|NULL|-1", "5|4|Abies alba|9"}));
    EXPECT_EQ(bytesOf("p.zorvel.version-1.bak"), "something else");
    EXPECT_EQ(entries(), 3U);
}

TEST_F(ProjectVersions, OlderFileIsReadWithoutBeingTouched) {
    const FormatsForTest formats(madeUpFormats(""));
    makeOld(projectFormats().front());
    const std::string before = bytesOf("p.zorvel");
    const Opened found = opened(path("p.zorvel"), {true, nullptr});
    EXPECT_EQ(summary(found.records), expected);
    EXPECT_FALSE(found.file->copyTo(path("copy.zorvel")));
    EXPECT_EQ(summary(opened(path("copy.zorvel")).records), expected);
    EXPECT_TRUE(bytesOf("p.zorvel") == before);
    EXPECT_EQ(entries(), 2U);
}

// Neither a step that fails nor one that makes a file that cannot be read gets anywhere.
TEST_F(ProjectVersions, FailedStepLeavesTheOldFile) {
    for (const char* wrong : {"SELECT * FROM nowhere", "CREATE TABLE more(a)",
                              "UPDATE taxon SET census = 77", "DELETE FROM project"}) {
        SCOPED_TRACE(wrong);
        const FormatsForTest formats(madeUpFormats(wrong));
        std::filesystem::remove(path("p.zorvel"));
        makeOld(projectFormats().front());
        const std::string before = bytesOf("p.zorvel");
        EXPECT_NE(troubleOf(path("p.zorvel")), -1);
        EXPECT_TRUE(bytesOf("p.zorvel") == before);
        EXPECT_EQ(entries(), 1U);
    }
}

TEST_F(ProjectVersions, OldFileWithOtherTablesIsRefused) {
    const FormatsForTest formats(madeUpFormats(""));
    makeOld(projectFormats().front());
    PlainDatabase(path("p.zorvel")).run("CREATE VIEW v AS SELECT * FROM taxon");
    EXPECT_EQ(troubleOf(path("p.zorvel")), numberOf(FileTrouble::hostile));
}

}  // namespace
}  // namespace zorvel
