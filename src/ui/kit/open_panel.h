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
    // The path of one text file; empty where the panel was cancelled. title: what is chosen.
    virtual QString chooseTextFile(QWidget* parent, const QString& title) = 0;
};

// The desktop's panel, for files named .zorvel, .txt and .csv, or all; it begins in panelFolder().
class DesktopOpenPanel final : public OpenPanel {
  public:
    QStringList chooseFiles(QWidget* parent) override;
    QString chooseTextFile(QWidget* parent, const QString& title) override;
};

}  // namespace zorvel
