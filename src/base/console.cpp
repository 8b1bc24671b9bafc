#include "base/console.h"

#include <cstdio>
#include <mutex>
#include <utility>

#include "base/text.h"

namespace zorvel {
namespace {

struct Console {
    std::mutex mutex;
    ConsoleSink sink;
};

thread_local HeldConsoleLines* held = nullptr;

Console& console() {
    static Console instance;
    return instance;
}

void emit(const ConsoleSink& sink, std::string_view line) {
    if (sink) {
        sink(line);
        return;
    }
    const std::string shown = terminalLine(line) + '\n';
    std::fwrite(shown.data(), 1, shown.size(), stdout);
    std::fflush(stdout);
}

}  // namespace

void setConsoleSink(ConsoleSink sink) {
    const std::scoped_lock lock(console().mutex);
    console().sink = std::move(sink);
}

HeldConsoleLines::HeldConsoleLines() : outer_(std::exchange(held, this)) {}

HeldConsoleLines::~HeldConsoleLines() {
    held = outer_;
}

void writeConsoleLine(std::string_view line) {
    writeConsoleLines({std::string(line)});
}

void writeConsoleLines(const std::vector<std::string>& lines) {
    if (held != nullptr) {
        held->lines_.insert(held->lines_.end(), lines.begin(), lines.end());
        return;
    }
    const std::scoped_lock lock(console().mutex);
    for (const std::string& line : lines) emit(console().sink, line);
}

}  // namespace zorvel
