// The application as a whole: its set-up, what happens when it starts and when it comes to the
// front, and the commands that belong to no project: preferences, help, web site, support. It owns
// the preferences window, of which there is at most one. Main thread.
#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>

namespace zorvel {

class ColorPanel;
class LinkOpener;
class PreferencesWindowController;
class ProjectWindows;

// Names, icon, registered preferences, and the calculator with its table; once, before the first
// window. Needs a QApplication.
void setUpApplication();

// Help > About Zorvel. Does not wait; the box closes with its window.
void showAbout(QWidget* window);

class AppDelegate : public QObject {
    Q_OBJECT
  public:
    // All must outlive the delegate.
    AppDelegate(ProjectWindows& windows, ColorPanel& colors, LinkOpener& links);
    ~AppDelegate() override;

    // Opens the first window and these files. From then on applicationDidBecomeActive() is called.
    void applicationDidFinishLaunching(const QStringList& files);

    // Null while it is not on the screen.
    [[nodiscard]] PreferencesWindowController* preferencesWindowController() const;

  public slots:
    // Opens an empty project if none is open.
    void applicationDidBecomeActive();

    // Brings the window to the front, or creates it.
    void preferencesMenuItemTapped();
    void showHelp();
    void websiteMenuItemTapped();
    void emailSupportMenuItemTapped();

  private:
    ProjectWindows& windows_;
    ColorPanel& colors_;
    LinkOpener& links_;
    QPointer<PreferencesWindowController> preferencesWindowController_;
};

}  // namespace zorvel
