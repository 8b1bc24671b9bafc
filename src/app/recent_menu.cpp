#include "app/recent_menu.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QMenu>
#include <algorithm>

#include "app/project_windows.h"
#include "platform/document_controller.h"
#include "ui/kit/shown_text.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

namespace {

// Ampersands would underline letters.
QString asTitle(const QString& text) {
    return shortened(oneLine(text), 80).replace('&', "&&");
}

// Files of one name are told apart by their folders.
QString titleOf(const QString& path, const QStringList& paths) {
    const QString name = QFileInfo(path).fileName();
    const auto hasName = [&](const QString& other) { return QFileInfo(other).fileName() == name; };
    const bool unique = std::count_if(paths.begin(), paths.end(), hasName) == 1;
    return asTitle(unique ? name : QString("%1 – %2").arg(name, QFileInfo(path).path()));
}

void fill(QMenu& menu, MainWindowController& window, ProjectWindows& windows) {
    menu.clear();
    const QStringList paths = windows.documents().recentPaths();
    for (const QString& path : paths) {
        QAction* item = menu.addAction(titleOf(path, paths));
        item->setToolTip(oneLine(path));
        item->setData(path);
        QObject::connect(item, &QAction::triggered, &window,
                         [path, &window, &windows] { windows.openFile(path, &window); });
    }
    menu.addSeparator();
    QAction* clear = menu.addAction(QCoreApplication::translate("Menus", "&Clear Menu"));
    clear->setObjectName("clearRecentDocuments");
    clear->setEnabled(!paths.isEmpty());
    QObject::connect(clear, &QAction::triggered, &windows.documents(),
                     &DocumentController::clearRecentPaths);
}

// Without disturbing whoever is choosing from it.
void hideMissing(QMenu& menu, const QStringList& there) {
    for (QAction* item : menu.actions()) {
        const QString path = item->data().toString();
        if (!path.isEmpty()) item->setVisible(there.contains(path));
    }
}

}  // namespace

void keepRecentMenu(QMenu& menu, MainWindowController& window, ProjectWindows& windows) {
    menu.setToolTipsVisible(true);
    DocumentController& documents = windows.documents();
    QObject::connect(&menu, &QMenu::aboutToShow, &window, [&] {
        fill(menu, window, windows);
        windows.documents().lookForRecentPaths();
    });
    QObject::connect(&documents, &DocumentController::recentPathsDidChange, &menu,
                     [&] { hideMissing(menu, windows.documents().recentPaths()); });
    fill(menu, window, windows);
}

}  // namespace zorvel
