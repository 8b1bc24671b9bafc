// How soon documents are written, and again after a failure; and through which layer of SQLite.
// Plain values, the same for all documents of a run.
#pragma once

#include <chrono>

namespace zorvel {

struct SaveSettings {
    // From the first change that is not in the file to its writing.
    std::chrono::milliseconds autosave{400};
    // The same for what is typed in an open editor, until it becomes a change.
    std::chrono::milliseconds typing{1500};
    // How often a writing that is due asks whether the open step of undo has ended.
    std::chrono::milliseconds stepPoll{50};
    // Between tries of a file that another program is using just now; after busyTries of them it is
    // a failure like any other.
    std::chrono::milliseconds busyRetry{100};
    int busyTries = 5;
    // After the first failure; doubled with each that follows, up to the last.
    std::chrono::milliseconds firstRetry{1000};
    std::chrono::milliseconds lastRetry{60000};
    // See ProjectFileOptions.
    const char* vfs = nullptr;
};

}  // namespace zorvel
