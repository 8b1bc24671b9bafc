// A running program without a display, whose windows are led into a state and drawn. The random
// numbers are the same at every call. Main thread.
#pragma once

#include <QApplication>
#include <QFile>
#include <QTableView>
#include <QTemporaryDir>
#include <memory>
#include <utility>

#include "app/look_choice.h"
#include "app/project_windows.h"
#include "metrics/random_source.h"
#include "platform/document_controller.h"
#include "platform/job_queue.h"
#include "tests/support/wait_until.h"
#include "ui/kit/panels.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace zorvel {

class PictureSession {
  public:
    PictureSession(QApplication& application, QString folder)
        : look_(application), folder_(std::move(folder)) {}

  protected:
    void openWindow() {
        window_ = &windows_.openUntitled();
        window_->resize(1024, 700);
        waitUntil([this] { return window_->isActiveWindow(); });
    }
    // Opens the file in the window and selects one of its censuses.
    void open(const QString& path, int census = 0) {
        windows_.openFiles({path}, window_);
        waitUntil([this] { return !window_->mainView().isInProgress(); });
        select(census);
    }
    void select(int census) {
        child<QTableView>("censusTable").selectRow(census);
        processEventsFor(150);
    }
    QString written(const QString& name, const QByteArray& text) {
        QFile file(scratch_.filePath(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
            qFatal("%s cannot be written", qPrintable(file.fileName()));
        }
        return file.fileName();
    }
    void save(QWidget& widget, const QString& name) const {
        const QString path = folder_ + '/' + name + ".png";
        if (!widget.grab().toImage().convertToFormat(QImage::Format_RGB32).save(path)) {
            qFatal("%s cannot be written", qPrintable(path));
        }
    }
    template <class Widget>
    Widget& child(const char* name) {
        return *window_->findChild<Widget*>(name);
    }

    JobQueue jobs_;
    LookChoice look_;
    OpenPanel openPanel_;
    SavePanel savePanel_;
    Alerts alerts_;
    QTemporaryDir scratch_;
    DocumentController documents_{jobs_,
                                  {scratch_.filePath("untitled"), scratch_.filePath("backups")}};
    ProjectWindows windows_{documents_,
                            jobs_,
                            [] { return std::make_unique<SeededRandom>(1); },
                            look_,
                            {openPanel_, savePanel_, alerts_}};
    QString folder_;
    MainWindowController* window_ = nullptr;
};

}  // namespace zorvel
