// help_pictures FOLDER: draws the pictures of the help, in the light look, without a display; those
// of the tutorial come from doing it. The projects are those that the pages speak of, and the
// random numbers are the same at every call.
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QPixmap>
#include <QTableView>
#include <QTemporaryDir>
#include <cstdio>
#include <memory>

#include "app/look_choice.h"
#include "app/project_windows.h"
#include "app/application_delegate.h"
#include "metrics/random_source.h"
#include "platform/document_controller.h"
#include "platform/job_queue.h"
#include "tests/support/offscreen_home.h"
#include "tests/support/wait_until.h"
#include "ui/kit/panels.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"

namespace {

using namespace zorvel;

const QByteArray plots =
    "plot,Abies alba,Picea abies,Larix decidua,Acer pseudoplatanus,Sorbus aucuparia,Taxus baccata\n"
    "North,10,5,3,2,1,1\nSouth,4,2,8,0,1,0\nEast,0,3,2,6,0,0\nWest,7,0,2,1,0,0\n"
    "Summit,0,2,11,1,0,0\n";

// What is computed in the background and what fades in arrive.
void settle() {
    processEventsFor(400);
}

class Painter {
  public:
    Painter(QApplication& application, QString folder)
        : look_(application),
          documents_(jobs_, {scratch_.filePath("untitled"), scratch_.filePath("backups")}),
          windows_(documents_, jobs_, [] { return std::make_unique<SeededRandom>(1); }, look_,
                   {openPanel_, savePanel_, alerts_}),
          folder_(std::move(folder)) {
        look_.choose(LookChoice::light);
    }

    bool drawAll() {
        open(ZORVEL_SOURCE_DIR "/examples/oribatid-mites.csv", 4);
        save("window", *window_);
        open(written("stands.csv", plots), 0);
        saveWindowOf("projectwideMetricsMenuItemTapped", "project-wide");
        return complete_;
    }

  private:
    void open(const QString& path, int census) {
        window_ = &windows_.openUntitled();
        window_->resize(1024, 700);
        windows_.openFile(path, window_);
        waitUntil([this] { return !window_->mainView().isInProgress(); });
        window_->findChild<QTableView*>("censusTable")->selectRow(census);
        settle();
    }

    // The window that a command opens.
    void saveWindowOf(const char* command, const char* name) {
        const QWidgetList before = QApplication::topLevelWidgets();
        window_->findChild<QAction*>(command)->trigger();
        QWidget* opened = nullptr;
        waitUntil([&] {
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                if (widget->isVisible() && !before.contains(widget)) opened = widget;
            }
            return opened != nullptr;
        });
        if (opened == nullptr) {
            std::fprintf(stderr, "%s opens no window\n", command);
            complete_ = false;
            return;
        }
        opened->resize(1000, 620);  // there is no desktop that it must fit
        settle();
        save(name, *opened);
        opened->close();
    }

    void save(const char* name, QWidget& widget) {
        complete_ = widget.grab()
                        .toImage()
                        .convertToFormat(QImage::Format_RGB32)
                        .save(QString("%1/%2.png").arg(folder_, name)) &&
                    complete_;
    }

    QString written(const QString& name, const QByteArray& text) {
        QFile file(scratch_.filePath(name));
        complete_ = file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && complete_;
        return file.fileName();
    }

    JobQueue jobs_;
    LookChoice look_;
    DesktopOpenPanel openPanel_;
    DesktopSavePanel savePanel_;
    DesktopAlerts alerts_;
    QTemporaryDir scratch_;
    DocumentController documents_;
    ProjectWindows windows_;
    QString folder_;
    MainWindowController* window_ = nullptr;
    bool complete_ = true;
};

}  // namespace

int main(int argc, char** argv) {
    const OffscreenHome home;
    QApplication application(argc, argv);
    const QString folder = application.arguments().value(1, ".");
    QDir().mkpath(folder);
    setUpApplication();
    return Painter(application, folder).drawAll() ? 0 : 1;
}
