// Names and paths of the user's files: between the names of projects and those of their files, and
// the folder of untitled projects. The functions: any thread; the class: main thread.
#pragma once

#include <QSet>
#include <QString>
#include <QStringList>
#include <string>
#include <utility>

#include "store/file_problem.h"

namespace zorvel {

inline constexpr char projectEnding[] = ".zorvel";

// The file's name without folder and ending: what a project from that file is called.
QString displayNameOf(const QString& path);

// The display name as a part of a file's name: without the characters that no file can have there,
// and of no more than 120 bytes.
QString asFileName(const QString& displayName);

// As the system takes it.
std::string encodedPath(const QString& path);

// The folder of untitled projects in the user's data folder, shared by all running Zorvels: files
// "UUID.zorvel", or "UUID NAME.zorvel" if the project has a name from what it was made of. What
// cannot be opened stays there; the user is told once.
class UntitledFolder {
  public:
    explicit UntitledFolder(QString path) : path_(std::move(path)) {}

    // A new path for a project of that name, which may be empty; it is this run's from now on.
    QString claimNew(const QString& name);
    // False if the file of that name is this run's already.
    bool claim(const QString& fileName);
    void giveUp(const QString& fileName) { claimed_.remove(fileName); }

    [[nodiscard]] QString pathOf(const QString& fileName) const { return path_ + "/" + fileName; }
    [[nodiscard]] const QString& path() const { return path_; }
    // Whether a file is one of this folder, by its path and its name.
    [[nodiscard]] bool holds(const QString& path) const;

    // The part of a file's name that is the project's; empty if it has none.
    static QString nameIn(const QString& fileName);
    // The names of the files in a folder, oldest first. Any thread.
    static QStringList names(const QString& folder);

    // True at the first call for that file and trouble, in this run or an earlier one.
    bool isNewProblem(const QString& fileName, FileTrouble trouble);

  private:
    QString path_;
    QSet<QString> claimed_;
};

}  // namespace zorvel
