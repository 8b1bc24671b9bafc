// screenshots FOLDER: writes the window's states as pictures, light and dark, at the scale of
// QT_SCALE_FACTOR. For looking at, and for the picture of the README; not a test.
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QPixmap>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <functional>
#include <memory>

#include "app/backups_window.h"
#include "app/look_choice.h"
#include "app/preferences_window_controller.h"
#include "app/project_windows.h"
#include "app/start_up.h"
#include "metrics/random_source.h"
#include "platform/document_controller.h"
#include "platform/job_queue.h"
#include "platform/preferences.h"
#include "project_wide_pictures.h"
#include "tests/support/offscreen_home.h"
#include "ui/kit/alerts.h"
#include "ui/kit/color_panel.h"
#include "ui/kit/color_well.h"
#include "ui/kit/open_panel.h"
#include "ui/kit/save_panel.h"
#include "ui/main/main_view_controller.h"
#include "ui/main/main_window_controller.h"
#include "ui/main/record_tables.h"

namespace {

using namespace zorvel;

void settle(const std::function<bool()>& done) {
    QElapsedTimer timer;
    timer.start();
    while (!done() && timer.elapsed() < 10000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    QCoreApplication::processEvents();
}

class Session {
  public:
    Session(QApplication& application, QString folder)
        : look_(application),
          documents_(jobs_, {scratch_.filePath("untitled"), scratch_.filePath("backups")}),
          windows_(documents_, jobs_, [] { return std::make_unique<SeededRandom>(1); }, look_,
                   {panel_, savePanel_, alerts_}),
          folder_(std::move(folder)) {}

    void takeAll(LookChoice::Choice choice, const QString& name) {
        look_.choose(choice);
        name_ = name;
        window_ = &windows_.openUntitled();
        window_->resize(1024, 700);
        shot("empty");
        open(ZORVEL_SOURCE_DIR "/examples/oribatid-mites.csv");
        select(4);
        shot("main");
        open(written("small.csv", ",Abies alba,Larix decidua\nNorth,3,4\nSouth,30,25\n"));
        select(1);
        select(0);
        table("speciesTable")->selectRow(0);
        table("speciesTable")->setFocus();
        table("speciesTable")->sortByColumn(2, Qt::DescendingOrder);
        shot("sqs-absent");
        open(ZORVEL_SOURCE_DIR "/examples/oribatid-mites.csv");
        window_->findChild<QLineEdit*>("searchBar")->setText("or");
        window_->findChild<QLineEdit*>("searchBar")->setFocus();
        table("censusTable")->sortByColumn(1, Qt::AscendingOrder);
        window_->mainView().startProgress(std::string_view("importing census matrix..."));
        window_->mainView().showMessage("moss.csv could not be read (line 3, cell 7): example");
        shot("search");
        open(written("bad.csv", ",a,b\nNorth,3,x\n"));
        shot("bad");
        explanations();
        menus();
        alert();
        editing();
        failure();
        backups();
        preferences();
        takeProjectWidePictures(folder_, name_);
    }

  private:
    void explain(const char* value) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_F1, Qt::NoModifier);
        auto* field = window_->findChild<QWidget*>(value);
        field->setFocus();
        QApplication::sendEvent(field, &press);
    }

    void explanations() {
        open(ZORVEL_SOURCE_DIR "/examples/oribatid-mites.csv");
        select(4);
        explain("chaoOneValueTextField");
        shot("explanation");
        open(written("small.csv", ",Abies alba,Larix decidua\nNorth,3,4\nSouth,30,25\n"));
        select(1);
        select(0);
        explain("alroySQSValueTextField");
        shot("explanation-missing");
    }

    void menus() {
        for (const char* name : {"censusPopUpButton", "speciesPopUpButton"}) {
            auto* button = window_->findChild<QToolButton*>(name);
            const QPoint place = button->mapTo(window_, QPoint(0, button->height()));
            button->menu()->popup(window_->mapToGlobal(place));
            QPixmap picture = window_->grab();
            QPainter(&picture).drawPixmap(place, button->menu()->grab());
            button->menu()->close();
            picture.save(QString("%1/%2-%3.png").arg(folder_, name, name_));
        }
    }

    void alert() {
        QTimer::singleShot(200, window_, [this] {
            QWidget* box = QApplication::activeModalWidget();
            box->grab().save(QString("%1/alert-%2.png").arg(folder_, name_));
            box->close();
        });
        window_->mainView().calculateProjectWideMetrics();
    }

