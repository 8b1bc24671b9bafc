// Asks for a text file and reads it, for whatever is made of texts: imports, the species list. Main
// thread; the file itself is read in the background.
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

// Called once: at once or later, or never where the program ends before.
using TextReceiver = std::function<void(std::optional<OpenedText> text)>;

// Asks for one text file. Nothing comes of it where the user cancelled, where the file could not be
// read, of which an alert tells, or where it is empty. window: to stand over, and to show that a
// file is being read; may be null, and may have closed when the text comes. title: what is chosen.
// cancelled: called instead where the user gives it up; without it that is a file of which nothing
// comes.
void openTextFile(ProjectWindows& windows, MainWindowController* window, const QString& title,
                  TextReceiver receive, std::function<void()> cancelled = {});

// The same without a question, for a file that was opened to tell its kind.
void readTextInBackground(ProjectWindows& windows, MainWindowController* window,
                          const std::shared_ptr<NamedFile>& file, TextReceiver receive,
                          std::function<void()> cancelled = {});

}  // namespace zorvel
