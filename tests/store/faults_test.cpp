// Each call that a project file makes to the disk is failed in turn: while it is written, opened,
// made, or copied. What is found afterwards is the old state or the new one, what was reported as
// written is there, no other file is left, and the same object works on once the disk works again.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "store/project_file.h"
#include "tests/support/fault_plan.h"
#include "tests/support/project_story.h"
#include "tests/support/same_records.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/system_calls.h"
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

void PrintTo(const FaultCase& row, std::ostream* out) {
    *out << row.name;
}

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

    [[nodiscard]] Frozen start() const { return story_.states().front().records; }

    ProjectStory story_;
    FaultPlan plan_;
    VfsLayer faulty_{plan_};
    CallListener nobody_;
    VfsLayer quick_{nobody_};
};

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

// --- Writes

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

// --- Whole files

class ProjectWholeFaults : public ProjectFaults {
  protected:
    void SetUp() override {
        ProjectFaults::SetUp();
        ASSERT_TRUE(ProjectFile::create(path("project.zorvel"), *start(), through(quick_)).ok());
        oldBytes_ = bytesOf("project.zorvel");
    }

    [[nodiscard]] Frozen other() const { return story_.states()[4].records; }
    // Where removing fails too, a temporary file stays.
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
                ASSERT_GT(call, 4U) << "too few calls";
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

INSTANTIATE_TEST_SUITE_P(Each, ProjectWholeFaults, testing::ValuesIn(faultCases), nameOf);

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

// --- Calls in their order, which decides what a power cut leaves

// Syncs, renamings, removals and writes that went well, those of one kind in a row once.
class ListedCalls : public CallListener {
  public:
    std::string take() { return std::exchange(list_, {}); }

  private:
    void after(const FileCall& call) override {
        const char* verb = call.kind == CallKind::sync     ? "sync "
                           : call.kind == CallKind::write  ? "write "
                           : call.kind == CallKind::rename ? "rename "
                           : call.kind == CallKind::remove ? "remove "
                                                           : nullptr;
        if (!verb) return;
        std::string name = call.path.substr(call.path.rfind('/') + 1);
        if (name.starts_with(".zorvel-")) name = "temporary";
        if (call.syncsFolder) name = call.ofSystem ? "folder" : name + " and folder";
        const std::string line = verb + name + "; ";
        if (!list_.ends_with(line)) list_ += line;
    }
    std::string list_;
};

class PowerCuts : public QuickScratchFolder {
  protected:
    ListedCalls calls_;
    const VfsLayer layer_{calls_};
    const SystemCalls heard_{calls_};
    ProjectFileOptions options_{false, layer_.name()};
    const ProjectStory story_;
};

// The journal and its name are safe before the first page changes, and the pages before the journal
// goes; that it has gone is made safe too.
TEST_F(PowerCuts, FindTheJournalOrAllPages) {
    auto made = ProjectFile::create(path("p.zorvel"), *story_.states()[0].records, options_);
    ASSERT_TRUE(made.ok());
    const std::string placed = "sync temporary; rename temporary; sync folder; ";
    EXPECT_TRUE(calls_.take().ends_with(placed));
    ASSERT_FALSE(made.value()->write(story_.states()[1].records));
    EXPECT_EQ(calls_.take(),
              "write p.zorvel-journal; sync p.zorvel-journal and folder; write p.zorvel-journal; "
              "sync p.zorvel-journal; write p.zorvel; sync p.zorvel; "
              "remove p.zorvel-journal; remove p.zorvel-journal and folder; ");
    ASSERT_FALSE(made.value()->copyTo(path("copy.zorvel")));
    EXPECT_TRUE(calls_.take().ends_with(placed));
}

using RivalFile = QuickScratchFolder;

// Another program makes its project while ours is synced, just before ours would take the path.
TEST_F(RivalFile, ThatCameMeanwhileIsKeptWhereAsked) {
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
    const auto made = ProjectFile::create(path("new.zorvel"), ObjectContext(), options);
    ASSERT_FALSE(made);
    EXPECT_EQ(made.problem().systemError, EEXIST);
    EXPECT_EQ(bytesOf("new.zorvel"), "rival");
    EXPECT_EQ(entries(), 1U);
}

}  // namespace
}  // namespace zorvel
