// Why a project file cannot be read or written. model/file_messages.h has the words for the user.
#pragma once

#include <string>

#include "base/result.h"

namespace zorvel {

enum class FileTrouble {
    notFound,
    notAFile,          // a directory, FIFO, socket or device
    empty,             // of no bytes
    notAProject,       // text, or any other kind of file
    foreignDatabase,   // an SQLite database of another program
    newerVersion,      // made by a later Zorvel
    damaged,           // truncated, flipped bits, rows that contradict one another
    hostile,           // holds what no project holds: views, triggers, computed columns
    strangeCompanion,  // beside it is what SQLite would add to it, or follow to other files
    interruptedWrite,  // to be undone first, which it or its folder does not permit
    heldElsewhere,     // open in another running Zorvel
    busy,              // another program is reading or writing it just now
    noLocks,           // its disk cannot lock files, so that two programs might write at once
    noRoom,            // its identities are so high that new ones might not be read again
    readOnlyFile,      // may be read but not written
    readOnlyFolder,    // its folder takes no new file, so it cannot be written safely
    noPermission,      // may not even be read
    diskFull,
    inputOutput,       // the disk or the network reported an error
    moved,             // deleted, renamed or replaced since it was opened
    changedElsewhere,  // another program has written to it since it was opened
    other,
};

struct FileProblem {
    FileTrouble trouble = FileTrouble::other;
    // Details of the place: "table taxon, row 17: ..."; may be empty.
    std::string detail;
    int systemError = 0;  // errno, where the system said no
};

template <class T>
using FileResult = Result<T, FileProblem>;

}  // namespace zorvel
