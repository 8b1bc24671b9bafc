// The commands of the File menu that act on one project: save, save as, revert, browse backups.
// Main thread.
#pragma once

#include <QString>
#include <functional>

#include "ui/kit/panels.h"

class QDialog;
class QWidget;

namespace zorvel {

class Document;
class JobQueue;
class MainWindowController;
class ProjectWindows;

// Asks for a path and saves the document there; asks before it replaces a file, and warns of a
// failure. saved: called once, at once or later. window: parent of the questions, may be null.
void saveDocumentAs(
    Document& document, QWidget* window, const Panels& panels,
    std::function<void(bool saved)> saved = [](bool) {});

// At once; for an untitled project this is Save As.
void saveDocument(MainWindowController& window, const Panels& panels);

void saveWindowAs(MainWindowController& window, const Panels& panels);

void revertToOpening(MainWindowController& window, const Panels& panels);

// Shows the backups that the project has now, newest first. Any can be opened as an untitled copy;
// none is changed.
void browseBackups(MainWindowController& window, ProjectWindows& windows);
// The same of the backups in a folder. open: with the path of the one chosen.
QDialog& showBackups(const QString& displayName, const QString& folder, JobQueue& jobs,
                     QWidget& parent, std::function<void(const QString& path)> open);

}  // namespace zorvel
