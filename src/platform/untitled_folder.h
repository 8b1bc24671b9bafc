// The folder of untitled projects in the user's data folder, shared by all running Zorvels: files
// "UUID.zorvel", or "UUID NAME.zorvel" where the project has a name from what it was made of. What
// cannot be opened stays there, and is told once. Main thread, but for names().
#pragma once

#include <QSet>
#include <QString>
#include <QStringList>

#include "store/file_problem.h"

namespace zorvel {

class UntitledFolder {
  public:
    explicit UntitledFolder(QString path) : path_(std::move(path)) {}

    // A new path for a project of that name, which may be empty; it is this run's from now on.
    QString claimNew(const QString& name);
    // False where the file of that name is this run's already.
    bool claim(const QString& fileName);
    void giveUp(const QString& fileName) { claimed_.remove(fileName); }

    [[nodiscard]] QString pathOf(const QString& fileName) const { return path_ + "/" + fileName; }
    [[nodiscard]] const QString& path() const { return path_; }
    // Whether a file is one of this folder, by its path and its name.
    [[nodiscard]] bool holds(const QString& path) const;

    // Of the copy of a project that cannot be saved.
    static QString asideName(const QString& projectName);
    // The part of a file's name that is the project's; empty where it has none.
    static QString nameIn(const QString& fileName);
    // The names of the files that a folder holds, oldest first. Any thread.
    static QStringList names(const QString& folder);

    // True the first time that it is asked, of this run or an earlier one, for a file and trouble.
    bool shouldTell(const QString& fileName, FileTrouble trouble);

  private:
    QString path_;
    QSet<QString> claimed_;
};

}  // namespace zorvel
