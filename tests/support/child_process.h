// Runs a part of a test in a process of its own: with less permission than the test has, or as
// another program that uses the same file.
#pragma once

#include <grp.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <functional>
#include <string>

namespace zorvel {

constexpr unsigned idOfNobody = 65534;

// A child that reports a word and waits until it is released.
class ChildProcess {
  public:
    // The child runs work, which returns its word. As nobody: if the test runs as root,
    // which may do everything, the child is a user without rights.
    explicit ChildProcess(const std::function<std::string()>& work, bool asNobody = false) {
        if (pipe(word_.data()) != 0 || pipe(leave_.data()) != 0) return;
        child_ = fork();
        if (child_ != 0) return;
        const bool lowered =
            !asNobody || getuid() != 0 ||
            (setgroups(0, nullptr) == 0 && setgid(idOfNobody) == 0 && setuid(idOfNobody) == 0);
        const std::string said = lowered ? work() : "cannot give up the rights of root";
        close(leave_[1]);
        if (write(word_[1], said.data(), said.size()) < 0) _exit(1);
        close(word_[1]);
        close(word_[0]);
        char none = 0;
        static_cast<void>(!read(leave_[0], &none, 1));
        _exit(0);
    }
    ~ChildProcess() { release(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // Waits for it. Once.
    std::string word() {
        closeEnd(word_[1]);
        std::string said;
        std::array<char, 512> part{};
        for (ssize_t size = 0; (size = read(word_[0], part.data(), part.size())) > 0;) {
            said.append(part.data(), static_cast<std::size_t>(size));
        }
        return said;
    }
    // The child ends without running the exit handlers of its parent.
    void release() {
        for (int& end : leave_) closeEnd(end);
        for (int& end : word_) closeEnd(end);
        if (child_ > 0) waitpid(child_, nullptr, 0);
        child_ = -1;
    }

  private:
    static void closeEnd(int& descriptor) {
        if (descriptor >= 0) close(descriptor);
        descriptor = -1;
    }

    std::array<int, 2> word_{-1, -1};
    std::array<int, 2> leave_{-1, -1};
    pid_t child_ = -1;
};

}  // namespace zorvel
