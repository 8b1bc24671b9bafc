#include "platform/file_reading.h"

#include <QFileInfo>
#include <utility>

#include "base/console.h"
#include "model/file_messages.h"
#include "model/import.h"

namespace zorvel {

namespace {

// "line 3, cell 7", as far as it is known.
QString placeText(const TextPlace& place) {
    if (place.line == 0) return {};
    const QString line = QString("line %1").arg(place.line);
    return place.cell == 0 ? line : line + QString(", cell %1").arg(place.cell);
}

FileReading readText(NamedFile& file, std::optional<FileKind> kind) {
    const QString name = QFileInfo(file.path).fileName();
    FileReading reading;
    Result<InputFile> input = file.take();
    Result<std::string> text = input ? std::move(input).value().text() : input.problem();
    if (!text || text.value().empty()) {
        const std::string reason = text ? "the file is empty" : text.problem().message;
        writeConsoleLines({"WARNING: " + reason, "WARNING: no string obtained from file"});
        reading.failure = unreadableMessage(name, reason);
        return reading;
    }
    if (!kind) kind = guessFileKind(text.value());
    const auto names = std::make_shared<NamePool>();
    ParsedCensuses parsed =
        parseAndTell(*kind, std::string(std::move(text).value()), {}, names.get());
    reading.leftOut = parsed.leftOut;
    if (!parsed.value) {
        reading.failure = unreadableMessage(name, reasonOf(parsed), parsed.place);
    } else if (parsed.value->empty()) {
        reading.failure = unreadableMessage(name, "there is no census in the file");
    } else {
        reading.records = recordsOf(std::move(*parsed.value), names);
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

NamedFile::NamedFile(const QString& named) : path(named), isProject(named.endsWith(projectEnding)) {
    if (!isProject) input.emplace(InputFile::open(encodedPath(path)));
    if (!input || !*input) {
        identity = fileIdentity(encodedPath(path));
        return;
    }
    constexpr std::size_t startSize = 65536;  // all of most files
    InputFile& opened = input->value();
    identity = FileIdentity{opened.status().st_dev, opened.status().st_ino};
    opened.readStart(startSize);
    isProject = startsLikeProject(opened.start());
    if (isProject) input.reset();
}

QString projectMessage(const QString& shownName, const FileProblem& problem) {
    return shownName + ": " + QString::fromStdString(fileMessage(problem));
}

QString unreadableMessage(const QString& shownName, const std::string& reason,
                          const TextPlace& place) {
    const QString why = QString::fromStdString(reason);
    const QString where = placeText(place);
    if (why.startsWith("cannot be ")) return shownName + ' ' + why;
    if (where.isEmpty()) return QString("%1 could not be read: %2").arg(shownName, why);
    return QString("%1 could not be read (%2): %3").arg(shownName, where, why);
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

FileReading readAnyFile(NamedFile& file, const ProjectFileOptions& options,
                        std::optional<FileKind> kind) {
    if (!file.isProject) return readText(file, kind);
    return readProjectFile(file.path, QFileInfo(file.path).fileName(), options);
}

}  // namespace zorvel
