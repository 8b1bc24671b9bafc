#include "platform/untitled_folder.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QUuid>
#include <algorithm>

#include "platform/file_names.h"
#include "platform/settings.h"

namespace zorvel {

namespace {

const char toldKey[] = "untitledProblemsTold";

QRegularExpressionMatch match(const QString& fileName) {
    static const QRegularExpression form(
        "\\A[0-9a-f]{8}(?:-[0-9a-f]{4}){3}-[0-9a-f]{12}"
        "(?: (.+))?\\.zorvel\\z",
        QRegularExpression::DotMatchesEverythingOption);
    return form.match(fileName);
}

}  // namespace

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
    return match(file.fileName()).hasMatch() &&
           QDir::cleanPath(file.absolutePath()) == QDir::cleanPath(QDir(path_).absolutePath());
}

QString UntitledFolder::asideName(const QString& projectName) {
    return QCoreApplication::translate("UntitledFolder", "%1 (unsaved changes)").arg(projectName);
}

QString UntitledFolder::nameIn(const QString& fileName) {
    return match(fileName).captured(1);
}

QStringList UntitledFolder::names(const QString& folder) {
    QStringList names;
    const auto order = QDir::Time | QDir::Reversed;
    for (const QString& name : QDir(folder).entryList(QDir::Files | QDir::Hidden, order)) {
        if (match(name).hasMatch()) names.append(name);
    }
    return names;
}

bool UntitledFolder::shouldTell(const QString& fileName, FileTrouble trouble) {
    QStringList told = setting(toldKey).toStringList();
    told.removeIf(
        [this](const QString& entry) { return !QFileInfo::exists(pathOf(entry.section('|', 1))); });
    const QString entry = QString::number(static_cast<int>(trouble)) + "|" + fileName;
    const bool first = !told.contains(entry);
    if (first) told.append(entry);
    storeSetting(toldKey, told);
    return first;
}

}  // namespace zorvel
