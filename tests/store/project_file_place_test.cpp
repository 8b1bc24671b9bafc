// Whose file it is, and whether it is still there: files open elsewhere, moved, changed by others,
// replaced, and files and folders that may only be read.
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <functional>

#include "tests/store/project_file_support.h"
#include "tests/support/child_process.h"
#include "tests/support/plain_sqlite.h"

namespace zorvel {
namespace {

namespace fs = std::filesystem;

class ProjectPlace : public ProjectFileTest {
  protected:
    void SetUp() override {
        ProjectFileTest::SetUp();
        context_.insertTaxon(context_.insertCensus());
        file_ = created(path("p.zorvel"), context_);
    }
    std::shared_ptr<const ObjectContext> edited() {
        const Zorvel taxon = context_.taxa().front();
        context_.setAbundance(taxon, taxon.abundance() + 1);
        return context_.frozenCopy();
    }
    [[nodiscard]] timespec time() const {
        struct stat status {};
        EXPECT_EQ(stat(path("p.zorvel").c_str(), &status), 0);
        return status.st_mtim;
    }
    void setTime(timespec modified) const {
        const timespec times[] = {modified, modified};
        EXPECT_EQ(utimensat(AT_FDCWD, path("p.zorvel").c_str(), times, 0), 0);
    }
    // A program is killed while it writes.
    void leaveHotJournal() {
        file_.reset();
        std::string half;
        std::string journal;
        {
            PlainDatabase writing(path("p.zorvel"));
            writing.run(largeWrite);
            half = bytesOf("p.zorvel");
            journal = bytesOf("p.zorvel-journal");
        }
        put("p.zorvel", half);
        put("p.zorvel-journal", journal);
    }
    int write() { return numberOf(file_->write(edited())); }
    // What another process sees of the locks on a byte of the file.
    [[nodiscard]] bool isLockedForOthers(int command, off_t byte) const {
        ChildProcess other([&] {
            struct flock range {};
            range.l_type = F_WRLCK;
            range.l_whence = SEEK_SET;
            range.l_start = byte;
            range.l_len = 1;
            const int descriptor = ::open(path("p.zorvel").c_str(), O_RDWR);
            if (fcntl(descriptor, command, &range) != 0) return std::string("error");
            return std::string(range.l_type == F_UNLCK ? "free" : "locked");
        });
        const std::string said = other.word();
        EXPECT_TRUE(said == "free" || said == "locked") << said;
        return said == "locked";
    }
    static std::string word(int number) { return std::to_string(number); }

