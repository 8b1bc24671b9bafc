// One flipped bit anywhere in a project: it is found out, or stands in a value, which then is
// another valid one. There is no checksum. Never a crash, a long wait, or a changed file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "store/project_file.h"
#include "tests/support/project_story.h"
#include "tests/support/same_records.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/vfs_layer.h"

namespace zorvel {
namespace {

// ZORVEL_FLIP_STEP in the environment sets the distance of the bytes; 1 takes each.
std::size_t stepOfFlips() {
    const char* asked = std::getenv("ZORVEL_FLIP_STEP");
    return asked ? static_cast<std::size_t>(std::atoi(asked)) : 193;
}

struct FlatTaxon {
    RecordId id = 0;
    std::size_t census = 0;
    TaxonValues values;
    friend bool operator==(const FlatTaxon&, const FlatTaxon&) = default;
};

std::vector<FlatTaxon> flatTaxa(const std::vector<BlockPointer>& censuses) {
    std::vector<FlatTaxon> taxa;
    for (std::size_t i = 0; i < censuses.size(); ++i) {
        censuses[i]->forEachTaxon([&](const TaxonRecord& taxon) {
            taxa.push_back({taxon.id, i, taxon.values});
        });
    }
    std::sort(taxa.begin(), taxa.end(),
              [](const FlatTaxon& a, const FlatTaxon& b) { return a.id < b.id; });
    return taxa;
}

// How many rows differ between two lists of records of the same length; more than one taxon counts
// as one where all have the same name in place of the same other. Absent where records are missing.
std::optional<int> differingRows(const std::vector<BlockPointer>& a,
                                 const std::vector<BlockPointer>& b) {
    const std::vector<FlatTaxon> before = flatTaxa(a);
    const std::vector<FlatTaxon> after = flatTaxa(b);
    if (a.size() != b.size() || before.size() != after.size()) return std::nullopt;
    int rows = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const bool same =
            a[i]->id == b[i]->id && sameAttributes(a[i]->attributes, b[i]->attributes);
        rows += same ? 0 : 1;
    }
    std::set<std::pair<std::string, std::string>> renamings;
    for (std::size_t i = 0; i < before.size(); ++i) {
        FlatTaxon renamed = before[i];
        renamed.values.name = after[i].values.name;
        if (!(renamed == after[i])) {
            ++rows;
        } else if (!(before[i] == after[i])) {
            renamings.emplace(before[i].values.name.value_or("").str(),
                              after[i].values.name.value_or("").str());
        }
    }
    return rows + static_cast<int>(renamings.size());
}

class BitFlips : public QuickScratchFolder {
  protected:
    FileResult<ProjectRecords> read() {
        ProjectFileOptions options;
        options.vfs = quick_.name();
        auto file = ProjectFile::open(path("project.zorvel"), options);
        if (!file) return file.problem();
        return file.value()->load();
    }

    CallListener nobody_;
    VfsLayer quick_{nobody_};
};

TEST_F(BitFlips, AreFoundOutOrStandInOneRow) {
    const ProjectStory story;
    const auto project = story.states()[5].records;
    ASSERT_TRUE(ProjectFile::create(path("project.zorvel"), *project).ok());
    const std::string whole = bytesOf("project.zorvel");
    const std::vector<BlockPointer> expected = project->blocks();
    int flips = 0;
    int refused = 0;
    int altered = 0;
    for (std::size_t place = 0; place < whole.size(); place += stepOfFlips()) {
        for (const unsigned bit : {place % 8, (place + 5) % 8}) {
            SCOPED_TRACE("byte " + std::to_string(place) + ", bit " + std::to_string(bit));
            std::string bytes = whole;
            bytes[place] =
                static_cast<char>(static_cast<unsigned char>(bytes[place]) ^ (1U << bit));
            put("project.zorvel", bytes);
            auto records = read();
            ++flips;
            ASSERT_TRUE(bytesOf("project.zorvel") == bytes) << "it was changed";
            if (!records) {
                ++refused;
                ASSERT_NE(records.problem().trouble, FileTrouble::other);
                continue;
            }
            const auto rows = differingRows(expected, records.value().censuses);
            ASSERT_TRUE(rows.has_value()) << "records are missing";
            ASSERT_LE(*rows, 1);
            altered += *rows;
        }
    }
    std::cout << flips << " flips: " << refused << " refused, " << altered
              << " gave another value, the others hit unused bytes\n";
    EXPECT_GT(refused, flips / 20);
    EXPECT_GT(altered, 0);
}

}  // namespace
}  // namespace zorvel
