// Each call to the disk is failed in turn while a project is opened, made, or copied: what was
// there stays whole, and nothing is left lying about.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "tests/store/project_faults.h"
#include "tests/support/system_calls.h"

namespace zorvel {
namespace {

class ProjectWholeFaults : public ProjectFaults {
  protected:
    void SetUp() override {
        ProjectFaults::SetUp();
        ASSERT_TRUE(ProjectFile::create(path("project.zorvel"), *start(), through(quick_)).ok());
        oldBytes_ = bytesOf("project.zorvel");
    }

    [[nodiscard]] Frozen start() const { return story_.states().front().records; }
    [[nodiscard]] Frozen other() const { return story_.states()[4].records; }
    // Where even removing fails, for ever, a temporary file cannot but stay.
    [[nodiscard]] static bool canTidy() {
        return !GetParam().lasting || GetParam().kind != FaultKind::inputOutput;
    }

    using Attempt = std::function<std::optional<FileProblem>()>;
    // The attempt puts the other state in the place of the file of that name.
    void failEachCallOfReplacing(const std::string& name, const Attempt& attempt) {
        for (std::size_t call = 1;; ++call) {
            put(name, oldBytes_);
            const std::size_t files = entries();
            failCall(call);
            const auto problem = attempt();
            plan_.heal();
            if (!plan_.struck()) {
                ASSERT_FALSE(problem) << problem->detail;
                ASSERT_GT(call, 4U) << "too few to mean anything";
                std::cout << call - 1 << " calls failed in turn\n";
                return;
            }
            SCOPED_TRACE("call " + std::to_string(call) + ": " + plan_.story());
            if (problem) expectTrouble(*problem);
            ASSERT_TRUE((problem && bytesOf(name) == oldBytes_) || holds(name, other()));
            std::filesystem::remove_all(folder_ / "copy");
            ASSERT_TRUE(entries() == files || !canTidy()) << "something was left";
        }
    }

    // A write of the other state is cut off as by a kill, its journal played back at next opening.
    void leaveHotJournal() {
        {
            auto file = ProjectFile::open(path("project.zorvel"), through(faulty_));
            ASSERT_TRUE(file.ok() && file.value()->load().ok());
            for (std::size_t call = 1; bytesOf("project.zorvel") == oldBytes_; ++call) {
                plan_.failCall(FaultKind::tornWrite, call, true);
                ASSERT_TRUE(file.value()->write(other()));
            }
            hotBytes_ = bytesOf("project.zorvel");
            hotJournal_ = bytesOf("project.zorvel-journal");
        }
        plan_.heal();
        ASSERT_FALSE(hotJournal_.empty());
    }

    std::optional<FileProblem> openAndCompare() {
        auto file = ProjectFile::open(path("project.zorvel"), through(faulty_));
        if (!file) return file.problem();
        auto records = file.value()->load();
        if (!records) return records.problem();
        EXPECT_TRUE(sameRecords(records.value().censuses, start()->blocks()));
        return std::nullopt;
    }

    void layOut(const std::string& bytes, const std::string& journal) {
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directory(folder_);
        put("project.zorvel", bytes);
        if (!journal.empty()) put("project.zorvel-journal", journal);
    }
    [[nodiscard]] bool holdsHiddenFiles() const {
        const std::filesystem::directory_iterator files(folder_);
        return std::any_of(begin(files), end(files), [](const auto& file) {
            return file.path().filename().string().starts_with('.');
        });
    }

    // Opening fails, or finds the start; when the disk is well again it finds the start.
    enum class Opening { leavesTheFile, mayChangeTheFile };
    void failEachCallOfOpening(const std::string& bytes, const std::string& journal,
                               Opening opening) {
        for (std::size_t call = 1;; ++call) {
            layOut(bytes, journal);
            failCall(call);
            const auto problem = openAndCompare();
            plan_.heal();
            SCOPED_TRACE("call " + std::to_string(call) + ": " + plan_.story());
            if (!plan_.struck()) {
                ASSERT_FALSE(problem) << problem->detail;
                std::cout << call - 1 << " calls failed in turn\n";
                return;
            }
            if (problem) expectTrouble(*problem);
            ASSERT_TRUE(opening == Opening::mayChangeTheFile || bytesOf("project.zorvel") == bytes);
            ASSERT_FALSE(canTidy() && holdsHiddenFiles()) << "something was left";
            const auto again = openAndCompare();
            ASSERT_FALSE(again) << again->detail;
        }
    }

    std::string oldBytes_;
    std::string hotBytes_;
    std::string hotJournal_;
};

TEST_P(ProjectWholeFaults, MakingOneInPlaceOfAnother) {
    const SystemCalls heard(plan_);
    failEachCallOfReplacing("project.zorvel", [this] {
        const auto made = ProjectFile::create(path("project.zorvel"), *other(), through(faulty_));
        return made ? std::nullopt : std::optional(made.problem());
    });
}

TEST_P(ProjectWholeFaults, CopyingOneInPlaceOfAnother) {
    const auto source = ProjectFile::create(path("source.zorvel"), *other(), through(faulty_));
    ASSERT_TRUE(source.ok());
    const SystemCalls heard(plan_);
    failEachCallOfReplacing("project.zorvel",
                            [&] { return source.value()->copyTo(path("project.zorvel")); });
    EXPECT_FALSE(source.value()->write(start()));
}

TEST_P(ProjectWholeFaults, OpeningOne) {
    const SystemCalls heard(plan_);
    failEachCallOfOpening(oldBytes_, "", Opening::leavesTheFile);
}

TEST_P(ProjectWholeFaults, OpeningAfterAKilledWrite) {
    ASSERT_NO_FATAL_FAILURE(leaveHotJournal());
    const SystemCalls heard(plan_);
    failEachCallOfOpening(hotBytes_, hotJournal_, Opening::mayChangeTheFile);
}

class FileSystemWithoutLocks : public QuickScratchFolder, public CallListener {
    Verdict before(const FileCall& call) override {
        return {call.kind == CallKind::lock ? ENOLCK : 0};
    }
};

TEST_F(FileSystemWithoutLocks, IsTheReasonGiven) {
    const ProjectStory story;
    ASSERT_TRUE(ProjectFile::create(path("p.zorvel"), *story.states().front().records).ok());
    const SystemCalls heard(*this);
    for (const bool readOnly : {false, true}) {
        const auto file = ProjectFile::open(path("p.zorvel"), {readOnly, nullptr});
        ASSERT_FALSE(file.ok());
        EXPECT_EQ(file.problem().trouble, FileTrouble::noLocks) << file.problem().detail;
    }
}

INSTANTIATE_TEST_SUITE_P(Each, ProjectWholeFaults, testing::ValuesIn(faultCases), nameOf);

}  // namespace
}  // namespace zorvel
