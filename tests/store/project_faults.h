// A project whose calls to the disk can be failed, for each kind of fault: what the tests of faults
// have in common.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "store/project_file.h"
#include "tests/support/fault_plan.h"
#include "tests/support/project_story.h"
#include "tests/support/same_records.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/vfs_layer.h"

namespace zorvel {

using Frozen = std::shared_ptr<const ObjectContext>;

struct FaultCase {
    const char* name;
    FaultKind kind;
    bool lasting;
    FileTrouble trouble;
};

inline void PrintTo(const FaultCase& row, std::ostream* out) {
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

    ProjectStory story_;
    FaultPlan plan_;
    VfsLayer faulty_{plan_};
    CallListener nobody_;
    VfsLayer quick_{nobody_};
};

inline const FaultCase faultCases[] = {
    {"InputOutputOnce", FaultKind::inputOutput, false, FileTrouble::inputOutput},
    {"InputOutputLasting", FaultKind::inputOutput, true, FileTrouble::inputOutput},
    {"TornWriteOnce", FaultKind::tornWrite, false, FileTrouble::inputOutput},
    {"TornWriteLasting", FaultKind::tornWrite, true, FileTrouble::inputOutput},
    {"DiskFullOnce", FaultKind::diskFull, false, FileTrouble::diskFull},
    {"DiskFullLasting", FaultKind::diskFull, true, FileTrouble::diskFull},
};

inline std::string nameOf(const testing::TestParamInfo<FaultCase>& info) {
    return info.param.name;
}

}  // namespace zorvel
