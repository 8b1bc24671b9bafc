// The application as a whole: what happens when it starts and when it comes to the front, and the
// commands that belong to no project: preferences, help, web site, support. It owns the preferences
// window, of which there is at most one. Main thread; ends before the windows of the projects.
#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>

namespace zorvel {

class ColorPanel;
class LinkOpener;
class PreferencesWindowController;
class ProjectWindows;

class AppDelegate : public QObject {
    Q_OBJECT
  public:
    // All must outlive the delegate.
    AppDelegate(ProjectWindows& windows, ColorPanel& colors, LinkOpener& links);
    ~AppDelegate() override;

    // Opens the first window and these files, and observes from then on whether the application is
    // active.
    void applicationDidFinishLaunching(const QStringList& files);

    // Null while it is not on the screen.
    [[nodiscard]] PreferencesWindowController* preferencesWindowController() const;

  public slots:
    // Where no project is open, an empty one appears.
    void applicationDidBecomeActive();

    // Brings the window that is there to the front, or makes it anew.
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
