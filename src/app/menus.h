// The menu bar of a project's window, and the keys of commands that other windows have too. Main
// thread.
#pragma once

#include <QKeySequence>
#include <QList>
#include <functional>

class QMenu;
class QWidget;

namespace zorvel {

class LookChoice;
class MainWindowController;
class ProjectWindows;

// Both must outlive the window.
void addMenus(MainWindowController& window, ProjectWindows& windows, LookChoice& look);

// Its parts whose contents change, see window_menus.cpp.

// File > Open Recent, filled each time it is about to be shown; a missing file is hidden a moment
// later.
void keepRecentMenu(QMenu& menu, MainWindowController& window, ProjectWindows& windows);
// View > Sort Censuses and Sort Species: what a click on a table's header does, by keyboard.
void addSortMenus(QMenu& menu, MainWindowController& window);
// Window: minimise, maximise, and all windows of the program by their titles.
void addWindowMenu(MainWindowController& window);

// A command of a window without menus, run only by its keys.
void addKeyCommand(QWidget& window, const char* name, const QList<QKeySequence>& keys,
                   const std::function<void()>& run);
// Close, quit and preferences. closeKeys: those that also close the window.
void addCommonKeyCommands(QWidget& window, ProjectWindows& windows,
                          const QList<QKeySequence>& closeKeys = {});

}  // namespace zorvel
