// Asks the person at the screen for a file to open. An interface, so that a test can answer.
#pragma once

#include <QString>

class QWidget;

namespace zorvel {

class OpenPanel {
  public:
    OpenPanel() = default;
    OpenPanel(const OpenPanel&) = delete;
    OpenPanel& operator=(const OpenPanel&) = delete;
    virtual ~OpenPanel() = default;

    // The path of a text file; empty where the panel was cancelled. Waits for the answer.
    virtual QString chooseTextFile(QWidget* parent) = 0;
};

// The desktop's panel, for files named .txt and .csv; it begins in the folder chosen last.
class DesktopOpenPanel final : public OpenPanel {
  public:
    QString chooseTextFile(QWidget* parent) override;

  private:
    QString folder_;
};

}  // namespace zorvel
