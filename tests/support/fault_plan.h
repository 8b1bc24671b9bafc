// Fails one call of a program to its files, the n-th of those that count, once or from then on.
// A lasting fault lets the files be closed, as every disk does.
#pragma once

#include <cstddef>
#include <string>

#include "tests/support/file_calls.h"

namespace zorvel {

enum class FaultKind {
    inputOutput,  // any call reports an error of the disk, having done nothing
    tornWrite,    // a write reports one, having written half
    diskFull,     // a write finds no room, having written half
};

class FaultPlan : public CallListener {
  public:
    // Counts from 1. Faults struck before are forgotten.
    void failCall(FaultKind kind, std::size_t call, bool lasting);
    // No call fails any more; counting goes on.
    void heal();

    [[nodiscard]] bool struck() const { return !struck_.empty(); }
    // The calls that failed, for messages.
    [[nodiscard]] const std::string& story() const { return struck_; }

    Verdict before(const FileCall& call) override;

  private:
    [[nodiscard]] bool counts(const FileCall& call) const;
    [[nodiscard]] int codeFor(const FileCall& call) const;

    FaultKind kind_ = FaultKind::inputOutput;
    std::size_t call_ = 0;  // 0: none fails
    bool lasting_ = false;
    std::size_t counted_ = 0;
    std::string struck_;
};

}  // namespace zorvel
