// The commands that import text files into a project, and what they tell the person. Main thread.
#pragma once

#include <QPointer>
#include <functional>
#include <vector>

#include "app/file_kinds.h"
#include "app/open_text_file.h"
#include "interchange/file_kind.h"

namespace zorvel {

class Document;
class MainWindowController;
class ProjectWindows;

// The window that a command was given in; null where it was given without one.
struct CommandWindow {
    explicit CommandWindow(MainWindowController* asked) : given(asked != nullptr), window(asked) {}
    // Closed since.
    [[nodiscard]] bool isGone() const;

    bool given;
    QPointer<MainWindowController> window;
};

// The project of the window, or a new one in a window of its own where the command was given
// without one. Null where the window is gone.
Document* currentOrNewDocument(ProjectWindows& windows, const CommandWindow& command);

// Asks for a file, and imports it as one of that kind.
void runImport(ProjectWindows& windows, MainWindowController* window, FileKind kind);

// Imports the files one after the other, in their order. A file that cannot be read or imported
// does not keep the others out; cancelling does.
void importFiles(ProjectWindows& windows, const CommandWindow& command,
                 const std::vector<KnownFile>& files);

// In the background; the message strip of the project's window tells what came of it. The import is
// given up where the window closes; otherwise ended is called.
void importInto(
    Document& document, ProjectWindows& windows, FileKind kind, OpenedText text,
    std::function<void(bool cancelled)> ended = [](bool) {});

// What a format leaves out by its rules and the user would miss, in sentences; empty if nothing.
// Absent taxa are not missed, unless all are. taxa: whether any census has one.
QString leftOutNote(const QString& fileName, const LeftOut& leftOut, bool taxa);

}  // namespace zorvel
