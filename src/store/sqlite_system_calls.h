// What SQLite asks of the system in this process is changed in two ways. Its locks on a file that a
// FileHandle holds are set through the descriptor of that handle, as open-file-description locks:
// other programs meet them like any others, but no closing of the file elsewhere in the process, by
// whatever library, drops them. And it deletes nothing but the companions of databases and its own
// temporary files: a journal may name any file to be deleted after it was played back. Any thread.
#pragma once

namespace zorvel {

// To be called before each connection is opened; does its work once.
void useOurSystemCalls();

}  // namespace zorvel
