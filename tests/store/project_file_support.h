// Makes, opens and compares project files, and looks into them as any other program would.
#pragma once

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "store/object_context.h"
#include "store/project_file.h"
#include "tests/support/same_records.h"
#include "tests/support/scratch_folder.h"

namespace zorvel {

class ProjectFileTest : public QuickScratchFolder {
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
        EXPECT_TRUE(sameRecords(found.records.censuses, state.blocks()));
    }

    // The rows of a query, columns parted by a bar.
    static std::vector<std::string> rows(const std::string& path, const std::string& sql) {
        std::vector<std::string> found;
        sqlite3* database = nullptr;
        sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READONLY, nullptr);
        const auto add = [](void* list, int count, char** values, char**) {
            std::string row;
            for (int i = 0; i < count; ++i) {
                row += (i > 0 ? "|" : "") + std::string(values[i] ? values[i] : "NULL");
            }
            static_cast<std::vector<std::string>*>(list)->push_back(row);
            return 0;
        };
        EXPECT_EQ(sqlite3_exec(database, sql.c_str(), add, &found, nullptr), SQLITE_OK) << sql;
        sqlite3_close(database);
        return found;
    }

    // Number of the trouble, for comparison; -1 where there is none.
    static int numberOf(const std::optional<FileProblem>& problem) {
        return problem ? static_cast<int>(problem->trouble) : -1;
    }
    static int numberOf(FileTrouble trouble) { return static_cast<int>(trouble); }

    // The trouble met on opening for writing and reading, whichever comes first.
    static int troubleOf(const std::string& path) {
        auto file = ProjectFile::open(path);
        if (!file) return numberOf(file.problem());
        auto records = file.value()->load();
        return records ? -1 : numberOf(records.problem());
    }
};

}  // namespace zorvel
