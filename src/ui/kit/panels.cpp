#include "ui/kit/panels.h"

#include <QColorDialog>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>
#include <utility>

#include "platform/file_names.h"
#include "platform/settings.h"

namespace zorvel {

namespace {

const char panelFolderKey[] = "panelFolder";

// Empty before the first use of a panel for files.
QString panelFolder(const QWidget* widget) {
    const QString project = widget == nullptr ? QString() : widget->window()->windowFilePath();
    if (!project.isEmpty()) return QFileInfo(project).path();
    return setting(panelFolderKey).toString();
}

void rememberFolderOf(const QString& path) {
    storeSetting(panelFolderKey, QFileInfo(path).absolutePath());
}

// A bare name begins in that folder, or among the documents.
QString startingAt(const QString& name, const QWidget* parent) {
    if (!QFileInfo(name).isRelative()) return name;
    const QString folder = panelFolder(parent);
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QDir(folder.isEmpty() ? documents : folder).filePath(name);
}

// Whatever the case of the ending that the path has.
QString withEnding(const QString& path, const QString& ending) {
    return path.endsWith(ending, Qt::CaseInsensitive) ? path : path + ending;
}

QString chooseOne(QWidget* parent, const QString& title, const QString& filter) {
    QString path = QFileDialog::getOpenFileName(parent, title, panelFolder(parent), filter);
    if (!path.isEmpty()) rememberFolderOf(path);
    return path;
}

}  // namespace

QStringList OpenPanel::chooseFiles(QWidget* parent) {
    const QString filter =
        "Projects, text files and workbooks (*.zorvel *.txt *.csv *.tsv *.xlsx *.ods);;"
        "All files (*)";
    QStringList paths = QFileDialog::getOpenFileNames(parent, "Open Projects or Text Files",
                                                      panelFolder(parent), filter);
    if (!paths.isEmpty()) rememberFolderOf(paths.front());
    return paths;
}

QString OpenPanel::chooseTextFile(QWidget* parent, const QString& title) {
    return chooseOne(parent, title, "Text files (*.txt *.csv);;All files (*)");
}

QString OpenPanel::chooseTable(QWidget* parent) {
    return chooseOne(parent, "Import Table",
                     "Text files and workbooks (*.txt *.csv *.tsv *.tab *.xlsx *.ods);;"
                     "All files (*)");
}

QString SavePanel::chooseProjectPath(QWidget* parent, const QString& suggestion) {
    const QString start = startingAt(withProjectEnding(suggestion), parent);
    // The caller adds the ending, so the panel cannot know what would be replaced.
    QString path =
        QFileDialog::getSaveFileName(parent, "Save Project As", start, "Projects (*.zorvel)",
                                     nullptr, QFileDialog::DontConfirmOverwrite);
    if (!path.isEmpty()) rememberFolderOf(path);
    return path;
}

QString SavePanel::chooseFile(QWidget* parent, const QString& title, const QString& suggestion,
                              const FileType& type) {
    QFileDialog dialog(parent, title, startingAt(withEnding(suggestion, type.ending), parent));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters({type.title + " (*" + type.ending + ")"});
    // The dialog adds the ending itself, so that it asks about the file that is replaced.
    dialog.setDefaultSuffix(type.ending.mid(1));
    Alerts alerts;
    while (dialog.exec() == QDialog::Accepted) {
        const QString chosen = dialog.selectedFiles().value(0);
        QString path = withEnding(chosen, type.ending);
        rememberFolderOf(path);
        // The dialog adds no ending to a name with a point ("St. Helena"), and does not ask.
        if (path == chosen || mayReplace(alerts, parent, path)) return path;
    }
    return {};
}

QString withProjectEnding(const QString& path) {
    return withEnding(path, projectEnding);
}

void ColorPanel::chooseColor(QWidget* parent, const QString& title, const QColor& initial,
                             Chosen chosen) {
    auto* panel = new QColorDialog(initial, parent);
    panel->setAttribute(Qt::WA_DeleteOnClose);
    panel->setOption(QColorDialog::ShowAlphaChannel);
    panel->setWindowTitle(title);
    QObject::connect(panel, &QColorDialog::colorSelected, panel, std::move(chosen));
    panel->open();
}

void LinkOpener::openURL(const QUrl& url) {
    QDesktopServices::openUrl(url);
}

void openURLString(LinkOpener& links, const QString& text) {
    const QUrl url(text, QUrl::StrictMode);
    if (url.isValid() && !url.isRelative()) links.openURL(url);
}

}  // namespace zorvel
