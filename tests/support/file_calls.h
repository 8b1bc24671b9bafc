// The calls by which a program reaches its files, as a listener between the program and the disk
// sees them: SQLite's by way of VfsLayer, the program's own by way of system_calls.h. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace zorvel {

enum class CallKind {
    open,
    read,
    write,
    truncate,
    sync,
    fileSize,
    lock,
    remove,
    access,
    control,  // a request to SQLite's layer over the file that has no call of its own
    rename,
};

struct FileCall {
    CallKind kind = CallKind::open;
    std::string path = {};        // empty for a file that has no name
    std::int64_t offset = 0;      // of a write; of a truncation the new size
    std::string_view bytes = {};  // of a write
    bool creates = false;         // an open that makes the file where there is none
    bool syncsFolder = false;  // a sync or removal after which the names in the folder are safe too
    bool ofSystem = false;     // made by the program itself: fails with an errno, not SQLite's code
};

// What becomes of a call: it goes on to the disk, or fails with a code (of a write: after its first
// bytes were written).
struct Verdict {
    int code = 0;
    std::size_t bytesWritten = 0;
};

class CallListener {
  public:
    virtual ~CallListener() = default;
    virtual Verdict before(const FileCall&) { return {}; }
    // Of a call that succeeded.
    virtual void after(const FileCall&) {}
};

}  // namespace zorvel
