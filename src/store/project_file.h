// One project file, an SQLite database (docs/file-format.md): checked when it is opened, read
// whole, and brought up to date by the rows that differ, all or nothing. An open file is marked as
// such until it is closed, so that no other Zorvel opens it for writing. Used by one thread at a
// time, any thread. Nothing here throws.
#pragma once

#include <sys/types.h>

#include <compare>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "store/census_block.h"
#include "store/file_problem.h"
#include "store/object_context.h"

namespace zorvel {

// Tells the same file under two paths.
struct FileIdentity {
    dev_t device = 0;
    ino_t inode = 0;
    friend auto operator<=>(const FileIdentity&, const FileIdentity&) = default;
};

// Absent if there is no such file. Follows symbolic links; opens nothing.
std::optional<FileIdentity> fileIdentity(const std::string& path);

// Whether these first bytes of a file are those of an SQLite database.
bool startsLikeProject(std::string_view bytes);

struct ProjectFileOptions {
    // Only for reading: nothing is marked, and a file open elsewhere can be read all the same.
    bool readOnly = false;
    // The name of SQLite's layer over the system's files; null for its default.
    const char* vfs = nullptr;
    // For create(): if there is a file at the path, fail with EEXIST and leave it.
    bool keepExisting = false;
};

class ProjectFile {
  public:
    // Opens and checks an existing project. The file stays as it is, except that a write that was
    // cut off is undone. A file that may only be read opens too: see whyNotWritable().
    static FileResult<std::unique_ptr<ProjectFile>> open(const std::string& path,
                                                         const ProjectFileOptions& options = {});

    // A new project file of that state. It is written whole under another name in the same folder,
    // and takes the path, and the place of a file that is there, only when it is safe on the disk.
    // A file open elsewhere is not replaced. Gets an identity of its own.
    static FileResult<std::unique_ptr<ProjectFile>> create(const std::string& path,
                                                           const ObjectContext& state,
                                                           const ProjectFileOptions& options = {});

    ~ProjectFile();
    ProjectFile(const ProjectFile&) = delete;
    ProjectFile& operator=(const ProjectFile&) = delete;

    // All records. Once, after open(); a file whose rows contradict one another is damaged.
    FileResult<ProjectRecords> load();

    // Brings the file to the state, a frozen copy of the context whose records were loaded or given
    // to create(), in one transaction of the rows that differ from the state written last. After a
    // problem the file holds the old state or the new one, never a mix, and write() may be called
    // again, with the same state or a later one. Safe on the disk when it returns nothing.
    std::optional<FileProblem> write(const std::shared_ptr<const ObjectContext>& state);

    // A copy of the file as it was last written, whole or not at all, under a new name, with the
    // same permissions.
    std::optional<FileProblem> copyTo(const std::string& path);

    [[nodiscard]] const std::string& path() const;
    [[nodiscard]] FileIdentity identity() const;
    // Of a file, or a folder, that may not be written, and, after load(), of a file without room
    // for new records.
    [[nodiscard]] const std::optional<FileProblem>& whyNotWritable() const;
    // Of the project, whatever its file is called; letters, digits and dashes.
    [[nodiscard]] const std::string& projectId() const;

  private:
    struct Parts;
    explicit ProjectFile(std::unique_ptr<Parts> parts);
    std::unique_ptr<Parts> parts_;
};

}  // namespace zorvel
