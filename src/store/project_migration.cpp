#include "store/project_migration.h"

#include <unistd.h>

#include <utility>

#include "store/file_failure.h"
#include "store/project_format.h"
#include "store/project_reader.h"
#include "store/replacement_file.h"

namespace zorvel {
namespace {

void upgrade(Connection& copy, int version) {
    Transaction transaction(copy, Transaction::Kind::write);
    for (const ProjectFormat& format : projectFormats()) {
        if (format.version <= version) continue;
        copy.run(format.upgrade.c_str(), "bring up to date");
        markAsProject(copy, format.version);
    }
    // A step that went wrong must not get further than this.
    checkTables(copy, projectFormats().back());
    readProject(copy);
    transaction.commit();
}

void keepOld(Connection& old, const FileHandle& held, const std::string& path, const char* vfs) {
    ReplacementFile file(path, vfs);
    file.adoptPermissions(held);
    {
        Connection copy(file.temporaryPath(), Connection::Access::build, vfs);
        old.copyPagesTo(copy);
    }
    file.takePlace();
}

}  // namespace

std::string keptOldPath(const std::string& path, int version) {
    const std::string first = path + ".version-" + std::to_string(version) + ".bak";
    std::string name = first;
    for (int i = 2; fileIdentity(name); ++i) name = first + "-" + std::to_string(i);
    return name;
}

std::unique_ptr<Connection> upgradedInMemory(Connection& old, int version) {
    auto copy = std::make_unique<Connection>("", Connection::Access::memory, nullptr);
    old.copyPagesTo(*copy);
    upgrade(*copy, version);
    return copy;
}

std::unique_ptr<FileHandle> upgradeFile(const std::string& path, std::unique_ptr<FileHandle> held,
                                        std::unique_ptr<Connection> old, int version,
                                        const char* vfs) {
    const std::string kept = keptOldPath(path, version);
    const FileHandle& heldOld = *held;
    ReplacementFile file(path, vfs, std::move(held));
    {
        Connection copy(file.temporaryPath(), Connection::Access::build, vfs);
        old->copyPagesTo(copy);
        upgrade(copy, version);
    }
    keepOld(*old, heldOld, kept, vfs);
    old.reset();
    try {
        return file.takePlace();
    } catch (...) {
        unlink(kept.c_str());
        throw;
    }
}

}  // namespace zorvel
