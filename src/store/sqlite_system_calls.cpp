#include "store/sqlite_system_calls.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <mutex>
#include <string_view>

#include "store/companion_files.h"
#include "store/file_handle.h"

namespace zorvel {
namespace {

// SQLite counts the locks of all connections to a file in this process as one, and may set a lock
// by way of one connection and release it by way of another.
int lockHeld(const HeldDescriptors& held, int command, struct flock& range) {
    const int ours = command == F_GETLK ? F_OFD_GETLK : F_OFD_SETLK;
    range.l_pid = 0;  // must be, for these locks
    // All to the end is released in one call, which must spare the mark.
    if (range.l_len == 0) range.l_len = markOffset - range.l_start;
    const bool release = command == F_SETLK && range.l_type == F_UNLCK;
    if (release && held.readable >= 0) lockFile(held.readable, ours, range);
    errno = lockFile(held.any(), ours, range);
    return errno == 0 ? 0 : -1;
}

}  // namespace
}  // namespace zorvel

extern "C" {

static int fcntlOfSqlite(int descriptor, int command, ...) {
    va_list arguments;
    va_start(arguments, command);
    if (command != F_SETLK && command != F_GETLK) {
        const int argument = va_arg(arguments, int);
        va_end(arguments);
        return fcntl(descriptor, command, argument);
    }
    auto* const range = va_arg(arguments, struct flock*);
    va_end(arguments);
    const zorvel::HeldDescriptors held = zorvel::heldDescriptors(descriptor);
    if (held.any() < 0) return fcntl(descriptor, command, range);
    return zorvel::lockHeld(held, command, *range);
}

static int unlinkOfSqlite(const char* path) {
    const std::string_view whole(path);
    const std::string_view name = whole.substr(whole.rfind('/') + 1);
    if (name.starts_with("etilqs_")) return unlink(path);  // SQLite's own temporary files
    for (const std::string_view ending : zorvel::companionEndings) {
        if (name.ends_with(ending)) return unlink(path);
    }
    errno = EPERM;
    return -1;
}
}

namespace zorvel {

void useOurSystemCalls() {
    static std::once_flag once;
    std::call_once(once, [] {
        sqlite3_vfs* const vfs = sqlite3_vfs_find("unix");
        const auto replace = [vfs](const char* name, auto* call) {
            vfs->xSetSystemCall(vfs, name, reinterpret_cast<sqlite3_syscall_ptr>(call));
        };
        replace("fcntl", fcntlOfSqlite);
        replace("unlink", unlinkOfSqlite);
    });
}

}  // namespace zorvel
