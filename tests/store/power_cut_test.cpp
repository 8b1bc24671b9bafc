// The power fails at any moment of a project file's life, and the disk keeps any part of what was
// not yet safe. The file opens afterwards, and holds what was reported as written, or the state
// that was being written, whole.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "store/project_file.h"
#include "tests/support/power_cut.h"
#include "tests/support/project_story.h"
#include "tests/support/same_records.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/system_calls.h"
#include "tests/support/vfs_layer.h"

namespace zorvel {
namespace {

namespace fs = std::filesystem;

// ZORVEL_POWER_CUTS in the environment asks for so many at each call, for longer runs.
int cutsAtEachCall() {
    const char* asked = std::getenv("ZORVEL_POWER_CUTS");
    return asked ? std::atoi(asked) : 11;
}

FileImages imagesOf(const fs::path& folder) {
    FileImages images;
    for (const auto& entry : fs::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        images[entry.path()] = {std::istreambuf_iterator<char>(file), {}};
    }
    return images;
}

class PowerCuts : public QuickScratchFolder {
  protected:
    void SetUp() override {
        QuickScratchFolder::SetUp();
        fs::create_directory(folder_ / "live");
        fs::create_directory(folder_ / "found");
    }

    static ProjectFileOptions through(const VfsLayer& layer) {
        ProjectFileOptions options;
        options.vfs = layer.name();
        return options;
    }
    [[nodiscard]] std::string live() const { return folder_ / "live" / "project.zorvel"; }
    [[nodiscard]] std::string found() const { return folder_ / "found" / "project.zorvel"; }

    // Lays the images, taken from the folder live, into the folder found.
    void layOut(const FileImages& images) const {
        for (const auto& entry : fs::directory_iterator(folder_ / "found")) fs::remove(entry);
        for (const auto& [path, bytes] : images) {
            std::ofstream(folder_ / "found" / fs::path(path).filename(), std::ios::binary) << bytes;
        }
    }

    // Opens what was laid out. Absent, and a failure, where it does not open.
    std::optional<std::vector<BlockPointer>> openFound(const VfsLayer& layer) const {
        auto file = ProjectFile::open(found(), through(layer));
        auto records = file ? file.value()->load() : FileResult<ProjectRecords>(file.problem());
        if (!records) {
            ADD_FAILURE() << "after the cut: " << records.problem().detail;
            return std::nullopt;
        }
        return records.value().censuses;
    }

    std::mt19937 random_{20240229};
    DiskRecorder recorder_;
    VfsLayer recorded_{recorder_};
    CallListener nobody_;
    VfsLayer quick_{nobody_};
};

// What was recorded up to there was done when that state had been acknowledged.
struct Acknowledged {
    std::size_t calls = 0;
    std::size_t state = 0;
};

class PowerCutsInWrites : public PowerCuts {
  protected:
    // Writes all states but the first, which is there already.
    void writeStory() {
        auto file = ProjectFile::open(live(), through(recorded_));
        ASSERT_TRUE(file.ok()) << file.problem().detail;
        ASSERT_TRUE(file.value()->load().ok());
        for (std::size_t i = 0; i < states().size(); ++i) {
            if (i > 0) {
                ASSERT_FALSE(file.value()->write(states()[i].records));
            }
            acknowledged_.push_back({recorder_.calls().size(), i});
        }
    }
    [[nodiscard]] const std::vector<ProjectStory::State>& states() const { return story_.states(); }
    [[nodiscard]] bool isState(const std::vector<BlockPointer>& records, std::size_t state) const {
        return state < states().size() && sameRecords(records, states()[state].records->blocks());
    }

    void checkCut(const FileImages& images, std::size_t lastAcknowledged) {
        layOut(images);
        const auto records = openFound(quick_);
        ASSERT_TRUE(records);
        ASSERT_TRUE(isState(*records, lastAcknowledged) || isState(*records, lastAcknowledged + 1))
            << "neither the old state nor the new";
        ++cuts_;
    }

