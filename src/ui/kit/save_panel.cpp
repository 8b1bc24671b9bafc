#include "ui/kit/save_panel.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>

#include "platform/file_names.h"

namespace zorvel {

QString DesktopSavePanel::chooseProjectPath(QWidget* parent, const QString& suggestion) {
    QString start = withProjectEnding(suggestion);
    if (QFileInfo(start).isRelative()) {
        const QString documents =
            QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
        start = QDir(folder_.isEmpty() ? documents : folder_).filePath(start);
    }
    // Whoever asked adds the ending, so the panel cannot know what would be replaced.
    QString path = QFileDialog::getSaveFileName(parent, QFileDialog::tr("Save As"), start,
                                                QFileDialog::tr("Projects (*.zorvel)"), nullptr,
                                                QFileDialog::DontConfirmOverwrite);
    if (!path.isEmpty()) folder_ = QFileInfo(path).path();
    return path;
}

QString withProjectEnding(const QString& path) {
    const QString ending = projectEnding;
    return path.endsWith(ending, Qt::CaseInsensitive) ? path : path + ending;
}

}  // namespace zorvel
