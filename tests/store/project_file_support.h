// Projects of extreme values, and the comparison of what a file gives back.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "store/object_context.h"
#include "store/project_file.h"
#include "tests/support/scratch_folder.h"

namespace zorvel {

// Absent and empty texts differ here.
inline std::string shown(const std::optional<SharedText>& text) {
    return text ? "\"" + text->str() + "\"" : "absent";
}

inline void expectSameBlock(const CensusBlock& a, const CensusBlock& b) {
    EXPECT_EQ(a.id, b.id);
    EXPECT_EQ(shown(a.attributes.name), shown(b.attributes.name));
    EXPECT_EQ(shown(a.attributes.notes), shown(b.attributes.notes));
    EXPECT_TRUE(sameValue(a.attributes.latitude, b.attributes.latitude));
    EXPECT_TRUE(sameValue(a.attributes.longitude, b.attributes.longitude));
    EXPECT_EQ(a.attributes.timeStamp, b.attributes.timeStamp);
    std::vector<TaxonRecord> left;
    std::vector<TaxonRecord> right;
    a.forEachTaxon([&](const TaxonRecord& taxon) { left.push_back(taxon); });
    b.forEachTaxon([&](const TaxonRecord& taxon) { right.push_back(taxon); });
    ASSERT_EQ(left.size(), right.size());
    for (std::size_t i = 0; i < left.size(); ++i) {
        ASSERT_EQ(left[i].id, right[i].id);
        ASSERT_EQ(shown(left[i].values.name), shown(right[i].values.name));
        ASSERT_EQ(left[i].values.abundance, right[i].values.abundance);
        ASSERT_EQ(left[i].values.include, right[i].values.include);
    }
}

inline void expectSameRecords(const std::vector<BlockPointer>& a,
                              const std::vector<BlockPointer>& b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
        ASSERT_NO_FATAL_FAILURE(expectSameBlock(*a[i], *b[i])) << "census " << i;
    }
}

class ProjectFileTest : public ScratchFolder {
  protected:
    // The file anew, with the records that it holds.
    struct Opened {
        std::unique_ptr<ProjectFile> file;
        ProjectRecords records;
    };

    static Opened opened(const std::string& path, const ProjectFileOptions& options = {}) {
        Opened result;
        auto file = ProjectFile::open(path, options);
        if (!file) {
            ADD_FAILURE() << static_cast<int>(file.problem().trouble) << file.problem().detail;
            return result;
        }
        auto records = file.value()->load();
        if (!records) {
            ADD_FAILURE() << records.problem().detail;
            return result;
        }
        result.file = std::move(file).value();
        result.records = std::move(records).value();
        return result;
    }

    static std::unique_ptr<ProjectFile> created(const std::string& path,
                                                const ObjectContext& state) {
        auto file = ProjectFile::create(path, state);
        if (!file) {
            ADD_FAILURE() << file.problem().detail;
            return nullptr;
        }
        return std::move(file).value();
    }

    static void expectHolds(const std::string& path, const ObjectContext& state) {
        const Opened found = opened(path, {true, nullptr});
        expectSameRecords(found.records.censuses, state.blocks());
    }

    // The trouble met on opening and reading, whichever comes first.
    static std::optional<FileTrouble> troubleOf(const std::string& path,
                                                const ProjectFileOptions& options = {}) {
        auto file = ProjectFile::open(path, options);
        if (!file) return file.problem().trouble;
        auto records = file.value()->load();
        if (!records) return records.problem().trouble;
        return std::nullopt;
    }
};

}  // namespace zorvel
