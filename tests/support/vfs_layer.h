// A layer over SQLite's own access to files that lets a listener hear of each call and fail it.
// Syncs are heard of but not carried out, which saves the tests their time; there is no shared
// memory and no mapping. Registered under a name of its own while the object lives; connections
// must be closed before.
#pragma once

#include <sqlite3.h>

#include <string>

#include "tests/support/file_calls.h"

namespace zorvel {

class VfsLayer {
  public:
    explicit VfsLayer(CallListener& listener);
    ~VfsLayer();
    VfsLayer(const VfsLayer&) = delete;
    VfsLayer& operator=(const VfsLayer&) = delete;

    [[nodiscard]] const char* name() const { return name_.c_str(); }

  private:
    std::string name_;
    sqlite3_vfs vfs_;
};

}  // namespace zorvel
