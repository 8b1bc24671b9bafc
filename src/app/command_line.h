// The command line of the desktop program: zorvel [FILE]...
#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace zorvel {

// What to do instead of opening windows: text to print, and the exit status. A status other than 0
// goes with a text for standard error.
struct CommandLineAnswer {
    QString text;
    int status = 0;
};

// arguments: without the program's name. Answers --help and --version, and options that there are
// not; after "--" everything is a file.
std::optional<CommandLineAnswer> answerCommandLine(const QStringList& arguments);

// The files among the arguments, in order.
QStringList filesOf(const QStringList& arguments);

QString versionText();

}  // namespace zorvel
