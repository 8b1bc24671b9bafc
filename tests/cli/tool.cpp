#include "tool.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace zorvel::test {
namespace {

[[noreturn]] void become(const std::vector<std::string>& command, const Surroundings& surroundings,
                         const TemporaryFolder& streams) {
    constexpr int writing = O_WRONLY | O_CREAT | O_TRUNC;
    dup2(open(streams.file("in").c_str(), O_RDONLY), STDIN_FILENO);
    dup2(open(streams.file("out").c_str(), writing, 0600), STDOUT_FILENO);
    dup2(open(streams.file("err").c_str(), writing, 0600), STDERR_FILENO);
    for (const std::string& variable : surroundings.environment) {
        putenv(const_cast<char*>(variable.c_str()));
    }
    const std::string& folder = surroundings.folder.empty() ? dataFolder : surroundings.folder;
    std::vector<char*> arguments;
    for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    if (chdir(folder.c_str()) == 0) execvp(arguments[0], arguments.data());
    _exit(127);
}

}  // namespace

Ran runProgram(const std::vector<std::string>& command, const Surroundings& surroundings) {
    const TemporaryFolder streams;
    writeBytes(streams.file("in"), surroundings.input);
    const pid_t child = fork();
    if (child == 0) become(command, surroundings, streams);
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status),
            readBytes(streams.file("out")), readBytes(streams.file("err"))};
}

Ran runTool(std::vector<std::string> arguments, const Surroundings& surroundings) {
    arguments.insert(arguments.begin(), ZORVEL_CLI);
    return runProgram(arguments, surroundings);
}

TemporaryFolder::TemporaryFolder()
    : path_((std::filesystem::temp_directory_path() / "zorvel-cli-XXXXXX").string()) {
    EXPECT_NE(mkdtemp(path_.data()), nullptr);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::vector<std::string> TemporaryFolder::names() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

void writeBytes(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string readBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace zorvel::test
