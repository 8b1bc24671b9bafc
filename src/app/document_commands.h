// The commands of the File menu that act on one project: save, save as, revert. Each asks what it
// has to ask. Main thread.
#pragma once

#include <functional>

#include "ui/kit/panels.h"

class QWidget;

namespace zorvel {

class Document;
class MainWindowController;

// Asks for a path and saves the document there, in place of a file only where the person says so; a
// warning tells of a failure. saved: whether it was, called once, at once or later. window: to
// stand over, may be null.
void saveDocumentAs(
    Document& document, QWidget* window, const Panels& panels,
    std::function<void(bool saved)> saved = [](bool) {});

// At once; an untitled one is saved as.
void saveDocument(MainWindowController& window, const Panels& panels);

void saveWindowAs(MainWindowController& window, const Panels& panels);

void revertToOpening(MainWindowController& window, const Panels& panels);

}  // namespace zorvel
