#include "cli/output.h"

#include <cmath>
#include <utility>

#include "base/console.h"
#include "base/files.h"
#include "base/numbers.h"
#include "base/text.h"
#include "store/project_file.h"

namespace zorvel::cli {
namespace {

constexpr std::size_t chunkSize = std::size_t{1} << 16;

// As a project or a file that SQLite keeps beside one.
bool isNamedAsProject(std::string_view path) {
    for (const std::string_view ending : {"-journal", "-wal", "-shm"}) {
        if (path.ends_with(ending)) path.remove_suffix(ending.size());
    }
    return path.ends_with(".zorvel");
}

bool holdsProject(const std::string& path) {
    const Result<OpenFile> file = openRegularFile(path);
    const auto start = file ? readBytes(file.value().descriptor(), 16) : file.problem();
    return start && startsLikeProject(start.value());
}

// By its content or its name, also at the end of symbolic links.
bool isProject(const std::string& path) {
    const Result<std::string> end = resolvedPath(path);
    return isNamedAsProject(path) || (end && isNamedAsProject(end.value())) || holdsProject(path);
}

}  // namespace

Output::Output(std::optional<std::string> path)
    : path_(std::move(path).value_or("-")), streams_(path_ == "-") {
    if (streams_) {
        path_ = "/dev/stdout";
    } else if (isProject(path_)) {
        problem_ = Problem{path_ +
                           ": is a project or named like one, and a result would replace it: give "
                           "--output another name"};
    }
}

void Output::write(std::string_view text) {
    if (failed()) return;
    pending_ += text;
    if (!streams_ || pending_.size() < chunkSize) return;
    sendPending();
}

void Output::write(const ByteProducer& produce) {
    if (!failed()) send(produce);
    produced_ = true;
}

void Output::send(const ByteProducer& produce) {
    problem_ = writeFileWhole(path_, produce);
    if (problem_) problem_->message = (streams_ ? "<stdout>" : path_) + ": " + problem_->message;
}

void Output::sendPending() {
    send([this](const ByteSink& sink) { sink(pending_); });
    pending_.clear();
}

std::optional<Problem> Output::finish() {
    const bool owed = !pending_.empty() || (!streams_ && !produced_);
    if (owed && !failed()) sendPending();
    return problem_;
}

void JsonWriter::begin(char bracket) {
    separate();
    output_.write(bracket);
    ++depth_;
    first_ = true;
}

void JsonWriter::end(char bracket) {
    if (--depth_ == 0 && !first_) output_.write('\n');
    output_.write(bracket);
    if (depth_ == 0) output_.write('\n');
    first_ = false;
}

void JsonWriter::separate() {
    if (!afterKey_ && depth_ > 0) {
        if (!first_) output_.write(depth_ == 1 ? "," : ", ");
        if (depth_ == 1) output_.write("\n  ");
    }
    afterKey_ = false;
    first_ = false;
}

void JsonWriter::scalar(std::string_view text) {
    separate();
    output_.write(text);
}

void JsonWriter::quote(std::string_view text) {
    constexpr std::string_view named = "\"\\\n\r\t";
    constexpr std::string_view letters = "\"\\nrt";
    constexpr std::string_view digits = "0123456789abcdef";
    std::string quoted = "\"";
    for (const char byte : text) {
        const auto code = static_cast<unsigned char>(byte);
        if (const std::size_t at = named.find(byte); at != std::string_view::npos) {
            quoted += '\\';
            quoted += letters[at];
        } else if (code < 0x20) {
            quoted += "\\u00";
            quoted += digits[code >> 4];
            quoted += digits[code & 15];
        } else {
            quoted += byte;
        }
    }
    output_.write(quoted + '"');
}

void JsonWriter::key(std::string_view name) {
    separate();
    quote(name);
    output_.write(": ");
    afterKey_ = true;
}

void JsonWriter::value(std::string_view text) {
    separate();
    quote(text);
}

void JsonWriter::value(double number) {
    scalar(std::isfinite(number) ? shortestText(number) : "null");
}

void JsonWriter::value(std::int64_t number) {
    scalar(integerText(number));
}

void tell(std::string_view message) {
    // There is nowhere left to report a failure.
    static_cast<void>(writeFileWhole("/dev/stderr", terminalLine(message) + "\n"));
}

void tellAt(std::string_view file, TextPlace place, std::string_view message) {
    std::string line(file);
    for (const std::size_t number : {place.line, place.cell}) {
        if (number == 0) break;
        line += ':' + integerText(static_cast<std::int64_t>(number));
    }
    line += ": ";
    line += message;
    tell(line);
}

std::string shownFile(const std::string& file) {
    return file == "-" ? "<stdin>" : file;
}

void tellConsoleLines(std::string prefix) {
    setConsoleSink(
        [prefix = std::move(prefix)](std::string_view line) { tell(prefix + std::string(line)); });
}

}  // namespace zorvel::cli
