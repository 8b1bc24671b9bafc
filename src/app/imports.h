// The commands that import text files into a project, or names of species for completion, and their
// messages. Main thread; files are read and parsed in the background.
#pragma once

#include <QPointer>
#include <QString>
#include <functional>
#include <string>
#include <vector>

#include "app/file_kinds.h"
#include "interchange/file_kind.h"
#include "model/import.h"

namespace zorvel {

class Document;
class MainWindowController;
class ProjectWindows;

// The window that a command was given in; null if it was given without one.
struct CommandWindow {
    explicit CommandWindow(MainWindowController* asked) : given(asked != nullptr), window(asked) {}
    // It was closed since.
    [[nodiscard]] bool isGone() const;

    bool given;
    QPointer<MainWindowController> window;
};

// A text file that was read for a command.
struct OpenedText {
    QString path;
    std::string text;          // UTF-8; empty if there is none
    bool isCancelled = false;  // by the user, at the question or later
};

// The project of the window, or a new one in its own window if the command was given without one.
// Null if the window was closed.
Document* currentOrNewDocument(ProjectWindows& windows, const CommandWindow& command);

// Asks for a file, and imports it as one of that kind.
void runImport(ProjectWindows& windows, MainWindowController* window, FileKind kind);

// Imports the files one after the other, in their order; the user looks at each table first. After
// a file that cannot be read or imported the next one follows. Cancelling stops, and a message
// names the files that were left. parent: of the message and of the windows for tables, may be
// null.
void importFiles(ProjectWindows& windows, const CommandWindow& command,
                 const std::vector<KnownFile>& files, MainWindowController* parent);

// In the background; the message strip of the project's window shows the result. Closing the window
// cancels the import; otherwise ended is called.
void importInto(
    Document& document, ProjectWindows& windows, FileKind kind, OpenedText text,
    std::function<void(bool cancelled)> ended = [](bool) {});

// What an import into the project needs of the program: jobs, which end with its window. ended: see
// ImportServices::done.
ImportServices importServices(Document& document, ProjectWindows& windows,
                              std::function<void(const ImportReport&)> ended);
// In the message strip: what was stored and left out, or why nothing was.
void tellOfImport(Document& document, const QString& fileName, const ImportReport& report);

// What a format leaves out by its rules and the user would miss, in sentences; empty if nothing.
// Absent taxa are not missed, unless all are. taxa: whether any census has one.
QString leftOutNote(const QString& fileName, const LeftOut& leftOut, bool taxa);

// Asks for a file, and adds its names to the completion of species names in that window, until the
// window is closed, whatever project it shows. The strip says how many were new. Nothing is said if
// cancelled. Does nothing without a window.
void importSpeciesList(ProjectWindows& windows, MainWindowController* window);

}  // namespace zorvel
