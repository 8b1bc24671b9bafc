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
    const auto addCommand = [this](const char* name, const QList<QKeySequence>& keys, auto run) {
        auto* action = new QAction(this);
        action->setObjectName(name);
        action->setShortcuts(keys);
        connect(action, &QAction::triggered, this, run);
        addAction(action);
    };
    addCommand("performClose", {closeKey(), QKeySequence(Qt::Key_Escape)}, &QWidget::close);
    addCommand("terminate", {QKeySequence(Qt::CTRL | Qt::Key_Q)},
               &PreferencesWindowController::quitRequested);
    addCommand("preferencesMenuItemTapped", {QKeySequence(Qt::CTRL | Qt::Key_Comma)},
               &PreferencesWindowController::preferencesRequested);
    connect(viewController_, &PreferencesViewController::closeRequested, this, &QWidget::close);
}

}  // namespace zorvel
