// The commands of the File menu that act on one project: save, save as, revert. Main thread.
#pragma once

#include <functional>

#include "ui/kit/panels.h"

class QWidget;

namespace zorvel {

class Document;
class MainWindowController;

// Asks for a path and saves the document there; asks before it replaces a file, and warns of a
// failure. saved: called once, at once or later. window: parent of the questions, may be null.
void saveDocumentAs(
    Document& document, QWidget* window, const Panels& panels,
    std::function<void(bool saved)> saved = [](bool) {});

// At once; for an untitled project this is Save As.
void saveDocument(MainWindowController& window, const Panels& panels);

void saveWindowAs(MainWindowController& window, const Panels& panels);

void revertToOpening(MainWindowController& window, const Panels& panels);

}  // namespace zorvel
