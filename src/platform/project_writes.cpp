#include "platform/project_writes.h"

#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <algorithm>
#include <filesystem>
#include <system_error>
#include <tuple>
#include <utility>

#include "platform/file_names.h"
#include "store/file_failure.h"
#include "store/replacement_file.h"

namespace zorvel {

namespace {

// A link to the project, beside the copy: "NAME.origin" of "NAME.zorvel".
std::string originLink(const std::string& path) {
    return std::filesystem::path(path).replace_extension(".origin").string();
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

// With the folders above it; no problem if it exists already.
std::optional<FileProblem> makeFolder(const QString& folder) {
    std::error_code error;
    std::filesystem::create_directories(encodedPath(folder), error);
    if (!error) return std::nullopt;
    FileTrouble trouble = troubleOfErrno(error.value());
    const bool isOfFiles = trouble == FileTrouble::notFound || trouble == FileTrouble::noPermission;
    if (isOfFiles) trouble = FileTrouble::readOnlyFolder;
    return FileProblem{trouble, "make the folder " + folder.toStdString(), error.value()};
}

const QString timeFormat = QStringLiteral("yyyy-MM-dd HH.mm.ss");

// By time first, whatever the name.
bool isOlder(const Backup& a, const Backup& b) {
    return std::tie(a.time, a.modified, a.number) < std::tie(b.time, b.modified, b.number);
}

QString freePath(const QString& folder, const QString& stem) {
    QString path = folder + "/" + stem + projectEnding;
    for (int number = 2; QFileInfo::exists(path); ++number) {
        path = folder + "/" + stem + QString(" (%1)").arg(number) + projectEnding;
    }
    return path;
}

// The backup just made stays: after the clock was set back it seems the oldest.
void prune(const QString& folder, const QString& displayName, const QString& made) {
    std::vector<Backup> backups = backupsIn(folder);
    std::erase_if(backups, [&](const Backup& backup) {
        return backup.displayName != displayName || backup.path == made;
    });
    constexpr std::size_t others = 9;
    for (std::size_t i = 0; i + others < backups.size(); ++i) QFile::remove(backups[i].path);
}

// A copy of the file as it is on the disk now; then the oldest of that name are deleted.
std::optional<FileProblem> makeBackup(ProjectFile& file, const BackupOrder& order) {
    const QString folder = order.folder + "/" + QString::fromStdString(file.projectId());
    if (auto problem = makeFolder(folder)) return problem;
    const QString name = asFileName(order.displayName);
    const QString path =
        freePath(folder, name + " " + QDateTime::currentDateTime().toString(timeFormat));
    if (auto problem = file.copyTo(encodedPath(path))) return problem;
    prune(folder, name, QFileInfo(path).absoluteFilePath());
    removeUnfinishedFiles(encodedPath(folder));
    return std::nullopt;
}

}  // namespace

FileFacts factsOf(const ProjectFile& file) {
    return {QFile::decodeName(file.path().c_str()), file.identity(),
            QString::fromStdString(file.projectId()), file.whyNotWritable()};
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
    if (order.backup && !holder.file->whyNotWritable()) {
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
    closeProject(holder, encodedPath(order.untitledPath));
    holder.file = std::move(fresh.file);
    return outcome;
}

// Deleted while it is open, so that no other run can open it in between, and only if the path still
// leads to this file.
void closeProject(FileHolder& holder, const std::string& deleteAt) {
    const auto& file = holder.file;
    if (file && !deleteAt.empty() && fileIdentity(deleteAt) == file->identity()) {
        ::unlink(deleteAt.c_str());
        ::unlink(originLink(deleteAt).c_str());
    }
    holder.file.reset();
}

std::vector<Backup> backupsIn(const QString& folder) {
    static const QRegularExpression form(
        "\\A(.+) (\\d{4}-\\d\\d-\\d\\d \\d\\d\\.\\d\\d\\.\\d\\d)(?: \\((\\d+)\\))?\\.zorvel\\z",
        QRegularExpression::DotMatchesEverythingOption);
    std::vector<Backup> backups;
    if (folder.isEmpty()) return backups;
    for (const QFileInfo& file : QDir(folder).entryInfoList(QDir::Files)) {
        const QRegularExpressionMatch match = form.match(file.fileName());
        if (!match.hasMatch()) continue;
        const int number = match.captured(3).isEmpty() ? 1 : match.captured(3).toInt();
        backups.push_back({file.absoluteFilePath(), match.captured(1), match.captured(2), number,
                           file.lastModified(), file.size()});
    }
    std::sort(backups.begin(), backups.end(), isOlder);
    return backups;
}

}  // namespace zorvel
