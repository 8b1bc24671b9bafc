// View > Sort Censuses and Sort Species: what a click on a table's header does, by keyboard.
#pragma once

class QMenu;

namespace zorvel {

class MainWindowController;

void addSortMenus(QMenu& menu, MainWindowController& window);

}  // namespace zorvel
