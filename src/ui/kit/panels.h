// What asks the user, and what opens something outside of the program: panels of the desktop, in
// whose place a test can answer. main() makes them and hands them down. Those for files begin in
// the folder of the project that the parent's window shows, or else in the folder used last, in
// this run or an earlier one. Main thread.
#pragma once

#include <QColor>
#include <QString>
#include <QStringList>
#include <functional>

#include "ui/kit/alerts.h"

class QUrl;
class QWidget;

namespace zorvel {

class OpenPanel : public Panel {
  public:
    // Paths of projects and text files; empty if cancelled. Waits for the answer.
    virtual QStringList chooseFiles(QWidget* parent);
    // The path of one text file; empty if cancelled. title: what is chosen.
    virtual QString chooseTextFile(QWidget* parent, const QString& title);
    // The path of a text file or workbook to import as a table; empty if cancelled.
    virtual QString chooseTable(QWidget* parent);
};

// A kind of file that can be written: "PDF document", ".pdf".
struct FileType {
    QString title;
    QString ending;
};

class SavePanel : public Panel {
  public:
    // suggestion: a path, or only a name. The path as it was typed, with or without an ending,
    // whether the file exists or not; empty if cancelled. Waits for the answer.
    virtual QString chooseProjectPath(QWidget* parent, const QString& suggestion);

    // The same for a file of this type. The path ends as it says: the ending is added if it was not
    // typed. The panel has asked whether an existing file may be replaced. title: what is saved.
    virtual QString chooseFile(QWidget* parent, const QString& title, const QString& suggestion,
                               const FileType& type);
};

// Each must outlive the windows that are given these.
struct Panels {
    OpenPanel& open;
    SavePanel& save;
    Alerts& alerts;
};

class ColorPanel : public Panel {
  public:
    // Called with the colour chosen, which has an alpha; not called if cancelled.
    using Chosen = std::function<void(const QColor&)>;

    // Returns at once. The panel belongs to the parent and goes with it.
    virtual void chooseColor(QWidget* parent, const QString& title, const QColor& initial,
                             Chosen chosen);
};

// Opens web pages, files of help and new mails in the programs that the desktop has for them.
class LinkOpener : public Panel {
  public:
    virtual void openURL(const QUrl& url);
};

// text: a whole URL with its scheme, percent-encoded. Any other text opens nothing.
void openURLString(LinkOpener& links, const QString& text);

// The path with the ending of projects, whatever the case of one that it has.
QString withProjectEnding(const QString& path);

}  // namespace zorvel
