// SIGTERM, SIGINT and SIGHUP, by which a system, a terminal or a user ends a program, as a call on
// the main thread. A second signal of the same kind ends the process at once. At most one at a
// time. Main thread.
#pragma once

#include <QObject>
#include <functional>

namespace zorvel {

class EndSignals : public QObject {
    Q_OBJECT
  public:
    // Calls end() at the first signal. A signal that the process was started to ignore stays
    // ignored.
    explicit EndSignals(std::function<void()> end);
    ~EndSignals() override;

    // 0 where there was none.
    [[nodiscard]] int received() const { return received_; }

  private:
    void receive();

    std::function<void()> end_;
    int received_ = 0;
};

// Ends the process by that signal, so that whoever started it learns of it.
[[noreturn]] void endBySignal(int signal);

}  // namespace zorvel
