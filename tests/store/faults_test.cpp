// Each call that a project file makes to the disk is failed in turn. What is found afterwards is
// the old state or the new one, what was reported as written is there, and the same object goes on
// once the disk is well again.
#include <gtest/gtest.h>

#include <cstddef>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "tests/store/project_faults.h"

namespace zorvel {
namespace {

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

INSTANTIATE_TEST_SUITE_P(Each, ProjectWriteFaults, testing::ValuesIn(faultCases), nameOf);

}  // namespace
}  // namespace zorvel
