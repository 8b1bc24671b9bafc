#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>
#include <thread>

#include "base/files.h"
#include "tests/support/child_process.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/system_calls.h"

namespace zorvel {
namespace {

using namespace std::string_literals;

class WholeFile : public ScratchFolder {
  protected:
    // The error number, 0 if all was written.
    int write(const std::string& name, std::string_view bytes) const {
        return writeTo(path(name), bytes);
    }
    static int writeTo(const std::string& path, std::string_view bytes) {
        const std::optional<Problem> problem = writeFileWhole(path, bytes);
        if (!problem) return 0;
        EXPECT_TRUE(problem->message.starts_with("cannot be written: "));
        return problem->systemError;
    }
};

TEST_F(WholeFile, ANewFileHasTheUsualModeAndAnOldOneKeepsItsOwn) {
    const std::string bytes = "a\0\r\n\xFF"s + std::string(300'000, 'x');
    put("old.csv", "something longer");
    chmod(path("old.csv").c_str(), 0604);
    const mode_t before = umask(027);
    EXPECT_EQ(write("new.csv", bytes), 0);
    EXPECT_EQ(write("old.csv", ""), 0);
    umask(before);
    EXPECT_EQ(bytesOf("new.csv"), bytes);
    EXPECT_EQ(modeOf("new.csv"), 0640U);
    EXPECT_EQ(bytesOf("old.csv"), "");
    EXPECT_EQ(modeOf("old.csv"), 0604U);
    EXPECT_EQ(entries(), 2U);
}

// A group that the writer is not in cannot be given.
TEST_F(WholeFile, NobodyGetsMoreAccessThanToTheOldFile) {
    if (geteuid() != 0) GTEST_SKIP() << "only the superuser can make another's file";
    chmod(folder_.c_str(), 0777);
    const struct {
        gid_t group;
        unsigned before;
        unsigned after;
    } rows[] = {{idOfNobody, 0660, 0660}, {0, 0662, 0602}};
    for (const auto& row : rows) {
        put("old.csv", "old");
        EXPECT_EQ(chown(path("old.csv").c_str(), 0, row.group), 0);
        chmod(path("old.csv").c_str(), row.before);
        ChildProcess other([&] { return std::to_string(write("old.csv", "new")); }, true);
        EXPECT_EQ(other.word(), "0");
        EXPECT_EQ(bytesOf("old.csv"), "new");
        EXPECT_EQ(modeOf("old.csv"), row.after);
        std::filesystem::remove(path("old.csv"));
    }
}

class ListedCalls : public CallListener {
  public:
    std::string list;

  private:
    void after(const FileCall& call) override {
        if (call.kind == CallKind::sync) list += call.syncsFolder ? "sync folder, " : "sync, ";
        if (call.kind == CallKind::rename) list += "rename, ";
    }
};

TEST_F(WholeFile, IsSafeOnTheDiskBeforeTheOldOneGoes) {
    ListedCalls calls;
    const SystemCalls heard(calls);
    EXPECT_EQ(write("new.csv", "text"), 0);
    EXPECT_EQ(calls.list, "sync, rename, sync folder, ");
}

TEST_F(WholeFile, AReadOnlyFileStays) {
    put("old.csv", "old");
    chmod(path("old.csv").c_str(), 0444);
    chmod(folder_.c_str(), 0777);
    ChildProcess other([&] { return std::to_string(write("old.csv", "new")); }, true);
    EXPECT_EQ(other.word(), std::to_string(EACCES));
    EXPECT_EQ(bytesOf("old.csv"), "old");
}

TEST_F(WholeFile, ALinkStaysALink) {
    namespace fs = std::filesystem;
    fs::create_directory(folder_ / "sub");
    put("sub/target.csv", "old");
    fs::create_symlink("target.csv", folder_ / "sub/inner.csv");
    fs::create_symlink("sub/inner.csv", folder_ / "outer.csv");
    fs::create_symlink("sub/later.csv", folder_ / "dangling.csv");
    EXPECT_EQ(write("outer.csv", "new"), 0);
    EXPECT_EQ(write("dangling.csv", "made"), 0);
    EXPECT_TRUE(fs::is_symlink(folder_ / "outer.csv"));
    EXPECT_TRUE(fs::is_symlink(folder_ / "sub/inner.csv"));
    EXPECT_TRUE(fs::is_symlink(folder_ / "dangling.csv"));
    EXPECT_EQ(bytesOf("sub/target.csv"), "new");
    EXPECT_EQ(bytesOf("sub/later.csv"), "made");
}

TEST_F(WholeFile, WhatCannotBeWrittenIsReported) {
    std::filesystem::create_symlink("loop.csv", folder_ / "loop.csv");
    put("file", "");
    EXPECT_EQ(write("loop.csv", "x"), ELOOP);
    EXPECT_EQ(write("missing/new.csv", "x"), ENOENT);
    EXPECT_EQ(write("file/new.csv", "x"), ENOTDIR);
    EXPECT_EQ(write(".", "x"), EISDIR);
    EXPECT_EQ(writeTo("", "x"), ENOENT);
    EXPECT_EQ(writeTo("/dev/full", "x"), ENOSPC);
    EXPECT_EQ(writeTo("/dev/null", "x"), 0);
    EXPECT_EQ(writeTo("/dev/fd/987", "x"), EBADF);
    EXPECT_EQ(entries(), 2U);
}

TEST_F(WholeFile, AFailedWriteLeavesTheOldFileAndNoOther) {
    put("old.csv", "old");
    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit small = before;
    small.rlim_cur = 1000;
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const int oldFile = write("old.csv", std::string(5000, 'x'));
    const int newFile = write("new.csv", std::string(5000, 'x'));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(oldFile, EFBIG);
    EXPECT_EQ(newFile, EFBIG);
    EXPECT_EQ(bytesOf("old.csv"), "old");
    EXPECT_EQ(entries(), 1U);
}

TEST_F(WholeFile, APipeIsWrittenDirectly) {
    ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
    const std::string bytes(200'000, 'x');  // more than a pipe holds
    std::string received;
    std::thread reader([&] { received = bytesOf("pipe"); });
    EXPECT_EQ(write("pipe", bytes), 0);
    reader.join();
    EXPECT_EQ(received, bytes);
    EXPECT_TRUE(std::filesystem::is_fifo(folder_ / "pipe"));
}

TEST_F(WholeFile, AnOpenDescriptorIsWrittenWhereItStands) {
    const int descriptor = open(path("out").c_str(), O_RDWR | O_CREAT, 0600);
    ASSERT_GE(descriptor, 0);
    std::filesystem::create_symlink("/proc/self/fd/" + std::to_string(descriptor),
                                    folder_ / "link");
    EXPECT_EQ(::write(descriptor, "first ", 6), 6);
    EXPECT_EQ(writeTo("/dev/fd/" + std::to_string(descriptor), "second "), 0);
    EXPECT_EQ(write("link", "third "), 0);
    EXPECT_EQ(::write(descriptor, "last", 4), 4);
    close(descriptor);
    EXPECT_EQ(bytesOf("out"), "first second third last");
}

}  // namespace
}  // namespace zorvel
