// Asks for a text file and reads it, for imports and the species list. Main thread; the file is
// read in the background.
#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <string>

namespace zorvel {

class MainWindowController;
class ProjectWindows;
struct NamedFile;

struct OpenedText {
    QString path;
    std::string text;          // UTF-8; empty if there is none
    bool isCancelled = false;  // by the user, at the question or later
};

// Called once, at once or later; never if the program ends first. There is no text if the user
// cancels, or if the file is empty or cannot be read, which the window says.
using TextReceiver = std::function<void(OpenedText opened)>;

// Asks for one text file. window: parent of the panel, shows the progress; may be null, and may be
// closed when the text arrives. title: what is chosen.
void openTextFile(ProjectWindows& windows, MainWindowController* window, const QString& title,
                  TextReceiver receive);

// The same without a question. file: opened to tell its kind; null if the path is still to be
// opened.
void readTextInBackground(ProjectWindows& windows, MainWindowController* window,
                          const QString& path, std::shared_ptr<NamedFile> file,
                          TextReceiver receive);

}  // namespace zorvel
