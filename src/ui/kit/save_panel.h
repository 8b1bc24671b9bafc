// Asks the person at the screen where to save a project. An interface, so that a test can answer.
#pragma once

#include <QString>

class QWidget;

namespace zorvel {

class SavePanel {
  public:
    SavePanel() = default;
    SavePanel(const SavePanel&) = delete;
    SavePanel& operator=(const SavePanel&) = delete;
    virtual ~SavePanel() = default;

    // suggestion: a path, or a name alone. The path as it was typed, with or without an ending, of
    // a file that is there or not; empty where the panel was cancelled. Waits for the answer.
    virtual QString chooseProjectPath(QWidget* parent, const QString& suggestion) = 0;
};

// The desktop's panel; a bare name begins in the folder chosen last, or among the documents.
class DesktopSavePanel final : public SavePanel {
  public:
    QString chooseProjectPath(QWidget* parent, const QString& suggestion) override;

  private:
    QString folder_;
};

// The path with the ending of projects, whatever the case of one that it has.
QString withProjectEnding(const QString& path);

}  // namespace zorvel
