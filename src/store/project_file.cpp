#include "store/project_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <utility>

#include "base/files.h"
#include "base/numbers.h"
#include "store/file_failure.h"
#include "store/file_handle.h"
#include "store/project_format.h"
#include "store/project_reader.h"
#include "store/project_writer.h"
#include "store/replacement_file.h"
#include "store/sqlite_connection.h"

namespace zorvel {
namespace {

using State = std::shared_ptr<const ObjectContext>;

ProjectRow newProjectRow() {
    return {randomHexadecimal(4) + "-" + randomHexadecimal(4) + "-" + randomHexadecimal(8), 1,
            randomValue<std::int64_t>()};
}

bool sameWrite(const ProjectRow& a, const ProjectRow& b) {
    return a.generation == b.generation && a.token == b.token;
}

std::string resolvedOrFail(const std::string& path) {
    Result<std::string> resolved = resolvedPath(path);
    if (!resolved) failWithErrno(resolved.problem().systemError, "follow the symbolic links");
    return std::move(resolved).value();
}

// Why the file cannot be written, as far as permissions tell.
std::optional<FileProblem> reasonNotToWrite(const std::string& path, bool readOnly) {
    if (readOnly) return FileProblem{FileTrouble::readOnlyFile, "opened for reading alone", 0};
    if (faccessat(AT_FDCWD, folderOf(path).c_str(), W_OK | X_OK, AT_EACCESS) != 0) {
        return FileProblem{FileTrouble::readOnlyFolder, {}, errno};
    }
    return std::nullopt;
}

}  // namespace

struct ProjectFile::Parts {
    // One state of the project, and how it is recognised in the file: by a row for our writes, by
    // SQLite's count of changes for those of any program.
    struct WrittenState {
        ProjectRow row;
        State state;
        std::uint32_t changes = 0;
    };

    // Fails if the path leads to no place.
    Parts(const std::string& named, const ProjectFileOptions& given);

    std::string path;
    std::string resolved;
    ProjectFileOptions options;
    std::optional<FileProblem> notWritable;

    // In this order: the writer is destroyed before the connection, and that before the handle.
    std::unique_ptr<FileHandle> handle;
    std::unique_ptr<Connection> connection;
    // Absent before the first write and after one that failed.
    std::unique_ptr<ProjectWriter> writer;

    WrittenState written;
    // A write that may or may not have taken place.
    std::optional<WrittenState> attempt;
    // False while a write may be in the file but not yet safe on the disk.
    bool safe = true;
    // Of the file after our last access; absent if that access may have been cut short.
    std::optional<FileStamp> stamp;

