// A connection to one SQLite database, opened with suspicion: no triggers, views, extensions or
// attached files, a rollback journal that is deleted at each commit, and a commit that returns when
// it is safe on the disk. Failures are thrown as FileFailure. One thread at a time.
#pragma once

#include <string>

#include "store/file_problem.h"

struct sqlite3;

namespace zorvel {

// Of one text in a project file, in bytes.
inline constexpr int longestText = 100'000'000;

class Connection {
  public:
    enum class Access {
        read,
        write,
        // A new file that nobody else knows of: without a journal, so that a failure spoils it.
        build,
        // A database in memory; the path does not matter.
        memory,
    };

    // vfs: see ProjectFileOptions. The path must be absolute.
    Connection(const std::string& path, Access access, const char* vfs);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    [[nodiscard]] sqlite3* handle() const { return handle_; }

    // Statements without rows.
    // doing says what was tried, for the message of a failure.
    void run(const char* sql, const char* doing);

    // Fails where the code is an error.
    void check(int code, const char* doing) const;

    // To be called before each access to the file that may play a journal back: see
    // checkCompanions().
    void lookBeside() const;

    // Makes the other, empty database a copy of this one as it was last committed.
    void copyPagesTo(Connection& other) const;

    // What follows is read from the file, not from memory. Outside transactions.
    void forgetPages();

    // Whether the file is no longer the one at its path.
    [[nodiscard]] bool hasMoved() const;

  private:
    void configure(Access access);
    std::string path_;  // empty in memory
    sqlite3* handle_ = nullptr;
};

// All that is written until commit() is one change: it is undone when the object goes without one.
class Transaction {
  public:
    enum class Kind { read, write };
    Transaction(Connection& connection, Kind kind);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void commit();

  private:
    Connection& connection_;
    bool open_ = true;
};

}  // namespace zorvel
