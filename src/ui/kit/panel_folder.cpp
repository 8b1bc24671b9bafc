#include "ui/kit/panel_folder.h"

#include <QFileInfo>
#include <QWidget>

#include "platform/settings.h"

namespace zorvel {

namespace {
const char panelFolderKey[] = "panelFolder";
}

QString panelFolder(const QWidget* widget) {
    const QString project = widget == nullptr ? QString() : widget->window()->windowFilePath();
    if (!project.isEmpty()) return QFileInfo(project).path();
    return setting(panelFolderKey).toString();
}

void rememberPanelFolder(const QString& path) {
    storeSetting(panelFolderKey, QFileInfo(path).absolutePath());
}

}  // namespace zorvel
