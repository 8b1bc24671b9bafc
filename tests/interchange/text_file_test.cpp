#include "interchange/text_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <thread>
#include <vector>

#include "interchange/file_kind.h"
#include "tests/support/scratch_folder.h"

namespace zorvel {
namespace {

using namespace std::string_literals;

// ASCII text in code units of that many bytes.
std::string widened(const std::string& text, std::size_t size, bool littleEndian) {
    std::string bytes;
    for (const char c : text) {
        std::string unit(size, '\0');
        unit[littleEndian ? 0 : size - 1] = c;
        bytes += unit;
    }
    return bytes;
}

TEST(DecodeText, Utf8Passes) {
    const std::vector<std::pair<std::string, std::string>> rows = {
        {"", ""},
        {"\xEF\xBB\xBF", ""},
        {"\xEF\xBB\xBF , Abies\n", " , Abies\n"},
        {"\xEF\xBB\xBF\xEF\xBB\xBF,", "\xEF\xBB\xBF,"},
        {"\r\nSka\u030Ane \U0001F332", "\r\nSka\u030Ane \U0001F332"},
        {"3 5\0 7 and so on"s, "3 5\0 7 and so on"s},
    };
    for (const auto& [bytes, text] : rows) {
        const Result<std::string> decoded = decodeText(bytes);
        ASSERT_TRUE(decoded) << decoded.problem().message;
        EXPECT_EQ(decoded.value(), text);
    }
}

TEST(DecodeText, WhatIsNotUtf8IsNamedWithItsPlace) {
    const std::string table = " , Abies, Picea\nNorth,1,2\n";
    struct Row {
        std::string bytes;
        std::string seems;
        std::string byte;
    };
    const std::vector<Row> rows = {
        {"\xFF\xFE" + widened(table, 2, true), "UTF-16 text", "0xFF at offset 0, line 1"},
        {"\xFF\xFE\0\0"s + widened(table, 4, true), "UTF-32 text", "0xFF at offset 0, line 1"},
        {"\0\0\xFE\xFF"s + widened(table, 4, false), "UTF-32 text", "0x00 at offset 0, line 1"},
        {widened(table, 2, true), "UTF-16 text", "0x00 at offset 1, line 1"},
        {widened(table, 4, true), "UTF-32 text", "0x00 at offset 1, line 1"},
        {"name\r\ncaf\xE9\n", "Latin-1 (ISO 8859-1) text", "0xE9 at offset 9, line 2"},
        {"\u00E9\xE9\n", "Latin-1 (ISO 8859-1) text", "0xE9 at offset 2, line 1"},
        {"a\n\nit\x92s caf\xE9\n", "Windows-1252 text", "0x92 at offset 5, line 3"},
        {"caf\x8E\x81\n", "text in another 8-bit encoding", "0x8E at offset 3, line 1"},
        {"\u00E9\u00E8\u00EA\n\xC3", "damaged UTF-8 text", "0xC3 at offset 7, line 2"},
        {"\xEF\xBB\xBF"
         "a\n\xE9",
         "Latin-1 (ISO 8859-1) text", "0xE9 at offset 5, line 2"},
        {"\x89PNG\r\n\x1A\n\0\0"s, "binary data", "0x89 at offset 0, line 1"},
        {std::string(40, '\0'), "binary data", "0x00 at offset 0, line 1"},
        {"\xEF\xBB\xBF"
         "a\n\0\0bc"s,
         "binary data", "0x00 at offset 5, line 2"},
        {std::string(200'000, 'x') + "\n\xE9", "Latin-1 (ISO 8859-1) text",
         "0xE9 at offset 200001, line 2"},
    };
    for (const Row& row : rows) {
        const Result<std::string> decoded = decodeText(row.bytes);
        ASSERT_FALSE(decoded) << row.seems << " " << row.byte;
        EXPECT_EQ(decoded.problem().message, "not UTF-8 text: it seems to be " + row.seems +
                                                 " (byte " + row.byte +
                                                 "); save it as UTF-8 and try again");
    }
}

class InputFileTest : public ScratchFolder {
  protected:
    static Result<std::string> bytes(const std::string& path) {
        Result<InputFile> file = InputFile::openAny(path);
        return file ? std::move(file).value().bytes() : file.problem();
    }
    static Result<std::string> text(const std::string& path) {
        Result<InputFile> file = InputFile::open(path);
        return file ? std::move(file).value().text() : file.problem();
    }
};

TEST_F(InputFileTest, BytesComeBackWhateverWasReadBefore) {
    for (const std::size_t size : {0U, 1U, 65535U, 65536U, 65537U, 1'000'000U}) {
        std::string written(size, 'x');
        if (size > 0) written.back() = '\0';
        put("file", written);
        for (const std::size_t start : {0U, 16U, 65536U, 200'000U}) {
            InputFile file = InputFile::open(path("file")).value();
            file.readStart(start);
            EXPECT_EQ(file.start(), written.substr(0, start));
            EXPECT_TRUE(file.atEnd() || start <= size);
            const std::string read = std::move(file).bytes().value();
            EXPECT_EQ(read, written);
            EXPECT_LE(read.capacity(), size + 131072);
        }
    }
    // Its size is not known beforehand.
    EXPECT_NE(bytes("/proc/self/status").value().find("Pid:"), std::string::npos);
}

TEST_F(InputFileTest, StandardInput) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const std::string written(300'000, 'y');
    const int saved = dup(STDIN_FILENO);
    dup2(ends[0], STDIN_FILENO);
    close(ends[0]);
    std::thread writer([&] {
        std::string_view rest = written;
        while (!rest.empty()) {
            const ssize_t count = write(ends[1], rest.data(), rest.size());
            if (count > 0) rest.remove_prefix(static_cast<std::size_t>(count));
        }
        close(ends[1]);
    });
    const Result<std::string> read = bytes("-");
    writer.join();
    dup2(saved, STDIN_FILENO);
    close(saved);
    EXPECT_EQ(read.value(), written);
}

TEST_F(InputFileTest, ProblemsComeInTheWordsOfTheSystem) {
    const Result<std::string> missing = text(path("missing.csv"));
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.problem().message, "cannot be opened: No such file or directory");
    EXPECT_EQ(missing.problem().systemError, ENOENT);
    EXPECT_EQ(text(folder_).problem().message, "cannot be read: Is a directory");
    EXPECT_EQ(bytes(folder_).problem().message, "cannot be read: Is a directory");
    EXPECT_EQ(bytes("/dev/zero").problem().message, "cannot be read: it is a device");
    EXPECT_EQ(bytes("/dev/null").value(), "");
    // Without a writer, opening it in the usual way would block.
    ASSERT_EQ(mkfifo(path("pipe.csv").c_str(), 0600), 0);
    for (const std::string& file : {path("pipe.csv"), "/dev/null"s}) {
        EXPECT_EQ(text(file).problem().message,
                  "cannot be read: it is a pipe or a device, not a file");
    }
    put("latin.csv", "\xE9");
    EXPECT_FALSE(text(path("latin.csv")));
}

TEST(FileKind, IsGuessedFromTheText) {
    const std::string header = "\"N\",\"D\",\"O\",\"La\",\"Lo\",\"Abies\"";
    const std::string line = "\"North\",\"Mar 5, 2016 3:42 PM\",\"a, b\",1,2,4";
    struct Row {
        const char* what;
        std::string text;
        FileKind kind;
    };
    const std::vector<Row> rows = {
        {"empty", "", FileKind::matrix},
        {"list", "3 5\n7", FileKind::list},
        {"list with commas and signs", "+3,5,\r\n-7\t0\u2028", FileKind::list},
        {"a point is no list", "3 2.5", FileKind::matrix},
        {"census", "Abies alba,12\nPicea, 3\n", FileKind::census},
        {"census of one line", "Abies alba,+12", FileKind::census},
        {"quoted name", "\"Abies, alba\",5\n", FileKind::census},
        {"a header is no census line", "species,count\nAbies,12\n", FileKind::matrix},
        {"three cells", "Abies,1,2\n", FileKind::matrix},
        {"matrix", " , Abies, Picea\nNorth,3,0\n", FileKind::matrix},
        {"phone app", header + "\n" + line + "\n", FileKind::ios},
        {"phone app, header alone", header + "\n", FileKind::ios},
        {"phone app, a damaged line", header + "\n\"x\"," + line + "\n", FileKind::ios},
        {"quoted header of a matrix", header + "\nNorth,1,2,3,4,5\n", FileKind::matrix},
        {"quoted names of a matrix", header + "\n\"North\",1,2,3,4,5\n", FileKind::matrix},
        {"all quoted", header + "\n\"North\",\"1\",\"2\",\"3\",\"4\",\"5\"\n", FileKind::matrix},
        {"short quoted header", "\"a\",\"b\",\"c\"\n\"d\",1,2\n", FileKind::matrix},
    };
    for (const Row& row : rows) EXPECT_EQ(guessFileKind(row.text), row.kind) << row.what;
}

}  // namespace
}  // namespace zorvel
