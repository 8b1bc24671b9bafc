// Asks the person at the screen for files to open. An interface, so that a test can answer.
#pragma once

#include <QString>
#include <QStringList>

class QWidget;

namespace zorvel {

class OpenPanel {
  public:
    OpenPanel() = default;
    OpenPanel(const OpenPanel&) = delete;
    OpenPanel& operator=(const OpenPanel&) = delete;
    virtual ~OpenPanel() = default;

    // Paths of projects and text files; empty where the panel was cancelled. Waits for the answer.
    virtual QStringList chooseFiles(QWidget* parent) = 0;
    // The path of one text file, named .txt or .csv; empty where the panel was cancelled.
    virtual QString chooseTextFile(QWidget* parent) = 0;
};

// The desktop's panel, for files named .zorvel, .txt and .csv; it begins in the folder chosen last.
class DesktopOpenPanel final : public OpenPanel {
  public:
    QStringList chooseFiles(QWidget* parent) override;
    QString chooseTextFile(QWidget* parent) override;

  private:
    QString folder_;
};

}  // namespace zorvel
