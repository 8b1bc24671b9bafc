#include "platform/project_writes.h"

#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/backups.h"
#include "platform/file_names.h"
#include "store/file_failure.h"

namespace zorvel {

namespace {

// A link to the project, beside the copy: "NAME.origin" of "NAME.zorvel".
std::string originLink(const std::string& path) {
    return std::filesystem::path(path).replace_extension(".origin").string();
}

// Deleted while it is open, so that no other run can open it in between, and only if the path still
// leads to this file.
void closeFile(std::unique_ptr<ProjectFile>& file, const std::string& deleteAt) {
    if (file && !deleteAt.empty() && fileIdentity(deleteAt) == file->identity()) {
        ::unlink(deleteAt.c_str());
        ::unlink(originLink(deleteAt).c_str());
    }
    file.reset();
}

WriteOutcome makeFile(FileHolder& holder, const QString& path, const ObjectContext& state,
                      const ProjectFileOptions& options) {
    WriteOutcome outcome;
    auto made = ProjectFile::create(encodedPath(path), state, options);
    if (!made.ok()) {
        outcome.problem = made.problem();
        return outcome;
    }
    holder.file = std::move(made).value();
    outcome.facts = factsOf(*holder.file);
    return outcome;
}

}  // namespace

FileFacts factsOf(const ProjectFile& file) {
    return {QFile::decodeName(file.path().c_str()), file.identity(),
            QString::fromStdString(file.projectId()), file.whyNotWritable()};
}

std::optional<FileProblem> makeFolder(const QString& folder) {
    std::error_code error;
    std::filesystem::create_directories(encodedPath(folder), error);
    if (!error) return std::nullopt;
    FileTrouble trouble = troubleOfErrno(error.value());
    const bool isOfFiles = trouble == FileTrouble::notFound || trouble == FileTrouble::noPermission;
    if (isOfFiles) trouble = FileTrouble::readOnlyFolder;
    return FileProblem{trouble, "make the folder " + folder.toStdString(), error.value()};
}

WriteOutcome writeProject(const WriteOrder& order) {
    FileHolder& holder = *order.holder;
    if (!holder.file) {
        if (order.untitledPath.isEmpty()) return {FileProblem{FileTrouble::moved, {}, 0}, {}, {}};
        if (auto problem = makeFolder(QFileInfo(order.untitledPath).path())) {
            return {std::move(problem), {}, {}};
        }
        return makeFile(holder, order.untitledPath, *order.state, order.options);
    }
    WriteOutcome outcome;
    if (order.backup && holder.file->canWrite()) {
        outcome.backupProblem = makeBackup(*holder.file, *order.backup);
    }
    outcome.problem = holder.file->write(order.state);
    return outcome;
}

WriteOutcome writeAside(const WriteOrder& order, const QString& projectPath) {
    const bool isNew = !order.holder->file;
    WriteOutcome outcome = writeProject(order);
    if (isNew && !outcome.problem && !projectPath.isEmpty()) {
        std::error_code ignored;  // then the copy does not name its project
        std::filesystem::create_symlink(encodedPath(projectPath),
                                        originLink(encodedPath(order.untitledPath)), ignored);
    }
    return outcome;
}

QString projectOfAside(const QString& path) {
    std::error_code error;
    const auto project = std::filesystem::read_symlink(originLink(encodedPath(path)), error);
    return error ? QString() : QFile::decodeName(project.c_str());
}

WriteOutcome moveProject(const WriteOrder& order, const QString& path) {
    FileHolder& holder = *order.holder;
    if (holder.file && fileIdentity(encodedPath(path)) == holder.file->identity()) {
        holder.file.reset();
    }
    FileHolder fresh;
    WriteOutcome outcome = makeFile(fresh, path, *order.state, order.options);
    if (outcome.problem) return outcome;
    closeFile(holder.file, encodedPath(order.untitledPath));
    holder.file = std::move(fresh.file);
    return outcome;
}

void closeProject(FileHolder& holder, const std::string& deleteAt) {
    closeFile(holder.file, deleteAt);
}

}  // namespace zorvel
