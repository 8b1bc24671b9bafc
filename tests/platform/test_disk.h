// A disk below SQLite that a test makes fail, hang or seem in use, from the main thread while the
// writing thread uses it.
#pragma once

#include <QString>
#include <condition_variable>
#include <mutex>
#include <string>

#include "tests/support/file_calls.h"
#include "tests/support/vfs_layer.h"

namespace zorvel {

class TestDisk : public CallListener {
  public:
    // SQLite's codes.
    static constexpr int busy = 5;
    static constexpr int inputOutput = 10;
    static constexpr int full = 13;

    [[nodiscard]] const char* name() const { return layer_.name(); }

    // Every call that writes fails from now on, to files whose path begins so; 0: none.
    void failWrites(int code, const QString& pathStart = {}) {
        const std::lock_guard lock(mutex_);
        writeCode_ = code;
        pathStart_ = pathStart.toStdString();
    }
    // That many of the next requests for a lock find the file in use.
    void seemBusy(int times) {
        const std::lock_guard lock(mutex_);
        busyTimes_ = times;
    }
    // Calls that touch files whose path begins so wait.
    void setHanging(bool hanging, const QString& pathStart = {}) {
        const std::lock_guard lock(mutex_);
        hanging_ = hanging;
        hangingStart_ = pathStart.toStdString();
        changed_.notify_all();
    }

    Verdict before(const FileCall& call) override {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return !hanging_ || call.path.rfind(hangingStart_, 0) != 0; });
        if (call.kind == CallKind::lock && busyTimes_ > 0) {
            --busyTimes_;
            return {busy, 0};
        }
        const bool fails = call.kind == CallKind::write && call.path.rfind(pathStart_, 0) == 0;
        return {fails ? writeCode_ : 0, 0};
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    int writeCode_ = 0;
    int busyTimes_ = 0;
    std::string pathStart_;
    bool hanging_ = false;
    std::string hangingStart_;
    VfsLayer layer_{*this};
};

}  // namespace zorvel
