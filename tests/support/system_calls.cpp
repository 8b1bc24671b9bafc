#include "tests/support/system_calls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdarg>
#include <cstdio>

// The linker leads the program's calls to __wrap_..., and gives the system's own as __real_... .
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
int __real_fcntl(int descriptor, int command, ...);
int __real_open(const char* path, int flags, ...);
int __real_fsync(int descriptor);
int __real_rename(const char* from, const char* to);
int __real_unlink(const char* path);
}

namespace zorvel {
namespace {

CallListener* listening = nullptr;

std::string pathOf(int descriptor) {
    std::string path(PATH_MAX, '\0');
    const std::string link = "/proc/self/fd/" + std::to_string(descriptor);
    const ssize_t size = readlink(link.c_str(), path.data(), path.size());
    path.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
    return path;
}

bool isFolder(int descriptor) {
    struct stat status {};
    return fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode);
}

FileCall callOf(CallKind kind, const char* path) {
    FileCall call{kind, path};
    call.ofSystem = true;
    return call;
}

// As the system does it: -1 and errno for a failure.
template <class Make>
int pass(const FileCall& call, Make&& make) {
    if (!listening) return make();
    if (const int code = listening->before(call).code) {
        errno = code;
        return -1;
    }
    const int result = make();
    if (result >= 0) listening->after(call);
    return result;
}

}  // namespace

SystemCalls::SystemCalls(CallListener& listener) {
    listening = &listener;
}

SystemCalls::~SystemCalls() {
    listening = nullptr;
}

}  // namespace zorvel

extern "C" {

// Locks are heard when they are set.
int __wrap_fcntl(int descriptor, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    auto* const range = va_arg(arguments, struct flock*);
    va_end(arguments);
    const bool locks = command == F_OFD_SETLK && range->l_type != F_UNLCK;
    if (!locks || !zorvel::listening) return __real_fcntl(descriptor, command, range);
    const std::string path = zorvel::pathOf(descriptor);
    return zorvel::pass(zorvel::callOf(zorvel::CallKind::lock, path.c_str()),
                        [&] { return __real_fcntl(descriptor, command, range); });
}

int __wrap_open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    zorvel::FileCall call = zorvel::callOf(zorvel::CallKind::open, path);
    call.creates = (flags & O_CREAT) != 0;
    return zorvel::pass(call, [&] { return __real_open(path, flags, mode); });
}

int __wrap_fsync(int descriptor) {
    if (!zorvel::listening) return __real_fsync(descriptor);
    const std::string path = zorvel::pathOf(descriptor);
    zorvel::FileCall call = zorvel::callOf(zorvel::CallKind::sync, path.c_str());
    call.syncsFolder = zorvel::isFolder(descriptor);
    return zorvel::pass(call, [] { return 0; });
}

int __wrap_rename(const char* from, const char* to) {
    return zorvel::pass(zorvel::callOf(zorvel::CallKind::rename, from),
                        [&] { return __real_rename(from, to); });
}

int __wrap_unlink(const char* path) {
    return zorvel::pass(zorvel::callOf(zorvel::CallKind::remove, path),
                        [&] { return __real_unlink(path); });
}
}
// NOLINTEND(bugprone-reserved-identifier)