    void editing() {
        open(ZORVEL_SOURCE_DIR "/examples/oribatid-mites.csv");
        select(2);
        auto* species = window_->findChild<SpeciesTableView*>("speciesTable");
        species->beginEditing(species->model()->index(3, SpeciesTableView::kNameColumn));
        shot("editing-name");
        species->beginEditing(species->model()->index(4, SpeciesTableView::kAbundanceColumn));
        shot("editing-abundance");
        species->revertEditing();
        window_->mainView().addCensusRow();
        shot("added-census");
        window_->mainView().commitEditing();
        window_->mainView().addSpeciesRow();
        shot("added-species");
        window_->mainView().commitEditing();
    }

    void failure() {
        const QString path = scratch_.filePath("moss " + name_ + ".zorvel");
        bool saved = false;
        window_->document().saveAs(path, [&](const auto&) { saved = true; });
        settle([&] { return saved; });
        QFile::remove(path);
        window_->mainView().undo();
        settle([this] { return window_->document().problem().has_value(); });
        shot("failure");
    }

    void backups() {
        QStringList paths;
        for (const char* time : {"08.00.00", "09.30.00", "17.45.12"}) {
            paths.append(written(QString("moss 2024-05-01 %1.zorvel").arg(time), "backup"));
        }
        BackupsWindow list("moss", paths, window_);
        list.setAttribute(Qt::WA_DeleteOnClose, false);
        list.show();
        QCoreApplication::processEvents();
        list.grab().save(QString("%1/backups-%2.png").arg(folder_, name_));
    }

    void preferences() {
        DesktopColorPanel colors;
        Preferences().setPlotColor(QColor("#d55e00"));
        PreferencesWindowController page(colors);
        page.setAttribute(Qt::WA_DeleteOnClose, false);
        const auto take = [&](const char* state) {
            QCoreApplication::processEvents();
            page.grab().save(QString("%1/preferences-%2%3.png").arg(folder_, state, name_));
        };
        page.show();
        take("");
        page.findChild<QLineEdit*>("rarefactionSampleSizeValueTextField")->setText("25.5");
        page.findChild<QLineEdit*>("sqsQuotaValueTextField")->setText("1.2");
        page.findChild<QLineEdit*>("sqsQuotaValueTextField")->setFocus();
        Preferences().setPlotColor(QColor(0, 114, 178, 102));
        page.findChild<ColorWell*>("plotColorWell")->showColor(QColor(0, 114, 178, 102));
        take("refused-");
        page.findChild<ColorWell*>("plotColorWell")->click();
        QCoreApplication::processEvents();
        if (auto* panel = page.findChild<QDialog*>()) {
            panel->grab().save(QString("%1/color-panel-%2.png").arg(folder_, name_));
        }
        page.close();
        Preferences().setPlotColor(QColor(255, 0, 0));
    }

    QTableView* table(const char* name) { return window_->findChild<QTableView*>(name); }

    QString written(const QString& name, const QByteArray& text) {
        QFile file(scratch_.filePath(name));
        if (file.open(QIODevice::WriteOnly)) file.write(text);
        return file.fileName();
    }

    void open(const QString& path) {
        if (!windows_.isFree(*window_)) {
            window_ = &windows_.openUntitled();
            window_->resize(1024, 700);
        }
        windows_.openFile(path, window_);
        settle([this] { return !window_->mainView().isInProgress(); });
    }

    void select(int row) {
        table("censusTable")->selectRow(row);
        QElapsedTimer timer;
        timer.start();
        settle([&] { return timer.elapsed() > 150; });
    }

    void shot(const QString& state) {
        QCoreApplication::processEvents();
        window_->grab().save(QString("%1/%2-%3.png").arg(folder_, state, name_));
    }

    JobQueue jobs_;
    LookChoice look_;
    DesktopOpenPanel panel_;
    DesktopSavePanel savePanel_;
    DesktopAlerts alerts_;
    QTemporaryDir scratch_;
    DocumentController documents_;
    ProjectWindows windows_;
    QString folder_;
    QString name_;
    MainWindowController* window_ = nullptr;
};

}  // namespace

int main(int argc, char** argv) {
    const OffscreenHome home;
    QApplication application(argc, argv);
    const QString folder = application.arguments().value(1, ".");
    QDir().mkpath(folder);
    setUpApplication();
    Session session(application, folder);
    session.takeAll(LookChoice::light, "light");
    session.takeAll(LookChoice::dark, "dark");
    return 0;
}
