// Each call that a project file makes to the disk is failed in turn. What is found afterwards is
// the old state or the new one, what was reported as written is there, and the same object goes on
// once the disk is well again.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "store/project_file.h"
#include "tests/support/fault_plan.h"
#include "tests/support/project_story.h"
#include "tests/support/same_records.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/vfs_layer.h"

namespace zorvel {
namespace {

using Frozen = std::shared_ptr<const ObjectContext>;

struct FaultCase {
    const char* name;
    FaultKind kind;
    bool lasting;
    FileTrouble trouble;
};

class ProjectFaults : public QuickScratchFolder, public testing::WithParamInterface<FaultCase> {
  protected:
    static ProjectFileOptions through(const VfsLayer& layer) {
        ProjectFileOptions options;
        options.vfs = layer.name();
        return options;
    }

    void failCall(std::size_t call) { plan_.failCall(GetParam().kind, call, GetParam().lasting); }

    // What another program would find in a file: it and its journal, copied as they lie there.
    std::optional<std::vector<BlockPointer>> foundIn(const std::string& name) {
        namespace fs = std::filesystem;
        const fs::path copy = folder_ / "copy";
        fs::remove_all(copy);
        fs::create_directory(copy);
        for (const char* suffix : {"", "-journal"}) {
            const std::string part = name + suffix;
            if (fs::exists(folder_ / part)) fs::copy_file(folder_ / part, copy / part);
        }
        auto file = ProjectFile::open(copy / name, through(quick_));
        if (!file) return std::nullopt;
        auto records = file.value()->load();
        if (!records) return std::nullopt;
        return records.value().censuses;
    }
    bool holds(const std::string& name, const Frozen& state) {
        const auto found = foundIn(name);
        return found && sameRecords(*found, state->blocks());
    }

    void expectTrouble(const FileProblem& problem) {
        EXPECT_EQ(problem.trouble, GetParam().trouble)
            << plan_.story() << " gave trouble " << static_cast<int>(problem.trouble) << ": "
            << problem.detail;
    }

    ProjectStory story_;
    FaultPlan plan_;
    VfsLayer faulty_{plan_};
    CallListener nobody_;
    VfsLayer quick_{nobody_};
};

class ProjectWriteFaults : public ProjectFaults {
  protected:
    void SetUp() override {
        ProjectFaults::SetUp();
        auto made = ProjectFile::create(path("project.zorvel"), *start(), through(faulty_));
        ASSERT_TRUE(made.ok()) << made.problem().detail;
        file_ = std::move(made.value());
    }
    void TearDown() override {
        file_.reset();
        ProjectFaults::TearDown();
    }

    [[nodiscard]] Frozen start() const { return story_.states().front().records; }

    // Tries the one write with each of its calls failing.
    void failEachCall(const Frozen& before, const Frozen& after) {
        for (std::size_t call = 1;; ++call) {
            failCall(call);
            const auto problem = file_->write(after);
            if (!plan_.struck()) {
                ASSERT_FALSE(problem) << problem->detail;
                break;
            }
            SCOPED_TRACE("call " + std::to_string(call) + ": " + plan_.story());
            checkOutcome(problem, before, after);
            if (HasFatalFailure()) return;
            ++points_;
        }
        plan_.heal();
    }

    std::size_t points_ = 0;
    std::unique_ptr<ProjectFile> file_;

  private:
    void checkOutcome(const std::optional<FileProblem>& problem, const Frozen& before,
                      const Frozen& after) {
        const auto found = foundIn("project.zorvel");
        ASSERT_TRUE(found);
        const bool isNew = sameRecords(*found, after->blocks());
        if (problem) expectTrouble(*problem);
        ASSERT_TRUE(isNew || (problem && sameRecords(*found, before->blocks())));
        plan_.heal();
        const auto again = file_->write(after);
        ASSERT_FALSE(again) << again->detail;
        ASSERT_TRUE(holds("project.zorvel", after));
        ASSERT_FALSE(file_->write(before));
    }
};

TEST_P(ProjectWriteFaults, LeaveTheOldStateOrTheNew) {
    for (std::size_t i = 1; i < story_.states().size(); ++i) {
        SCOPED_TRACE(story_.states()[i].name);
        failEachCall(story_.states()[i - 1].records, story_.states()[i].records);
        if (HasFatalFailure()) return;
    }
    std::cout << points_ << " calls failed in turn\n";
}

const FaultCase faultCases[] = {
    {"InputOutputOnce", FaultKind::inputOutput, false, FileTrouble::inputOutput},
    {"InputOutputLasting", FaultKind::inputOutput, true, FileTrouble::inputOutput},
    {"TornWriteOnce", FaultKind::tornWrite, false, FileTrouble::inputOutput},
    {"TornWriteLasting", FaultKind::tornWrite, true, FileTrouble::inputOutput},
    {"DiskFullOnce", FaultKind::diskFull, false, FileTrouble::diskFull},
    {"DiskFullLasting", FaultKind::diskFull, true, FileTrouble::diskFull},
};

std::string nameOf(const testing::TestParamInfo<FaultCase>& info) {
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Each, ProjectWriteFaults, testing::ValuesIn(faultCases), nameOf);

}  // namespace
}  // namespace zorvel
