// The work that runs in the background: the line that shows it, and its end.
#include <QKeyEvent>
#include <algorithm>
#include <utility>

#include "ui/kit/shown_text.h"
#include "ui/main/main_view_controller.h"
#include "ui_main_view.h"

namespace zorvel {

MainView::ProgressId MainViewController::startProgress(const QString& text,
                                                       std::function<void()> cancel,
                                                       bool isImport) {
    works_.append({++worksStarted_, text, std::move(cancel), isImport});
    showProgress();
    return worksStarted_;
}

MainView::ProgressId MainViewController::startImportProgress(const std::string& text,
                                                             std::function<void()> cancel) {
    return startProgress(QString::fromStdString(text), std::move(cancel), true);
}

void MainViewController::stopProgress(ProgressId progress) {
    works_.removeIf([progress](const RunningWork& work) { return work.number == progress; });
    showProgress();
}

bool MainViewController::isInProgressBeside(ProgressId progress) const {
    return std::any_of(works_.begin(), works_.end(),
                       [progress](const RunningWork& work) { return work.number != progress; });
}

bool MainViewController::isImporting() const {
    return std::any_of(works_.begin(), works_.end(),
                       [](const RunningWork& work) { return work.isImport; });
}

// Cancelling changes the list.
void MainViewController::cancelImports() {
    for (const RunningWork& work : QList<RunningWork>(works_)) {
        if (work.isImport && work.cancel) work.cancel();
    }
}

bool MainViewController::canCancelProgress() const {
    return !works_.isEmpty() && works_.back().cancel;
}

// Cancelling may end the work, and with it the function.
void MainViewController::cancelProgress() {
    if (!canCancelProgress()) return;
    const std::function<void()> cancel = works_.back().cancel;
    cancel();
}

// Only keys that the widget with the focus does not handle.
void MainViewController::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Cancel) && canCancelProgress()) return cancelProgress();
    QWidget::keyPressEvent(event);
}

void MainViewController::showProgress() {
    if (isInProgress()) {
        ui_->progressIndicator->startAnimation();
    } else {
        ui_->progressIndicator->stopAnimation();
    }
    ui_->progressLabel->setText(isInProgress() ? oneLine(works_.back().text) : QString());
    ui_->cancelProgressButton->setVisible(canCancelProgress());
    ui_->progressRow->setVisible(isInProgress());
    showRightPage();
}

}  // namespace zorvel
