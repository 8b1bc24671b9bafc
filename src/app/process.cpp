#include "app/process.h"

#include <fcntl.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <utility>

namespace zorvel {

namespace {

constexpr std::array endSignals{SIGTERM, SIGINT, SIGHUP};

// The handler may only write; the event loop reads the other end.
std::array<int, 2> signalPipe{-1, -1};

void handleEndSignal(int signal) {
    const int error = errno;
    const auto byte = static_cast<unsigned char>(signal);
    if (::write(signalPipe[1], &byte, 1) != 1) _exit(128 + signal);
    errno = error;
}

void setHandler(int signal, void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART | SA_RESETHAND;
    ::sigaction(signal, &action, nullptr);
}

bool isIgnored(int signal) {
    struct sigaction action {};
    ::sigaction(signal, nullptr, &action);
    return action.sa_handler == SIG_IGN;
}

}  // namespace

EndSignals::EndSignals(std::function<void()> end) : end_(std::move(end)) {
    if (::pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) return;
    auto* notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, &EndSignals::receive);
    for (const int signal : endSignals) {
        if (!isIgnored(signal)) setHandler(signal, handleEndSignal);
    }
}

// The pipe stays open: another thread may be handling a signal.
EndSignals::~EndSignals() {
    for (const int signal : endSignals) {
        if (!isIgnored(signal)) setHandler(signal, SIG_DFL);
    }
}

void EndSignals::receive() {
    unsigned char byte = 0;
    if (::read(signalPipe[0], &byte, 1) != 1 || received_ != 0) return;
    received_ = byte;
    end_();
}

void endBySignal(int signal) {
    std::fflush(nullptr);
    setHandler(signal, SIG_DFL);
    ::raise(signal);
    _exit(128 + signal);
}

namespace {

const char usage[] =
    "Usage: zorvel [FILE]...\n"
    "Measure the diversity of biological samples.\n"
    "\n"
    "Each FILE is a project, a workbook (.xlsx or .ods), or a text file of counts: a\n"
    "census matrix, a single census, an abundance list, an export of the phone app,\n"
    "or another table. Without one, an empty project opens.\n"
    "\n"
    "  --help     print this help and exit\n"
    "  --version  print the version and exit\n";

}  // namespace

std::optional<CommandLineAnswer> answerCommandLine(const QStringList& arguments) {
    for (const QString& argument : arguments) {
        if (argument == "--") return std::nullopt;
        if (argument == "--help" || argument == "-h") return CommandLineAnswer{usage, 0};
        if (argument == "--version") return CommandLineAnswer{"zorvel " ZORVEL_VERSION "\n", 0};
        if (argument.startsWith('-')) {
            return CommandLineAnswer{
                QString("zorvel: unknown option %1\nTry zorvel --help.\n").arg(argument), 2};
        }
    }
    return std::nullopt;
}

QStringList filesOf(const QStringList& arguments) {
    QStringList files = arguments;
    files.removeOne("--");
    return files;
}

}  // namespace zorvel
