// Files that are read as text. Messages are parts of sentences, to follow the file's name. Any
// thread, one at a time.
#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include "base/files.h"

namespace zorvel {

// A file that is opened once: first its beginning is read, which tells what kind of file it is,
// then the rest.
class InputFile {
  public:
    // A regular file. Pipes and devices are refused without being opened, since reading them might
    // never end.
    static Result<InputFile> open(const std::string& path);
    // The same, but also a pipe or a terminal, and standard input for "-". Devices that may never
    // end are refused.
    static Result<InputFile> openAny(const std::string& path);

    // What was read so far.
    [[nodiscard]] const std::string& start() const { return bytes_; }
    // Reads on until start() has that size or the file ends. A file that cannot be read ends too:
    // bytes() says why.
    void readStart(std::size_t size);
    // True if start() is the whole file, which is then closed.
    [[nodiscard]] bool atEnd() const { return atEnd_; }

    // Puts up to size bytes at the place and returns their number: from the beginning of the file
    // on, of which start() then holds nothing any more; 0 at the end or where problem() says why.
    std::size_t read(char* bytes, std::size_t size);
    [[nodiscard]] std::optional<Problem> problem() const;

    // All of it, or why it cannot be read; nothing is left to read afterwards.
    Result<std::string> bytes() &&;
    // The same as text, see decodeText().
    Result<std::string> text() &&;

    // The open file, to be read from any place; none at its end.
    OpenFile file() && { return std::move(file_); }

    // As at the opening.
    [[nodiscard]] const struct stat& status() const { return status_; }

  private:
    InputFile(OpenFile file, const struct stat& status) : file_(std::move(file)), status_(status) {}
    static Result<InputFile> made(OpenFile file);
    void readOn(std::size_t size, std::size_t& used);
    std::size_t readNext(char* bytes, std::size_t size);
    void end(int error);

    OpenFile file_;
    struct stat status_;
    std::string bytes_;
    std::size_t given_ = 0;  // of the start
    bool atEnd_ = false;
    int error_ = 0;
};

// The text of a file's bytes: a UTF-8 byte-order mark is dropped; anything that is not UTF-8 is
// refused with a message that names the encoding it seems to be (UTF-16, UTF-32, Latin-1 or
// Windows-1252, or none: binary) and the place of the first byte at fault: its offset from 0, its
// line from 1. Text of which a quarter or more is NUL bytes is not taken for UTF-8.
Result<std::string> decodeText(std::string bytes);

}  // namespace zorvel
