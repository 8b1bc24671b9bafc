// Lets a listener hear of, and fail, the calls by which the program itself opens, locks, syncs,
// renames and removes files. Works where the executable is linked with --wrap for each of them.
// One thread.
#pragma once

#include "tests/support/file_calls.h"

namespace zorvel {

// The program's calls are heard while the object lives; syncs are not carried out then.
class SystemCalls {
  public:
    explicit SystemCalls(CallListener& listener);
    ~SystemCalls();
    SystemCalls(const SystemCalls&) = delete;
    SystemCalls& operator=(const SystemCalls&) = delete;
};

}  // namespace zorvel
