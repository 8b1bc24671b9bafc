// How the process starts and ends: its command line, zorvel [FILE]..., and the signals SIGTERM,
// SIGINT and SIGHUP. Main thread.
#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace zorvel {

// Turns the first signal into a call on the main thread; a second one of the same kind ends the
// process at once. At most one object at a time.
class EndSignals : public QObject {
    Q_OBJECT
  public:
    // Calls end() at the first signal. A signal that is ignored at the start stays ignored.
    explicit EndSignals(std::function<void()> end);
    ~EndSignals() override;

    // 0 if there was none.
    [[nodiscard]] int received() const { return received_; }

  private:
    void receive();

    std::function<void()> end_;
    int received_ = 0;
};

// Ends the process by that signal, so that its parent sees it.
[[noreturn]] void endBySignal(int signal);

// Text to print instead of opening windows, and the exit status. If that is not 0, the text is for
// standard error.
struct CommandLineAnswer {
    QString text;
    int status = 0;
};

// arguments: without the program's name. Answers --help, --version and unknown options; after "--"
// everything is a file.
std::optional<CommandLineAnswer> answerCommandLine(const QStringList& arguments);

// The files among the arguments, in order.
QStringList filesOf(const QStringList& arguments);

}  // namespace zorvel
