#include "platform/file_names.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTextBoundaryFinder>
#include <QUuid>

#include "platform/settings.h"

namespace zorvel {

namespace {

const char reportedKey[] = "untitledProblemsTold";

QRegularExpressionMatch untitledMatch(const QString& fileName) {
    static const QRegularExpression form(
        "\\A[0-9a-f]{8}(?:-[0-9a-f]{4}){3}-[0-9a-f]{12}"
        "(?: (.+))?\\.zorvel\\z",
        QRegularExpression::DotMatchesEverythingOption);
    return form.match(fileName);
}

}  // namespace

QString displayNameOf(const QString& path) {
    const QFileInfo file(path);
    const QString name = file.completeBaseName();
    return name.isEmpty() ? file.fileName() : name;
}

QString asFileName(const QString& displayName) {
    constexpr qsizetype mostBytes = 120;
    QString name = displayName;
    for (QChar& character : name) {
        if (character == u'/' || character.category() == QChar::Other_Control) character = u' ';
    }
    while (name.toUtf8().size() > mostBytes) {
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, name);
        finder.toEnd();
        name.truncate(finder.toPreviousBoundary());
    }
    name = name.trimmed();
    return name.isEmpty() ? QStringLiteral("project") : name;
}

std::string encodedPath(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

QString UntitledFolder::claimNew(const QString& name) {
    QString fileName = QUuid::createUuid().toString(QUuid::WithoutBraces);
    if (!name.isEmpty()) fileName += " " + asFileName(name);
    fileName += projectEnding;
    claimed_.insert(fileName);
    return pathOf(fileName);
}

bool UntitledFolder::claim(const QString& fileName) {
    if (claimed_.contains(fileName)) return false;
    claimed_.insert(fileName);
    return true;
}

bool UntitledFolder::holds(const QString& path) const {
    const QFileInfo file(path);
    return untitledMatch(file.fileName()).hasMatch() &&
           QDir::cleanPath(file.absolutePath()) == QDir::cleanPath(QDir(path_).absolutePath());
}

QString UntitledFolder::nameIn(const QString& fileName) {
    return untitledMatch(fileName).captured(1);
}

QStringList UntitledFolder::names(const QString& folder) {
    QStringList names;
    const auto order = QDir::Time | QDir::Reversed;
    for (const QString& name : QDir(folder).entryList(QDir::Files | QDir::Hidden, order)) {
        if (untitledMatch(name).hasMatch()) names.append(name);
    }
    return names;
}

bool UntitledFolder::isNewProblem(const QString& fileName, FileTrouble trouble) {
    QStringList reported = setting(reportedKey).toStringList();
    reported.removeIf(
        [this](const QString& entry) { return !QFileInfo::exists(pathOf(entry.section('|', 1))); });
    const QString entry = QString::number(static_cast<int>(trouble)) + "|" + fileName;
    const bool first = !reported.contains(entry);
    if (first) reported.append(entry);
    storeSetting(reportedKey, reported);
    return first;
}

}  // namespace zorvel