    ObjectContext context_;
    std::unique_ptr<ProjectFile> file_;
};

TEST_F(ProjectPlace, HeldInThisProcessOrAnother) {
    const int held = numberOf(FileTrouble::heldElsewhere);
    fs::create_symlink(path("p.zorvel"), path("link.zorvel"));
    EXPECT_EQ(troubleOf(path("p.zorvel")), held);
    EXPECT_EQ(troubleOf(path("link.zorvel")), held);
    EXPECT_EQ(numberOf(ProjectFile::create(path("p.zorvel"), context_).problem()), held);
    EXPECT_EQ(numberOf(file_->copyTo(path("link.zorvel"))), held);
    expectHolds(path("p.zorvel"), context_);
    EXPECT_EQ(write(), -1);
    file_.reset();
    EXPECT_EQ(troubleOf(path("p.zorvel")), -1);
    EXPECT_EQ(entries(), 2U);
    ChildProcess other([this] {
        file_ = opened(path("p.zorvel")).file;
        return std::string(file_ ? "held" : "");
    });
    ASSERT_EQ(other.word(), "held");
    EXPECT_EQ(troubleOf(path("p.zorvel")), held);
    EXPECT_EQ(numberOf(ProjectFile::create(path("p.zorvel"), context_).problem()), held);
    expectHolds(path("p.zorvel"), context_);
    other.release();
    EXPECT_EQ(troubleOf(path("p.zorvel")), -1);
}

// As any code of the process may do, such as a file dialog, which looks into what it lists.
TEST_F(ProjectPlace, ReadingTheFileAsideKeepsTheLocksOfAWrite) {
    const auto saidToOthers = [this] {
        const std::string command =
            "sqlite3 '" + path("p.zorvel") + "' 'SELECT count(*) FROM project' 2>&1";
        std::array<char, 200> line{};
        FILE* const other = popen(command.c_str(), "r");
        const char* const said = fgets(line.data(), line.size(), other);
        pclose(other);
        return std::string(said ? said : "");
    };
    const std::string before = bytesOf("p.zorvel");
    PlainDatabase writing(path("p.zorvel"));
    writing.run(largeWrite);
    ASSERT_NE(bytesOf("p.zorvel"), before);
    const std::string journal = bytesOf("p.zorvel-journal");
    EXPECT_EQ(numberOf(ProjectFile::open(path("p.zorvel"), {true, nullptr}).problem()),
              numberOf(FileTrouble::busy));
    EXPECT_EQ(troubleOf(path("p.zorvel")), numberOf(FileTrouble::heldElsewhere));
    EXPECT_NE(saidToOthers().find("locked"), std::string::npos);
    EXPECT_TRUE(bytesOf("p.zorvel-journal") == journal) << "it was played back";
    writing.run("DROP TABLE big; COMMIT");
    EXPECT_EQ(saidToOthers(), "1\n");
    EXPECT_EQ(rows(path("p.zorvel"), "PRAGMA integrity_check"), std::vector<std::string>{"ok"});
}

// Even if a reader in this process keeps the file open.
TEST_F(ProjectPlace, MarkGoesWithTheWriter) {
    constexpr off_t markByte = off_t{1} << 62;
    const Opened aside = opened(path("p.zorvel"), {true, nullptr});
    EXPECT_TRUE(isLockedForOthers(F_OFD_GETLK, markByte));
    file_.reset();
    EXPECT_FALSE(isLockedForOthers(F_OFD_GETLK, markByte));
}

TEST_F(ProjectPlace, BusyWhileAnotherProgramReadsOrWrites) {
    for (const char* sql : {"BEGIN; SELECT * FROM census", "BEGIN IMMEDIATE"}) {
        SCOPED_TRACE(sql);
        {
            PlainDatabase other(path("p.zorvel"));
            other.run(sql);
            EXPECT_EQ(write(), numberOf(FileTrouble::busy));
        }
        EXPECT_EQ(write(), -1);
        expectHolds(path("p.zorvel"), context_);
    }
}

TEST_F(ProjectPlace, NoCopyOfWhatIsBusyOrNotOurs) {
    {
        PlainDatabase other(path("p.zorvel"));
        other.run("BEGIN EXCLUSIVE");
        EXPECT_EQ(numberOf(file_->copyTo(path("copy.zorvel"))), numberOf(FileTrouble::busy));
        EXPECT_FALSE(fs::exists(path("copy.zorvel")));
    }
    created(path("other.zorvel"), ObjectContext());
    put("p.zorvel", bytesOf("other.zorvel"));
    EXPECT_EQ(numberOf(file_->copyTo(path("copy.zorvel"))),
              numberOf(FileTrouble::changedElsewhere));
    EXPECT_FALSE(fs::exists(path("copy.zorvel")));
}

TEST_F(ProjectPlace, MovedOrChangedMeanwhileIsNotWrittenTo) {
    struct Case {
        const char* what;
        std::function<void()> change;
        FileTrouble trouble;
    };
    const auto put = [this](const std::string& bytes) { this->put("p.zorvel", bytes); };
    const std::vector<Case> cases = {
        {"deleted", [&] { fs::remove(path("p.zorvel")); }, FileTrouble::moved},
        {"renamed", [&] { fs::rename(path("p.zorvel"), path("q.zorvel")); }, FileTrouble::moved},
        {"replaced by a copy",
         [&] {
             fs::copy_file(path("p.zorvel"), path("q.zorvel"));
             fs::rename(path("q.zorvel"), path("p.zorvel"));
         },
         FileTrouble::moved},
        {"overwritten with itself",
         [&] {
             put(bytesOf("p.zorvel"));
             setTime({});
         },
         FileTrouble::changedElsewhere},
        {"overwritten with text", [&] { put("text"); }, FileTrouble::changedElsewhere},
        {"emptied", [&] { put(""); }, FileTrouble::changedElsewhere},
        {"written by another program before the clock goes on",
         [&] {
             const timespec before = time();
             PlainDatabase(path("p.zorvel")).run("UPDATE taxon SET abundance = 99");
             setTime(before);
         },
         FileTrouble::changedElsewhere},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.what);
        file_.reset();
        fs::remove(path("q.zorvel"));
        file_ = created(path("p.zorvel"), context_);
        ASSERT_EQ(write(), -1);
        row.change();
        const std::string here = bytesOf("p.zorvel");
        const std::string there = bytesOf("q.zorvel");
        for (int attempt = 0; attempt < 2; ++attempt) {
            EXPECT_EQ(write(), numberOf(row.trouble));
        }
        EXPECT_TRUE(bytesOf("p.zorvel") == here);
        EXPECT_TRUE(bytesOf("q.zorvel") == there);
        EXPECT_FALSE(fs::exists(path("p.zorvel-journal")));
    }
}

// A sync program overwrites the open file with another version of the same size and time of change;
// after the same number of writes even SQLite's own counter of changes is the same.
TEST_F(ProjectPlace, OverwrittenByAnotherVersionIsNotWrittenTo) {
    const std::string start = bytesOf("p.zorvel");
    const auto fromStart = [&] {
        file_.reset();
        put("p.zorvel", start);
        Opened anew = opened(path("p.zorvel"));
        context_.adopt(std::move(anew.records));
        file_ = std::move(anew.file);
    };
    for (const int writes : {1, 2, 3}) {
        SCOPED_TRACE(writes);
        fromStart();
        for (int i = 0; i < writes; ++i) ASSERT_EQ(write(), -1);
        const std::string other = bytesOf("p.zorvel");
        fromStart();
        for (int i = 0; i < 2; ++i) ASSERT_EQ(write(), -1);
        ASSERT_EQ(bytesOf("p.zorvel").size(), other.size());
        const timespec before = time();
        put("p.zorvel", other);
        setTime(before);
        EXPECT_EQ(numberOf(file_->copyTo(path("copy.zorvel"))),
                  numberOf(FileTrouble::changedElsewhere));
        EXPECT_EQ(write(), numberOf(FileTrouble::changedElsewhere));
        EXPECT_EQ(write(), numberOf(FileTrouble::changedElsewhere));
        EXPECT_TRUE(bytesOf("p.zorvel") == other);
    }
}

TEST_F(ProjectPlace, CopyingAndReplacingKeepPermissionsAndReplacingFollowsLinks) {
    for (const unsigned mode : {0600U, 0640U, 0666U}) {
        fs::permissions(path("p.zorvel"), fs::perms(mode));
        EXPECT_FALSE(file_->copyTo(path("copy.zorvel")));
        EXPECT_EQ(modeOf("copy.zorvel"), mode);
    }
    file_.reset();
    fs::permissions(path("p.zorvel"), fs::perms(0640));
    fs::create_symlink("p.zorvel", path("link.zorvel"));
    fs::create_symlink("new.zorvel", path("dangling.zorvel"));
    edited();
    created(path("link.zorvel"), context_);
    created(path("dangling.zorvel"), context_);
    EXPECT_TRUE(fs::is_symlink(path("link.zorvel")));
    EXPECT_TRUE(fs::is_symlink(path("dangling.zorvel")));
    EXPECT_EQ(modeOf("p.zorvel"), 0640U);
    expectHolds(path("p.zorvel"), context_);
    expectHolds(path("new.zorvel"), context_);
    EXPECT_EQ(entries(), 5U);
}

// The journal of another file's cut-off write must not be played back into the new file.
TEST_F(ProjectPlace, JournalLeftBesideThePathIsNotForTheNewFile) {
    leaveHotJournal();
    const std::string journal = bytesOf("p.zorvel-journal");
    ASSERT_GT(journal.size(), 512U);
    for (const char* name : {"p.zorvel", "new.zorvel"}) {
        SCOPED_TRACE(name);
        put(std::string(name) + "-journal", journal);
        edited();
        created(path(name), context_);
        EXPECT_EQ(troubleOf(path(name)), -1);
        expectHolds(path(name), context_);
    }
    EXPECT_EQ(entries(), 2U);
}

TEST_F(ProjectPlace, WhatIsNoFileIsNotOpened) {
    file_.reset();
    fs::create_directory(path("folder"));
    ASSERT_EQ(mkfifo(path("fifo").c_str(), 0600), 0);
    const int listening = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path("socket").copy(address.sun_path, sizeof address.sun_path - 1);
    ASSERT_EQ(bind(listening, reinterpret_cast<sockaddr*>(&address), sizeof address), 0);
    const std::size_t before = entries();
    for (const std::string& place : {path("folder"), path("fifo"), path("socket"),
                                     std::string("/dev/zero"), std::string("/")}) {
        SCOPED_TRACE(place);
        EXPECT_EQ(troubleOf(place), numberOf(FileTrouble::notAFile));
        EXPECT_EQ(numberOf(ProjectFile::create(place, context_).problem()),
                  numberOf(FileTrouble::notAFile));
    }
    EXPECT_EQ(troubleOf(path("none.zorvel")), numberOf(FileTrouble::notFound));
    EXPECT_EQ(numberOf(ProjectFile::create(path("none/p.zorvel"), context_).problem()),
              numberOf(FileTrouble::notFound));
    EXPECT_EQ(entries(), before);
    close(listening);
}

// Parts of files that killed programs have left.
TEST_F(ProjectPlace, UnfinishedFilesGoWhenAProjectIsOpened) {
    const struct {
        std::string name;
        const char* bytes;
        int hours;
        bool stays;
    } rows[] = {
        {".zorvel-0123456789abcdef.tmp", "half", 0, false},
        {".zorvel-1123456789abcdef.tmp", "", 1, true},
        {".zorvel-2123456789abcdef.tmp", "", 25, false},
        {".zorvel-text-3123456789abcdef.tmp", "text", 1, true},
        {".zorvel-4711-0.tmp", "text", 1, true},
        {".zorvel-4712-0.tmp", "text", 25, false},
        {".other-0123456789abcdef.tmp", "half", 25, true},
    };
    for (const auto& row : rows) {
        put(row.name, row.bytes);
        const auto time = fs::last_write_time(path(row.name));
        fs::last_write_time(path(row.name), time - std::chrono::hours(row.hours));
    }
    ASSERT_EQ(rename(path("p.zorvel").c_str(), path(".zorvel-3123456789abcdef.tmp").c_str()), 0);
    created(path("q.zorvel"), context_);
    EXPECT_EQ(troubleOf(path("q.zorvel")), -1);
    EXPECT_TRUE(fs::exists(path(".zorvel-3123456789abcdef.tmp"))) << "it is in use";
    for (const auto& row : rows) EXPECT_EQ(fs::exists(path(row.name)), row.stays) << row.name;
}

// It cannot be undone there, and what is there is half of it.
TEST_F(ProjectPlace, CutOffWriteInAFolderThatMayNotBeWritten) {
    leaveHotJournal();
    for (const char* name : {"p.zorvel", "p.zorvel-journal"}) {
        fs::permissions(path(name), fs::perms(0444));
    }
    fs::permissions(folder_, fs::perms(0555));
    ChildProcess other([this] { return word(troubleOf(path("p.zorvel"))); }, true);
    EXPECT_EQ(other.word(), word(numberOf(FileTrouble::interruptedWrite)));
    fs::permissions(folder_, fs::perms(0755));
    for (const char* name : {"p.zorvel", "p.zorvel-journal"}) {
        fs::permissions(path(name), fs::perms(0644));
    }
    EXPECT_EQ(troubleOf(path("p.zorvel")), -1) << "where they may be written";
}

struct Rights {
    const char* what;
    unsigned file;
    unsigned folder;
    std::string outcome;  // of opening, and of writing
};

// Not as the super-user, who may write anywhere.
TEST_F(ProjectPlace, FilesAndFoldersThatMayNotBeWritten) {
    file_.reset();
    const std::string readOnlyFile = word(numberOf(FileTrouble::readOnlyFile));
    const std::string readOnlyFolder = word(numberOf(FileTrouble::readOnlyFolder));
    const std::string noPermission = word(numberOf(FileTrouble::noPermission));
    const std::vector<Rights> cases = {
        {"all", 0666, 0777, "-1 -1"},
        {"file to be read", 0444, 0777, "-1 " + readOnlyFile},
        {"folder to be read", 0666, 0555, "-1 " + readOnlyFolder},
        {"file not to be read", 0, 0777, noPermission},
    };
    for (const Rights& rights : cases) {
        SCOPED_TRACE(rights.what);
        const std::string before = bytesOf("p.zorvel");
        fs::permissions(path("p.zorvel"), fs::perms(rights.file));
        fs::permissions(folder_, fs::perms(rights.folder));
        ChildProcess other(
            [this] {
                auto file = ProjectFile::open(path("p.zorvel"));
                if (!file) return word(numberOf(file.problem()));
                if (!file.value()->load()) return std::string("not read");
                const auto reason = file.value()->whyNotWritable();
                const auto problem = file.value()->write(edited());
                if (reason.has_value() != problem.has_value()) return std::string("unsure");
                return word(-1) + " " + word(numberOf(problem));
            },
            true);
        EXPECT_EQ(other.word(), rights.outcome);
        fs::permissions(folder_, fs::perms(0777));
        fs::permissions(path("p.zorvel"), fs::perms(0666));
        EXPECT_EQ(bytesOf("p.zorvel") == before, rights.outcome != "-1 -1");
        EXPECT_EQ(entries(), 1U);
    }
    fs::permissions(folder_, fs::perms(0555));
    ChildProcess maker(
        [this] {
            const auto made = ProjectFile::create(path("new.zorvel"), *edited());
            return word(made ? -1 : numberOf(made.problem()));
        },
        true);
    EXPECT_EQ(maker.word(), readOnlyFolder);
    fs::permissions(folder_, fs::perms(0755));
}

}  // namespace
}  // namespace zorvel
