#include "ui/kit/save_panel.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStringList>

#include "platform/file_names.h"
#include "ui/kit/alerts.h"
#include "ui/kit/panel_folder.h"

namespace zorvel {

namespace {

const FileType& typeOfFilter(const QList<FileType>& types, const QStringList& filters,
                             const QString& chosen) {
    const qsizetype place = filters.indexOf(chosen);
    return types.at(place < 0 ? 0 : place);
}

QString startingAt(const QString& name, const QWidget* parent) {
    if (!QFileInfo(name).isRelative()) return name;
    const QString folder = panelFolder(parent);
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QDir(folder.isEmpty() ? documents : folder).filePath(name);
}

}  // namespace

QString DesktopSavePanel::chooseProjectPath(QWidget* parent, const QString& suggestion) {
    const QString start = startingAt(withProjectEnding(suggestion), parent);
    // Whoever asked adds the ending, so the panel cannot know what would be replaced.
    QString path = QFileDialog::getSaveFileName(parent, QFileDialog::tr("Save Project As"), start,
                                                QFileDialog::tr("Projects (*.zorvel)"), nullptr,
                                                QFileDialog::DontConfirmOverwrite);
    if (!path.isEmpty()) rememberPanelFolder(path);
    return path;
}

QString DesktopSavePanel::chooseFile(QWidget* parent, const QString& title,
                                     const QString& suggestion, const QList<FileType>& types) {
    QStringList filters;
    for (const FileType& type : types) filters.append(type.title + " (*" + type.ending + ")");
    QFileDialog dialog(parent, title,
                       startingAt(withEnding(suggestion, types, types.first()), parent));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters(filters);
    // The dialog adds the ending itself, so that it asks about the very file that is replaced.
    const auto follow = [&](const QString& filter) {
        dialog.setDefaultSuffix(typeOfFilter(types, filters, filter).ending.mid(1));
    };
    follow(filters.first());
    QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, follow);
    DesktopAlerts alerts;
    while (dialog.exec() == QDialog::Accepted) {
        const QString chosen = dialog.selectedFiles().value(0);
        const FileType& type = typeOfFilter(types, filters, dialog.selectedNameFilter());
        QString path = withEnding(chosen, types, type);
        rememberPanelFolder(path);
        // To a name that has a point ("St. Helena") the dialog adds nothing, and asks about
        // nothing.
        if (path == chosen || mayReplace(alerts, parent, path)) return path;
    }
    return {};
}

QString withEnding(const QString& path, const QList<FileType>& types, const FileType& preferred) {
    for (const FileType& type : types) {
        if (path.endsWith(type.ending, Qt::CaseInsensitive)) return path;
    }
    return path + preferred.ending;
}

QString withProjectEnding(const QString& path) {
    const QString ending = projectEnding;
    return path.endsWith(ending, Qt::CaseInsensitive) ? path : path + ending;
}

}  // namespace zorvel
