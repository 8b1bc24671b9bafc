#include "app/command_line.h"

namespace zorvel {

namespace {

const char usage[] =
    "Usage: zorvel [FILE]...\n"
    "Measure the diversity of biological samples.\n"
    "\n"
    "Each FILE is a project, or a text file of counts: a census matrix, a single\n"
    "census, an abundance list, or an export of the phone app. Without one, an empty\n"
    "project opens.\n"
    "\n"
    "  --help     print this help and exit\n"
    "  --version  print the version and exit\n";

}  // namespace

std::optional<CommandLineAnswer> answerCommandLine(const QStringList& arguments) {
    for (const QString& argument : arguments) {
        if (argument == "--") return std::nullopt;
        if (argument == "--help" || argument == "-h") return CommandLineAnswer{usage, 0};
        if (argument == "--version") return CommandLineAnswer{versionText() + '\n', 0};
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

QString versionText() {
    return "zorvel " ZORVEL_VERSION;
}

}  // namespace zorvel
