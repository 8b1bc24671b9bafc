#include "tests/support/fault_plan.h"

#include <sqlite3.h>

#include <cerrno>

namespace zorvel {
namespace {

struct KindFacts {
    const char* name;
    int ioError;  // SQLite's code
};

KindFacts factsOf(CallKind kind) {
    switch (kind) {
        case CallKind::open:
            return {"open", SQLITE_CANTOPEN};
        case CallKind::read:
            return {"read", SQLITE_IOERR_READ};
        case CallKind::write:
            return {"write", SQLITE_IOERR_WRITE};
        case CallKind::truncate:
            return {"truncate", SQLITE_IOERR_TRUNCATE};
        case CallKind::sync:
            return {"sync", SQLITE_IOERR_FSYNC};
        case CallKind::fileSize:
            return {"size", SQLITE_IOERR_FSTAT};
        case CallKind::lock:
            return {"lock", SQLITE_IOERR_LOCK};
        case CallKind::remove:
            return {"remove", SQLITE_IOERR_DELETE};
        case CallKind::access:
            return {"access", SQLITE_IOERR_ACCESS};
        case CallKind::control:
            return {"control", SQLITE_IOERR};
        case CallKind::rename:
            return {"rename", SQLITE_IOERR};
    }
    return {"call", SQLITE_IOERR};
}

// Enough to tell what a long list of failed calls was about.
constexpr std::size_t longestStory = 300;

}  // namespace

void FaultPlan::failCall(FaultKind kind, std::size_t call, bool lasting) {
    kind_ = kind;
    call_ = call;
    lasting_ = lasting;
    counted_ = 0;
    struck_.clear();
}

void FaultPlan::heal() {
    call_ = 0;
}

bool FaultPlan::counts(const FileCall& call) const {
    return kind_ == FaultKind::inputOutput || call.kind == CallKind::write;
}

int FaultPlan::codeFor(const FileCall& call) const {
    if (kind_ == FaultKind::diskFull) return call.ofSystem ? ENOSPC : SQLITE_FULL;
    return call.ofSystem ? EIO : factsOf(call.kind).ioError;
}

Verdict FaultPlan::before(const FileCall& call) {
    if (call_ == 0 || !counts(call)) return {};
    ++counted_;
    if (counted_ < call_ || (counted_ > call_ && !lasting_)) return {};
    if (struck_.size() < longestStory) {
        struck_ += (struck_.empty() ? "" : ", ") + std::string(factsOf(call.kind).name) + " of " +
                   call.path.substr(call.path.rfind('/') + 1);
    }
    // Which SQLite asks for too.
    errno = kind_ == FaultKind::diskFull ? ENOSPC : EIO;
    const bool torn = kind_ != FaultKind::inputOutput;
    return {codeFor(call), torn ? call.bytes.size() / 2 : 0};
}

}  // namespace zorvel
