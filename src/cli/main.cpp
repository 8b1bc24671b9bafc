// The command-line tool: reads a file, runs one command on it, writes its result; or imports files
// into a project.
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <exception>
#include <new>
#include <stdexcept>

#include "cli/call.h"

namespace zorvel::cli {
namespace {

// Otherwise a file could get the descriptor of a standard stream that the caller has closed.
void occupyStandardStreams() {
    int descriptor = 0;
    do {
        descriptor = open("/dev/null", O_RDONLY);
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor > STDERR_FILENO) close(descriptor);
}

ExitCode end(Output& output) {
    const std::optional<Problem> problem = output.finish();
    if (!problem) return ExitCode::success;
    // A reader that has closed its pipe needs no message.
    if (problem->systemError != EPIPE) tell(problem->message);
    return ExitCode::failure;
}

ExitCode answer(const Reply& reply) {
    if (reply.code == ExitCode::success) {
        Output output(std::nullopt);
        output.write(reply.text);
        return end(output);
    }
    tell(reply.text);
    tell(reply.hint);
    return reply.code;
}

ExitCode run(const Call& call) {
    tellConsoleLines("zorvel-cli: ");
    if (call.command->import) {
        return call.command->import(call) ? ExitCode::success : ExitCode::failure;
    }
    Output output(call.output);
    if (output.failed()) return end(output);
    // Never freed: that takes time for millions of records, and the process ends anyway.
    static auto& project = *new std::optional<Project>(loadProject(call.files.front(), call));
    if (!project) return ExitCode::failure;
    if (const auto problem = call.command->run(call, *project, output)) {
        tellAt(project->file, {}, problem->message);
        return ExitCode::failure;
    }
    return end(output);
}

ExitCode main(int argc, const char* const* argv) {
    occupyStandardStreams();
    std::signal(SIGPIPE, SIG_IGN);
    try {
        const std::variant<Call, Reply> read = readCall(argc, argv);
        if (const auto* reply = std::get_if<Reply>(&read)) return answer(*reply);
        return run(std::get<Call>(read));
    } catch (const std::bad_alloc&) {
        tell("zorvel-cli: there is not enough memory for this");
    } catch (const std::length_error&) {
        tell("zorvel-cli: there is not enough memory for this");
    } catch (const std::exception& error) {
        tell(std::string("zorvel-cli: ") + error.what());
    }
    return ExitCode::failure;
}

}  // namespace
}  // namespace zorvel::cli

int main(int argc, char** argv) {
    return static_cast<int>(zorvel::cli::main(argc, argv));
}
