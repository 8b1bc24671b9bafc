// The exception of this folder: thrown from deep within a chain of calls to SQLite, so that not
// every step has to be checked. guarded() turns it into a FileProblem; no exception leaves the
// folder.
#pragma once

#include <cerrno>
#include <exception>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "store/file_problem.h"

namespace zorvel {

struct FileFailure {
    FileProblem problem;
};

[[noreturn]] inline void fail(FileTrouble trouble, std::string detail = {}, int systemError = 0) {
    throw FileFailure{{trouble, std::move(detail), systemError}};
}

// The trouble that an error number of a system call stands for.
inline FileTrouble troubleOfErrno(int number) {
    switch (number) {
        case ENOENT:
        case ENOTDIR:
            return FileTrouble::notFound;
        case EACCES:
        case EPERM:
            return FileTrouble::noPermission;
        case EROFS:
            return FileTrouble::readOnlyFolder;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return FileTrouble::diskFull;
        case EIO:
        case ESTALE:
        case ENXIO:
            return FileTrouble::inputOutput;
        case EOPNOTSUPP:  // of locks, see lockFile()
            return FileTrouble::noLocks;
        default:
            return FileTrouble::other;
    }
}

[[noreturn]] inline void failWithErrno(int number, std::string detail) {
    fail(troubleOfErrno(number), std::move(detail), number);
}

// Runs work. Returns the problem that stopped it, if any.
template <class Work>
std::optional<FileProblem> guarded(Work&& work) noexcept {
    try {
        std::forward<Work>(work)();
        return std::nullopt;
    } catch (FileFailure& failure) {
        return std::move(failure.problem);
    } catch (const std::bad_alloc&) {
        // Short enough to need no memory of its own.
        return FileProblem{FileTrouble::other, "out of memory", ENOMEM};
    } catch (const std::exception&) {
        return FileProblem{FileTrouble::other, "internal", 0};
    }
}

// The same for work that has a result.
template <class T, class Work>
FileResult<T> guardedResult(Work&& work) noexcept {
    std::optional<T> result;
    std::optional<FileProblem> problem =
        guarded([&] { result.emplace(std::forward<Work>(work)()); });
    if (problem) return std::move(*problem);
    return std::move(*result);
}

}  // namespace zorvel
