#include "platform/file_reading.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <string>
#include <utility>

#include "model/file_messages.h"
#include "platform/file_names.h"
#include "platform/project_writes.h"

namespace zorvel {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("zorvel::FileReading", text);
}

// "line 3, cell 7", as far as it is known.
QString placeText(const TextPlace& place) {
    if (place.line == 0) return {};
    QString line = tr("line %1").arg(place.line);
    if (place.cell == 0) return line;
    return line + tr(", cell %1").arg(place.cell);
}

FileReading readText(const QString& path, std::optional<FileKind> kind) {
    TextProject project = readTextProject(encodedPath(path), kind);
    FileReading reading;
    if (project.failure.empty()) {
        reading.records = std::move(project.records);
        reading.leftOut = project.leftOut;
    } else {
        reading.failure =
            unreadableMessage(QFileInfo(path).fileName(), project.failure, project.place);
    }
    return reading;
}

FileReading failed(const QString& shownName, const FileProblem& problem) {
    FileReading reading;
    reading.failure = projectMessage(shownName, problem);
    reading.problem = problem;
    return reading;
}

}  // namespace

QString projectMessage(const QString& shownName, const FileProblem& problem) {
    return shownName + ": " + QString::fromStdString(fileMessage(problem));
}

QString unreadableMessage(const QString& shownName, const std::string& reason,
                          const TextPlace& place) {
    const QString why = QString::fromStdString(reason);
    const QString where = placeText(place);
    if (where.isEmpty()) return tr("%1 could not be read: %2").arg(shownName, why);
    return tr("%1 could not be read (%2): %3").arg(shownName, where, why);
}

FileReading readProjectFile(const QString& path, const QString& shownName,
                            const ProjectFileOptions& options) {
    auto opened = ProjectFile::open(encodedPath(path), options);
    if (!opened.ok()) return failed(shownName, opened.problem());
    FileReading reading;
    reading.file = std::move(opened).value();
    auto records = reading.file->load();
    if (!records.ok()) return failed(shownName, records.problem());
    reading.records = std::move(records).value();
    return reading;
}

FileReading readCopy(const QString& path, const QString& shownName, ProjectFileOptions options) {
    options.readOnly = true;
    FileReading reading = readProjectFile(path, shownName, options);
    reading.file.reset();
    return reading;
}

FileReading readAnyFile(const QString& path, const ProjectFileOptions& options,
                        std::optional<FileKind> kind) {
    if (path.endsWith(projectEnding) || holdsProject(encodedPath(path))) {
        return readProjectFile(path, QFileInfo(path).fileName(), options);
    }
    return readText(path, kind);
}

}  // namespace zorvel
