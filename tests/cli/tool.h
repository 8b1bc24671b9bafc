// Runs the command-line tool, or another program, as a process of its own.
#pragma once

#include <string>
#include <vector>

namespace zorvel::test {

struct Ran {
    int exitCode = -1;  // 128 + the signal where one ended it
    std::string out;
    std::string err;
};

struct Surroundings {
    std::string input;                     // standard input
    std::vector<std::string> environment;  // "NAME=VALUE", added to that of the tests
    std::string folder;                    // the working folder; empty: tests/data/cli
};

Ran runProgram(const std::vector<std::string>& command, const Surroundings& surroundings = {});

// The tool with these arguments.
Ran runTool(std::vector<std::string> arguments, const Surroundings& surroundings = {});

// A folder that is gone, with what it holds, at the end of the test.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }
    [[nodiscard]] std::string file(const std::string& name) const { return path_ + "/" + name; }
    // Of all that it holds, in order.
    [[nodiscard]] std::vector<std::string> names() const;

  private:
    std::string path_;
};

void writeBytes(const std::string& path, const std::string& bytes);
std::string readBytes(const std::string& path);

inline const std::string dataFolder = ZORVEL_SOURCE_DIR "/tests/data/cli/";
inline const std::string mitesFile = ZORVEL_SOURCE_DIR "/examples/oribatid-mites.csv";

}  // namespace zorvel::test
