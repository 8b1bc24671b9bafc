// Asks the person at the screen where to save something. An interface, so that a test can answer.
#pragma once

#include <QList>
#include <QString>

class QWidget;

namespace zorvel {

// A kind of file that can be written: "PDF document", ".pdf".
struct FileType {
    QString title;
    QString ending;
};

class SavePanel {
  public:
    SavePanel() = default;
    SavePanel(const SavePanel&) = delete;
    SavePanel& operator=(const SavePanel&) = delete;
    virtual ~SavePanel() = default;

    // suggestion: a path, or a name alone. The path as it was typed, with or without an ending, of
    // a file that is there or not; empty where the panel was cancelled. Waits for the answer.
    virtual QString chooseProjectPath(QWidget* parent, const QString& suggestion) = 0;

    // The same for a file of one of these types, the first of which is suggested. The path ends as
    // one of them does: an ending is added where none of theirs was typed. Whether a file there may
    // be replaced has been asked.
    // title: what is saved.
    virtual QString chooseFile(QWidget* parent, const QString& title, const QString& suggestion,
                               const QList<FileType>& types) = 0;
};

// The desktop's panel; a bare name begins in panelFolder(), or among the documents.
class DesktopSavePanel final : public SavePanel {
  public:
    QString chooseProjectPath(QWidget* parent, const QString& suggestion) override;
    QString chooseFile(QWidget* parent, const QString& title, const QString& suggestion,
                       const QList<FileType>& types) override;
};

// The path with an ending of one of the types: with the preferred one's, unless it has one of them.
QString withEnding(const QString& path, const QList<FileType>& types, const FileType& preferred);

// The path with the ending of projects, whatever the case of one that it has.
QString withProjectEnding(const QString& path);

}  // namespace zorvel
