#include "app/preferences_window_controller.h"

#include <QAction>
#include <QKeySequence>
#include <QLayout>

#include "app/standard_keys.h"

namespace zorvel {

PreferencesWindowController::PreferencesWindowController(ColorPanel& colors)
    : PlacedWindow(60, 60), viewController_(new PreferencesViewController(colors, this)) {
    setObjectName("PreferencesWindow");
    setWindowTitle(tr("Preferences"));
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_QuitOnClose, false);
    setCentralWidget(viewController_);
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    auto* close = new QAction(this);
    close->setObjectName("performClose");
    close->setShortcuts({closeKey(), QKeySequence(Qt::Key_Escape)});
    connect(close, &QAction::triggered, this, &QWidget::close);
    auto* quit = new QAction(this);
    quit->setObjectName("terminate");
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    connect(quit, &QAction::triggered, this, &PreferencesWindowController::quitRequested);
    addActions({close, quit});
    connect(viewController_, &PreferencesViewController::closeRequested, this, &QWidget::close);
}

}  // namespace zorvel
