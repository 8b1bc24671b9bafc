// Runs the command-line tool as a process of its own.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace zorvel::test {

inline const std::string dataFolder = ZORVEL_SOURCE_DIR "/tests/data/cli/";

struct Ran {
    int exitCode = -1;  // 128 + the signal that ended it
    std::string out;
    std::string err;
};

inline std::string textOf(std::FILE* file) {
    std::string text;
    std::rewind(file);
    for (int byte = 0; (byte = std::fgetc(file)) != EOF;) text += static_cast<char>(byte);
    std::fclose(file);
    return text;
}

// In the folder of the test data, with one more variable, "NAME=VALUE", in the environment.
inline Ran runTool(std::vector<std::string> arguments, std::string variable = "") {
    arguments.insert(arguments.begin(), ZORVEL_CLI);
    std::vector<char*> argv;
    for (std::string& argument : arguments) argv.push_back(argument.data());
    argv.push_back(nullptr);
    std::FILE* const out = std::tmpfile();
    std::FILE* const err = std::tmpfile();
    const pid_t child = fork();
    if (child == 0) {
        dup2(fileno(out), STDOUT_FILENO);
        dup2(fileno(err), STDERR_FILENO);
        if (!variable.empty()) putenv(variable.data());
        if (chdir(dataFolder.c_str()) == 0) execv(ZORVEL_CLI, argv.data());
        _exit(127);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), textOf(out),
            textOf(err)};
}

}  // namespace zorvel::test
