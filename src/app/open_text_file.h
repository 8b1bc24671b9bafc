// Asks for a text file and reads it, for imports and the species list. Main thread; the file is
// read in the background.
#pragma once

#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace zorvel {

class MainWindowController;
class ProjectWindows;
struct NamedFile;

struct OpenedText {
    QString path;
    std::string text;  // UTF-8, not empty
};

// Called once, at once or later; never if the program ends first.
using TextReceiver = std::function<void(std::optional<OpenedText> text)>;

// Asks for one text file. receive gets no text if the file is empty or cannot be read, which the
// window says, or if the user cancels; if there is a cancelled(), that is called then instead.
// window: parent of the panel, shows the progress; may be null, and may be closed when the text
// arrives. title: what is chosen.
void openTextFile(ProjectWindows& windows, MainWindowController* window, const QString& title,
                  TextReceiver receive, std::function<void()> cancelled = {});

// The same without a question, for a file that was opened to tell its kind.
void readTextInBackground(ProjectWindows& windows, MainWindowController* window,
                          const std::shared_ptr<NamedFile>& file, TextReceiver receive,
                          std::function<void()> cancelled = {});

}  // namespace zorvel