    // The recovery from the cut is cut off as well, after any of its calls.
    void checkCutInRecovery(const FileImages& images, std::size_t lastAcknowledged) {
        layOut(images);
        DiskRecorder recorder;
        {
            const VfsLayer layer(recorder);
            ASSERT_TRUE(openFound(layer));
        }
        if (recorder.calls().empty()) return;
        FileImages start;
        for (const auto& [path, bytes] : images) {
            start[folder_ / "found" / fs::path(path).filename()] = bytes;
        }
        SimulatedDisk disk(start);
        const std::size_t done = 1 + random_() % recorder.calls().size();
        for (std::size_t i = 0; i < done; ++i) disk.repeat(recorder.calls()[i]);
        checkCut(disk.afterCut(random_), lastAcknowledged);
        ++cutsInRecovery_;
    }

    ProjectStory story_;
    std::vector<Acknowledged> acknowledged_;
    int cuts_ = 0;
    int cutsInRecovery_ = 0;
};

TEST_F(PowerCutsInWrites, LeaveTheOldStateOrTheNew) {
    ASSERT_TRUE(ProjectFile::create(live(), *states()[0].records, through(quick_)).ok());
    SimulatedDisk disk(imagesOf(folder_ / "live"));
    ASSERT_NO_FATAL_FAILURE(writeStory());
    std::size_t state = 0;
    for (std::size_t call = 0; call <= recorder_.calls().size(); ++call) {
        while (state + 1 < acknowledged_.size() && acknowledged_[state + 1].calls <= call) ++state;
        SCOPED_TRACE("before call " + std::to_string(call) + ", written: " + states()[state].name);
        for (int cut = 0; cut < cutsAtEachCall(); ++cut) {
            const FileImages images = disk.afterCut(random_);
            ASSERT_NO_FATAL_FAILURE(checkCut(images, state));
            if (cut > 0) continue;
            ASSERT_NO_FATAL_FAILURE(checkCutInRecovery(images, state));
        }
        if (call < recorder_.calls().size()) disk.repeat(recorder_.calls()[call]);
    }
    std::cout << cuts_ << " power cuts, " << cutsInRecovery_ << " of them in a recovery\n";
    EXPECT_GT(cutsInRecovery_, 20) << "too few to mean anything";
}

// The disk must be able to lose what was not synced, or none of the tests here means anything.
TEST_F(PowerCuts, LoseWhatIsNotSafe) {
    RecordedCall write{{}, std::string(1000, 'b')};
    write.call.kind = CallKind::write;
    write.call.path = "file";
    RecordedCall sync;
    sync.call.kind = CallKind::sync;
    sync.call.path = "file";
    SimulatedDisk disk({{"file", std::string(1000, 'a')}});
    disk.repeat(write);
    int lost = 0;
    int kept = 0;
    for (int cut = 0; cut < 100; ++cut) {
        const std::string bytes = disk.afterCut(random_).at("file");
        lost += bytes == std::string(1000, 'a') ? 1 : 0;
        kept += bytes == std::string(1000, 'b') ? 1 : 0;
    }
    EXPECT_GT(lost, 10);
    EXPECT_GT(kept, 10);
    EXPECT_LT(lost + kept, 100) << "some must be torn";
    disk.repeat(sync);
    for (int cut = 0; cut < 100; ++cut) EXPECT_EQ(disk.afterCut(random_).at("file"), write.bytes);
}

// A new project in the place of an old one: of the two, one is there at any moment.
TEST_F(PowerCuts, InAReplacementLeaveEitherProject) {
    const ProjectStory story;
    const auto& before = *story.states().front().records;
    const auto& after = *story.states().back().records;
    ASSERT_TRUE(ProjectFile::create(live(), before, through(quick_)).ok());
    SimulatedDisk disk(imagesOf(folder_ / "live"));
    {
        const SystemCalls heard(recorder_);
        ASSERT_TRUE(ProjectFile::create(live(), after, through(recorded_)).ok());
    }
    const std::size_t calls = recorder_.calls().size();
    for (std::size_t call = 0; call <= calls; ++call) {
        for (int cut = 0; cut < cutsAtEachCall(); ++cut) {
            layOut(disk.afterCut(random_));
            const auto records = openFound(quick_);
            ASSERT_TRUE(records) << "before call " << call;
            const bool isNew = sameRecords(*records, after.blocks());
            ASSERT_TRUE(isNew || (call < calls && sameRecords(*records, before.blocks())))
                << "before call " << call << " of " << calls;
        }
        if (call < calls) disk.repeat(recorder_.calls()[call]);
    }
}

}  // namespace
}  // namespace zorvel
