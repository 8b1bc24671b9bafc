#include "app/application_delegate.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QIcon>
#include <QMessageBox>
#include <QUrl>

#include "app/menus.h"
#include "app/preferences_view_controller.h"
#include "app/project_windows.h"
#include "metrics/rarefaction.h"
#include "platform/document_controller.h"
#include "platform/preferences.h"
#include "ui/kit/panels.h"

namespace zorvel {

void setUpApplication() {
    QCoreApplication::setOrganizationName("zorvel");
    QCoreApplication::setApplicationName("zorvel");
    QCoreApplication::setApplicationVersion(ZORVEL_VERSION);
    QGuiApplication::setApplicationDisplayName("Zorvel");
    QGuiApplication::setDesktopFileName("zorvel");
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
        icon.addFile(QString(":/zorvel/zorvel-%1.png").arg(size), QSize(size, size));
    }
    QApplication::setWindowIcon(icon);
    Preferences().initializePreferences();
    sharedCalculator();
}

void showAbout(QWidget* window) {
    auto* box = new QMessageBox(window);
    box->setObjectName("aboutBox");
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setWindowTitle("About Zorvel");
    box->setIconPixmap(QApplication::windowIcon().pixmap(64, 64));
    box->setTextFormat(Qt::RichText);
    box->setText(QString("<b>Zorvel %1</b>").arg(QCoreApplication::applicationVersion()));
    box->setInformativeText(
        QString("Measures the diversity of biological samples, for field ecologists and "
                "paleontologists.\n\nFree software under the MIT licence. Qt %1.")
            .arg(qVersion()));
    box->setStandardButtons(QMessageBox::Close);
    box->open();
}

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

// Closing stores what is typed in the preferences.
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
        addCommonKeyCommands(*window, windows_, {Qt::Key_Escape});
    } else {
        window->viewController().showAgain();
    }
    window->isMinimized() ? window->showNormal() : window->show();
    window->raise();
    window->activateWindow();
}

// The pages installed beside the program, or built with it if it runs from its build folder, unless
// the build names another place.
void AppDelegate::showHelp() {
    const auto besideProgram = [](const char* relative) {
        return QDir::cleanPath(QCoreApplication::applicationDirPath() + '/' + relative);
    };
    QString address = ZORVEL_HELP_URL;
    if (address.isEmpty()) {
        QString page = besideProgram("../help/index.html");
        if (!QFileInfo::exists(page)) page = besideProgram(ZORVEL_INSTALLED_HELP "/index.html");
        address = QUrl::fromLocalFile(page).toString(QUrl::FullyEncoded);
    }
    openURLString(links_, address);
}

void AppDelegate::websiteMenuItemTapped() {
    openURLString(links_, ZORVEL_WEBSITE);
}

// A new mail with a subject and an empty body.
void AppDelegate::emailSupportMenuItemTapped() {
    openURLString(links_,
                  "mailto:" ZORVEL_SUPPORT_ADDRESS "?SUBJECT=Zorvel%20for%20Mac%20support&BODY=");
}

}  // namespace zorvel