    void hold();
    void connect();
    void recover();
    void requireSamePlace() const;
    [[nodiscard]] std::uint32_t changesOfFile() const;
    [[nodiscard]] bool isInFile(const WrittenState& state, const ProjectRow& row) const;
    void settleAttempt();
    void write(const State& state);
    ProjectRecords load();
    void checkCopy(Connection& copy) const;
};

ProjectFile::Parts::Parts(const std::string& named, const ProjectFileOptions& given)
    : path(named), resolved(resolvedOrFail(named)), options(given) {}

void ProjectFile::Parts::hold() {
    notWritable = reasonNotToWrite(resolved, options.readOnly);
    handle =
        FileHandle::open(resolved, notWritable ? FileHandle::Use::read : FileHandle::Use::write);
    if (!notWritable && !handle->isMarked()) {
        notWritable = FileProblem{FileTrouble::readOnlyFile, {}, handle->reasonUnmarked()};
    }
}

void ProjectFile::Parts::connect() {
    const auto access = notWritable ? Connection::Access::read : Connection::Access::write;
    connection = std::make_unique<Connection>(resolved, access, options.vfs);
    stamp = fileStamp(resolved);
}

ProjectFile::ProjectFile(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}
ProjectFile::~ProjectFile() = default;

FileResult<std::unique_ptr<ProjectFile>> ProjectFile::open(const std::string& path,
                                                           const ProjectFileOptions& options) {
    return guardedResult<std::unique_ptr<ProjectFile>>([&] {
        auto parts = std::make_unique<Parts>(path, options);
        parts->hold();
        checkHeader(parts->handle->start(headerSize));
        if (!parts->notWritable) removeUnfinishedFiles(folderOf(parts->resolved));
        parts->recover();
        parts->connect();
        checkDatabase(*parts->connection);
        parts->written.row = readProjectRow(*parts->connection);
        return std::unique_ptr<ProjectFile>(new ProjectFile(std::move(parts)));
    });
}

// A read-only connection cannot read at all if a program was killed while it wrote.
void ProjectFile::Parts::recover() {
    if (!notWritable || !fileStamp(journalOf(resolved))) return;
    guarded([this] {
        const auto held = FileHandle::open(resolved, FileHandle::Use::recover);
        Connection writing(resolved, Connection::Access::write, options.vfs);
        Statement(writing, "SELECT count(*) FROM sqlite_schema").run();
    });
}

FileResult<std::unique_ptr<ProjectFile>> ProjectFile::create(const std::string& path,
                                                             const ObjectContext& state,
                                                             const ProjectFileOptions& options) {
    return guardedResult<std::unique_ptr<ProjectFile>>([&] {
        auto parts = std::make_unique<Parts>(path, options);
        parts->written = {newProjectRow(), state.frozenCopy(), 0};
        ReplacementFile file(parts->resolved, options.vfs, options.keepExisting);
        {
            Connection building(file.temporaryPath(), Connection::Access::build, options.vfs);
            Transaction transaction(building, Transaction::Kind::write);
            makeTables(building);
            ProjectWriter writer(building, ObjectContext());
            writer.write(state.changesSince(ObjectContext()));
            writer.writeProjectRow(parts->written.row);
            transaction.commit();
        }
        parts->handle = file.takePlace();
        parts->connect();
        parts->written.changes = parts->changesOfFile();
        return std::unique_ptr<ProjectFile>(new ProjectFile(std::move(parts)));
    });
}

FileResult<ProjectRecords> ProjectFile::load() {
    return guardedResult<ProjectRecords>([this] { return parts_->load(); });
}

ProjectRecords ProjectFile::Parts::load() {
    Transaction transaction(*connection, Transaction::Kind::read);
    ReadProject project = readProject(*connection);
    stamp = fileStamp(resolved);
    const auto state = std::make_shared<ObjectContext>();
    state->adopt(project.records);
    written = {std::move(project.row), state, changesOfFile()};
    transaction.commit();
    if (!notWritable && project.highestId > highestNumber / 2) {
        notWritable = FileProblem{FileTrouble::noRoom, std::to_string(project.highestId), 0};
    }
    return std::move(project.records);
}

std::optional<FileProblem> ProjectFile::write(const State& state) {
    return guarded([&] {
        if (parts_->notWritable) throw FileFailure{*parts_->notWritable};
        if (!parts_->written.state) fail(FileTrouble::other, "written before it was read");
        parts_->write(state);
    });
}

void ProjectFile::Parts::requireSamePlace() const {
    const std::optional<FileIdentity> there = fileIdentity(path);
    if (!there || !(*there == handle->identity()) || connection->hasMoved()) {
        fail(FileTrouble::moved);
    }
}

std::uint32_t ProjectFile::Parts::changesOfFile() const {
    return changeCount(handle->start(headerSize));
}

bool ProjectFile::Parts::isInFile(const WrittenState& state, const ProjectRow& row) const {
    return sameWrite(row, state.row) && changesOfFile() == state.changes;
}

// Finds out, in the open transaction, whether the last write took place, and fails if there was
// another one: the modification time alone is too coarse to tell.
void ProjectFile::Parts::settleAttempt() {
    const ProjectRow found = readProjectRow(*connection);
    if (attempt && isInFile(*attempt, found)) {
        written = std::move(*attempt);
    } else if (!isInFile(written, found)) {
        fail(FileTrouble::changedElsewhere);
    }
    attempt.reset();
}

void ProjectFile::Parts::write(const State& state) {
    requireSamePlace();
    if (stamp && fileStamp(resolved) != stamp) fail(FileTrouble::changedElsewhere);
    // SQLite trusts its cached pages as long as the change counter in the file is the same. A sync
    // program may have overwritten the file with another version that has the same counter.
    connection->forgetPages();
    Transaction transaction(*connection, Transaction::Kind::write);
    settleAttempt();
    const ChangeSet changes = state->changesSince(*written.state);
    if (changes.empty() && safe) return;
    const std::int64_t generation = written.row.generation % highestNumber + 1;
    WrittenState next{{written.row.identity, generation, randomValue<std::int64_t>()},
                      state,
                      written.changes + 1};
    stamp.reset();
    auto working =
        writer ? std::move(writer) : std::make_unique<ProjectWriter>(*connection, *written.state);
    working->write(changes);
    working->writeProjectRow(next.row);
    attempt = std::move(next);
    safe = false;
    requireSamePlace();
    transaction.commit();
    safe = true;
    written = std::move(*attempt);
    attempt.reset();
    writer = std::move(working);
    requireSamePlace();
    stamp = fileStamp(resolved);
}

// Another program may have overwritten the pages.
void ProjectFile::Parts::checkCopy(Connection& copy) const {
    checkPages(copy);
    const ProjectRow row = readProjectRow(copy);
    const bool ours = sameWrite(row, written.row) || (attempt && sameWrite(row, attempt->row));
    if (!notWritable && !ours) fail(FileTrouble::changedElsewhere);
}

std::optional<FileProblem> ProjectFile::copyTo(const std::string& path) {
    return guarded([&] {
        ReplacementFile file(resolvedOrFail(path), parts_->options.vfs);
        file.adoptPermissions(*parts_->handle, S_IRUSR | S_IWUSR);
        {
            Connection copy(file.temporaryPath(), Connection::Access::build, parts_->options.vfs);
            parts_->connection->forgetPages();
            parts_->connection->copyPagesTo(copy);
            parts_->checkCopy(copy);
        }
        file.takePlace();
    });
}

const std::string& ProjectFile::path() const {
    return parts_->path;
}

FileIdentity ProjectFile::identity() const {
    return parts_->handle->identity();
}

const std::optional<FileProblem>& ProjectFile::whyNotWritable() const {
    return parts_->notWritable;
}

const std::string& ProjectFile::projectId() const {
    return parts_->written.row.identity;
}

}  // namespace zorvel
