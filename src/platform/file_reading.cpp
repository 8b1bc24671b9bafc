#include "platform/file_reading.h"

#include <cstddef>

#include "model/file_messages.h"

namespace zorvel {

namespace {

// "line 3, cell 7", as far as it is known.
QString placeText(const TextPlace& place) {
    if (place.line == 0) return {};
    const QString line = QString("line %1").arg(place.line);
    return place.cell == 0 ? line : line + QString(", cell %1").arg(place.cell);
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

}  // namespace zorvel
