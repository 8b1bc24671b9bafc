// Fails one call of a program to its files, the n-th of those that count, once or from then on.
// A lasting fault lets the files be closed, as every disk does.
#pragma once

#include <sqlite3.h>

#include <cerrno>
#include <cstddef>
#include <string>

#include "tests/support/file_calls.h"

namespace zorvel {

// In the order of CallKind: a name for messages, and SQLite's code.
struct KindFacts {
    const char* name;
    int ioError;
};
inline constexpr KindFacts factsOfKinds[] = {
    {"open", SQLITE_CANTOPEN},       {"read", SQLITE_IOERR_READ},
    {"write", SQLITE_IOERR_WRITE},   {"truncate", SQLITE_IOERR_TRUNCATE},
    {"sync", SQLITE_IOERR_FSYNC},    {"size", SQLITE_IOERR_FSTAT},
    {"lock", SQLITE_IOERR_LOCK},     {"remove", SQLITE_IOERR_DELETE},
    {"access", SQLITE_IOERR_ACCESS}, {"control", SQLITE_IOERR},
    {"rename", SQLITE_IOERR}};

enum class FaultKind {
    inputOutput,  // any call reports an error of the disk, having done nothing
    tornWrite,    // a write reports one, having written half
    diskFull,     // a write finds no room, having written half
};

class FaultPlan : public CallListener {
  public:
    // Counts from 1. Faults struck before are forgotten.
    void failCall(FaultKind kind, std::size_t call, bool lasting) {
        kind_ = kind;
        call_ = call;
        lasting_ = lasting;
        counted_ = 0;
        struck_.clear();
    }
    // No call fails any more; counting goes on.
    void heal() { call_ = 0; }

    [[nodiscard]] bool struck() const { return !struck_.empty(); }
    // The calls that failed, for messages.
    [[nodiscard]] const std::string& story() const { return struck_; }

    Verdict before(const FileCall& call) override {
        const bool isWhole = kind_ == FaultKind::inputOutput;
        if (call_ == 0 || (!isWhole && call.kind != CallKind::write)) return {};
        ++counted_;
        if (counted_ < call_ || (counted_ > call_ && !lasting_)) return {};
        const KindFacts& facts = factsOfKinds[static_cast<int>(call.kind)];
        if (struck_.size() < 300) {
            struck_ += (struck_.empty() ? "" : ", ") + std::string(facts.name) + " of " +
                       call.path.substr(call.path.rfind('/') + 1);
        }
        const bool isFull = kind_ == FaultKind::diskFull;
        errno = isFull ? ENOSPC : EIO;  // which SQLite reads too
        const int code = call.ofSystem ? errno : isFull ? SQLITE_FULL : facts.ioError;
        return {code, isWhole ? 0 : call.bytes.size() / 2};
    }

  private:
    FaultKind kind_ = FaultKind::inputOutput;
    std::size_t call_ = 0;  // 0: none fails
    bool lasting_ = false;
    std::size_t counted_ = 0;
    std::string struck_;
};

}  // namespace zorvel
