#include "app/application_delegate.h"

#include <QGuiApplication>

#include "app/application_links.h"
#include "app/preferences_window_controller.h"
#include "app/project_windows.h"
#include "platform/document_controller.h"
#include "ui/kit/panels.h"

namespace zorvel {

AppDelegate::AppDelegate(ProjectWindows& windows, ColorPanel& colors, LinkOpener& links)
    : windows_(windows), colors_(colors), links_(links) {
    connect(&windows_, &ProjectWindows::preferencesRequested, this,
            &AppDelegate::preferencesMenuItemTapped);
    connect(&windows_, &ProjectWindows::helpRequested, this, &AppDelegate::showHelp);
    connect(&windows_, &ProjectWindows::websiteRequested, this,
            &AppDelegate::websiteMenuItemTapped);
    connect(&windows_, &ProjectWindows::supportRequested, this,
            &AppDelegate::emailSupportMenuItemTapped);
}

// What is typed in the preferences is stored as at any closing.
AppDelegate::~AppDelegate() {
    if (preferencesWindowController_) preferencesWindowController_->close();
    delete preferencesWindowController_;
}

void AppDelegate::applicationDidFinishLaunching(const QStringList& files) {
    windows_.start(files);
    connect(qGuiApp, &QGuiApplication::applicationStateChanged, this,
            [this](Qt::ApplicationState state) {
                if (state == Qt::ApplicationActive) applicationDidBecomeActive();
            });
}

void AppDelegate::applicationDidBecomeActive() {
    if (windows_.documents().documents().empty()) windows_.openUntitled();
}

PreferencesWindowController* AppDelegate::preferencesWindowController() const {
    const bool open = preferencesWindowController_ && !preferencesWindowController_->isHidden();
    return open ? preferencesWindowController_.data() : nullptr;
}

void AppDelegate::preferencesMenuItemTapped() {
    PreferencesWindowController* window = preferencesWindowController();
    if (window == nullptr) {
        delete preferencesWindowController_;
        window = new PreferencesWindowController(colors_);
        preferencesWindowController_ = window;
        const PreferencesViewController* view = &window->viewController();
        connect(view, &PreferencesViewController::preferencesDidChange, &windows_,
                &ProjectWindows::preferencesDidChange);
        connect(view, &PreferencesViewController::plotPreferencesDidChange, &windows_,
                &ProjectWindows::plotPreferencesDidChange);
        connect(view, &PreferencesViewController::textDidEndEditing, &windows_,
                &ProjectWindows::textDidEndEditing);
        connect(window, &PreferencesWindowController::preferencesRequested, this,
                &AppDelegate::preferencesMenuItemTapped);
        connect(window, &PreferencesWindowController::quitRequested, &windows_,
                &ProjectWindows::quit);
    } else {
        window->viewController().showAgain();
    }
    window->isMinimized() ? window->showNormal() : window->show();
    window->raise();
    window->activateWindow();
}

void AppDelegate::showHelp() {
    openURLString(links_, helpAddress());
}

void AppDelegate::websiteMenuItemTapped() {
    openURLString(links_, websiteAddress());
}

void AppDelegate::emailSupportMenuItemTapped() {
    openURLString(links_, supportMailAddress());
}

}  // namespace zorvel
