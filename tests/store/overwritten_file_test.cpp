// A sync program lays another version of the project over the open file, in place: it must not be
// written to, whatever of the file looks as it did before.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <functional>
#include <memory>
#include <string>

#include "store/project_file.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/system_calls.h"

namespace zorvel {
namespace {

class OverwrittenFile : public QuickScratchFolder {
  protected:
    void SetUp() override {
        QuickScratchFolder::SetUp();
        context_.setAbundance(context_.insertTaxon(context_.insertCensus()), 1);
        ASSERT_TRUE(ProjectFile::create(path("project.zorvel"), context_).ok());
        start_ = bytesOf("project.zorvel");
    }

    std::unique_ptr<ProjectFile> open() {
        auto file = ProjectFile::open(path("project.zorvel"));
        if (!file) return nullptr;
        auto records = file.value()->load();
        if (!records) return nullptr;
        context_.adopt(std::move(records.value()));
        return std::move(file.value());
    }
    std::optional<FileProblem> write(ProjectFile& file, std::int64_t abundance) {
        context_.setAbundance(context_.taxa().front(), abundance);
        return file.write(context_.frozenCopy());
    }
    // What the file becomes when the start is opened elsewhere, and written that often.
    std::string otherVersion(int writes) {
        put("project.zorvel", start_);
        const auto file = open();
        for (int i = 0; file && i < writes; ++i) EXPECT_FALSE(write(*file, 1000 + i));
        return bytesOf("project.zorvel");
    }
    void overwriteKeepingTime(const std::string& bytes) const {
        struct stat before {};
        ASSERT_EQ(stat(path("project.zorvel").c_str(), &before), 0);
        put("project.zorvel", bytes);
        const timespec times[] = {before.st_atim, before.st_mtim};
        ASSERT_EQ(utimensat(AT_FDCWD, path("project.zorvel").c_str(), times, 0), 0);
    }

    ObjectContext context_;
    std::string start_;
};

// Size and time of change are the same; after the same number of writes even SQLite's own counter
// of changes is.
TEST_F(OverwrittenFile, WithTheSameSizeAndTime) {
    for (const int writes : {1, 2, 3}) {
        SCOPED_TRACE(writes);
        const std::string other = otherVersion(writes);
        put("project.zorvel", start_);
        const auto file = open();
        ASSERT_TRUE(file);
        ASSERT_FALSE(write(*file, 5));
        ASSERT_FALSE(write(*file, 6));
        ASSERT_EQ(bytesOf("project.zorvel").size(), other.size());
        overwriteKeepingTime(other);
        for (int attempt = 0; attempt < 2; ++attempt) {
            const auto problem = write(*file, 7 + attempt);
            ASSERT_TRUE(problem);
            EXPECT_EQ(problem->trouble, FileTrouble::changedElsewhere) << problem->detail;
        }
        EXPECT_TRUE(bytesOf("project.zorvel") == other) << "it was written to";
    }
}

// A rival makes its project while ours is synced, just before ours would take the path.
TEST_F(OverwrittenFile, ThatCameMeanwhileIsKeptWhereAsked) {
    struct Rival : CallListener {
        Verdict before(const FileCall& call) override {
            if (call.kind == CallKind::sync && !call.syncsFolder) come();
            return {};
        }
        std::function<void()> come;
    } rival;
    rival.come = [this] { put("new.zorvel", "rival"); };
    ProjectFileOptions options;
    options.keepExisting = true;
    const SystemCalls heard(rival);
    const auto made = ProjectFile::create(path("new.zorvel"), context_, options);
    ASSERT_FALSE(made);
    EXPECT_EQ(made.problem().systemError, EEXIST);
    EXPECT_EQ(bytesOf("new.zorvel"), "rival");
    EXPECT_EQ(entries(), 2U);
}

}  // namespace
}  // namespace zorvel
