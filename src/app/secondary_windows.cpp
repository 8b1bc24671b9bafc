#include "app/secondary_windows.h"

#include <QAction>
#include <QEvent>
#include <QKeySequence>
#include <QWidget>
#include <algorithm>
#include <utility>

#include "app/standard_keys.h"

namespace zorvel {

SecondaryWindows::SecondaryWindows(std::function<bool(QWidget& window)> mayClose)
    : mayClose_(std::move(mayClose)) {}

SecondaryWindows::~SecondaryWindows() {
    for (const QPointer<QWidget>& window : windows_) delete window;
}

void SecondaryWindows::add(QWidget& window) {
    windows_.erase(std::remove(windows_.begin(), windows_.end(), nullptr), windows_.end());
    windows_.emplace_back(&window);
    window.installEventFilter(this);
    const auto addCommand = [&window](const char* name, const QKeySequence& key) {
        auto* action = new QAction(&window);
        action->setObjectName(name);
        action->setShortcut(key);
        window.addAction(action);
        return action;
    };
    connect(addCommand("performClose", closeKey()), &QAction::triggered, &window, &QWidget::close);
    connect(addCommand("terminate", QKeySequence(Qt::CTRL | Qt::Key_Q)), &QAction::triggered, this,
            &SecondaryWindows::quitRequested);
    connect(addCommand("preferencesMenuItemTapped", preferencesKey()), &QAction::triggered, this,
            &SecondaryWindows::preferencesRequested);
    connect(addCommand("showHelp", QKeySequence::HelpContents), &QAction::triggered, this,
            &SecondaryWindows::helpRequested);
}

std::vector<QWidget*> SecondaryWindows::windows() const {
    std::vector<QWidget*> open;
    for (const QPointer<QWidget>& window : windows_) {
        if (window && !window->isHidden()) open.push_back(window);
    }
    return open;
}

void SecondaryWindows::closeAll() {
    for (QWidget* window : windows()) window->close();
}

bool SecondaryWindows::eventFilter(QObject* watched, QEvent* event) {
    auto* window = qobject_cast<QWidget*>(watched);
    if (event->type() == QEvent::Close && window != nullptr && !mayClose_(*window)) {
        event->ignore();
        return true;
    }
    return QObject::eventFilter(watched, event);
}

}  // namespace zorvel
