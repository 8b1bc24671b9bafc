// screenshots FOLDER: writes the windows' states as pictures, light and dark, and in FOLDER/200 the
// same at twice the scale; with QT_SCALE_FACTOR at that scale alone. For looking at, and for the
// picture of the README; not a test.
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
#include <QProcess>
#include <QProcessEnvironment>
#include <QPushButton>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <functional>
#include <initializer_list>
#include <memory>

#include "app/application_delegate.h"
#include "app/backups_window.h"
#include "app/look_choice.h"
#include "app/preferences_view_controller.h"
#include "app/project_windows.h"
#include "metrics/random_source.h"
#include "platform/document_controller.h"
#include "platform/job_queue.h"
#include "platform/preferences.h"
#include "platform/settings.h"
#include "project_wide_pictures.h"
#include "rarefaction_pictures.h"
#include "tests/support/offscreen_home.h"
#include "ui/kit/color_controls.h"
#include "ui/kit/panels.h"
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

void settleFor(int milliseconds) {
    QElapsedTimer timer;
    timer.start();
    settle([&] { return timer.elapsed() > milliseconds; });
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
        clearSettings();
        Preferences().initializePreferences();
        look_.choose(choice);
        name_ = name;
        for (const State& state : states) {
            openWindow();
            (this->*state.lead)();
            shot(state.name);
        }
        menus();
        alert();
        backups();
        preferences();
        takeProjectWidePictures(folder_, name_);
        takeRarefactionPictures(folder_, name_, jobs_, {panel_, savePanel_, alerts_});
    }

  private:
    // A state of the main window, and what leads an empty one into it.
    struct State {
        const char* name;
        void (Session::*lead)();
    };
    static const std::initializer_list<State> states;

    void empty() {}
    void typical() {
        openMites();
        select(4);
    }
    void unreadable() { open(written("bad.csv", ",a,b\nNorth,3,4\nSouth,3,x\n")); }
    void sqsAbsent() {
        openSmall();
        table("speciesTable")->selectRow(0);
        table("speciesTable")->setFocus();
        table("speciesTable")->sortByColumn(2, Qt::DescendingOrder);
    }
    void search() {
        openMites();
        child<QLineEdit>("searchBar").setText("or");
        child<QLineEdit>("searchBar").setFocus();
        table("censusTable")->sortByColumn(1, Qt::AscendingOrder);
    }
    void noHits() {
        search();
        child<QLineEdit>("searchBar").setText("orca");
    }
    void progress() {
        openMites();
        window_->mainView().startProgress("importing census matrix...", [] {});
    }
    void messages() {
        typical();
        window_->mainView().messageStrip().addMessage(
            "moss.csv could not be read (line 3, cell 7): example");
        window_->mainView().messageStrip().addMessage(
            "No species was added: select a census first.");
    }
    void explanation() {
        typical();
        explain("chaoOneValueTextField");
    }
    void explanationOfNone() {
        openSmall();
        explain("alroySQSValueTextField");
    }
    void sharedNames() {
        open(written("shared.csv",
                     ",Abies alba,Larix decidua,Abies alba,Picea abies,Pinus cembra\n"
                     "North,3,4,5,1,2\nSouth,30,25,1,0,0\nNorth,1,2,3,4,5\n"));
        select(0);
    }
    void editingName() {
        openMites();
        select(2);
        edit(3, SpeciesTableView::kNameColumn);
    }
    void completing() {
        openMites();
        select(2);
        window_->mainView().addSpeciesRow();
        type("Lep");
    }
    void editingAbundance() {
        openMites();
        select(2);
        edit(4, SpeciesTableView::kAbundanceColumn);
        type("12x");
        press(Qt::Key_Tab);
    }
    void addedCensus() {
        openMites();
        window_->mainView().addCensusRow();
    }
    void addedSpecies() {
        openMites();
        window_->mainView().addSpeciesRow();
    }
    void details() {
        openMites();
        child<QLineEdit>("longitudeTextField").setFocus();
        type("7.25");
        child<QLineEdit>("dateTextField").setFocus();
        type("2024-05-31 14:05");
        child<QWidget>("notesTextView").setFocus();
        type("Moss on the north side of the old beech, sieved.");
        child<QLineEdit>("latitudeTextField").setFocus();
        child<QLineEdit>("latitudeTextField").selectAll();
        type("91");
        press(Qt::Key_Return);
    }
    void notes() {
        openMites();
        child<QWidget>("notesTextView").setFocus();
        type("Moss on the north side");
    }
    void failure() {
        openSmall();
        window_->mainView().addCensusRow();
        window_->mainView().commitEditing();
        const QString path = scratch_.filePath("moss " + name_ + ".zorvel");
        bool saved = false;
        window_->document().saveAs(path, [&](const auto&) { saved = true; });
        settle([&] { return saved; });
        QFile::remove(path);
        window_->mainView().undo();
        settle([this] { return window_->document().problem().has_value(); });
    }

    void openMites() { open(ZORVEL_SOURCE_DIR "/examples/oribatid-mites.csv"); }
    // Of the second of its censuses there is an SQS estimate, of the first there is none.
    void openSmall() {
        open(written("small.csv", ",Abies alba,Larix decidua\nNorth,3,4\nSouth,30,25\n"));
        select(1);
        select(0);
    }
    void edit(int row, int column) {
        auto& species = child<SpeciesTableView>("speciesTable");
        species.beginEditing(species.model()->index(row, column));
    }
    // To what has the focus.
    void press(int key, const QString& text = {}) {
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier, text);
        QApplication::sendEvent(window_->focusWidget(), &down);
    }
    void type(const QString& text) {
        for (const QChar character : text) press(Qt::Key_unknown, character);
    }
    void explain(const char* value) {
        child<QWidget>(value).setFocus();
        press(Qt::Key_F1);
    }

    void menus() {
        openWindow();
        typical();
        for (const char* name : {"censusPopUpButton", "speciesPopUpButton"}) {
            auto& button = child<QToolButton>(name);
            const QPoint place = button.mapTo(window_, QPoint(0, button.height()));
            button.menu()->popup(window_->mapToGlobal(place));
            QPixmap picture = window_->grab();
            QPainter(&picture).drawPixmap(place, button.menu()->grab());
            button.menu()->close();
            picture.save(QString("%1/%2-%3.png").arg(folder_, name, name_));
        }
    }

    void alert() {
        openWindow();
        openSmall();
        QTimer::singleShot(200, window_, [this] {
            QWidget* box = QApplication::activeModalWidget();
            box->grab().save(QString("%1/alert-%2.png").arg(folder_, name_));
            box->close();
        });
        window_->mainView().calculateProjectWideMetrics();
    }

    void backups() {
        QString path;
        for (const char* time : {"08.00.00", "09.30.00", "17.45.12"}) {
            path = written(QString("moss 2024-05-01 %1.zorvel").arg(time), "backup");
        }
        BackupsWindow list("moss", QFileInfo(path).path(), jobs_, window_);
        list.setAttribute(Qt::WA_DeleteOnClose, false);
        list.show();
        const auto& open = *list.findChild<QPushButton*>("openCopyButton");
        settle([&] { return open.isEnabled(); });
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
        page.findChild<ColorWell*>("plotColorWell")->choose(QColor(0, 114, 178, 102));
        take("refused-");
        page.findChild<ColorWell*>("plotColorWell")->click();
        QCoreApplication::processEvents();
        if (auto* panel = page.findChild<QDialog*>()) {
            panel->grab().save(QString("%1/color-panel-%2.png").arg(folder_, name_));
        }
        page.close();
        Preferences().setPlotColor(QColor(255, 0, 0));
    }

    template <class Widget>
    Widget& child(const char* name) {
        return *window_->findChild<Widget*>(name);
    }
    QTableView* table(const char* name) { return &child<QTableView>(name); }

    QString written(const QString& name, const QByteArray& text) {
        QFile file(scratch_.filePath(name));
        if (file.open(QIODevice::WriteOnly)) file.write(text);
        return file.fileName();
    }

    void openWindow() {
        window_ = &windows_.openUntitled();
        window_->resize(1024, 700);
        settle([this] { return window_->isActiveWindow(); });
    }

    void open(const QString& path) {
        windows_.openFile(path, window_);
        settle([this] { return !window_->mainView().isInProgress(); });
        select(0);
    }

    void select(int row) {
        table("censusTable")->selectRow(row);
        settleFor(150);
    }

    void shot(const QString& state) {
        settleFor(100);
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

const std::initializer_list<Session::State> Session::states = {
    {"empty", &Session::empty},
    {"main", &Session::typical},
    {"bad", &Session::unreadable},
    {"sqs-absent", &Session::sqsAbsent},
    {"search", &Session::search},
    {"search-none", &Session::noHits},
    {"progress", &Session::progress},
    {"messages", &Session::messages},
    {"explanation", &Session::explanation},
    {"explanation-missing", &Session::explanationOfNone},
    {"shared-names", &Session::sharedNames},
    {"editing-name", &Session::editingName},
    {"completion", &Session::completing},
    {"editing-abundance", &Session::editingAbundance},
    {"added-census", &Session::addedCensus},
    {"added-species", &Session::addedSpecies},
    {"details", &Session::details},
    {"notes", &Session::notes},
    {"failure", &Session::failure},
};

// The scale of a program is set before it starts.
int takeAllAtDoubleScale(const QString& folder) {
    QProcess again;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_SCALE_FACTOR", "2");
    again.setProcessEnvironment(environment);
    again.setProcessChannelMode(QProcess::ForwardedChannels);
    again.start(QCoreApplication::applicationFilePath(), {folder + "/200"});
    again.waitForFinished(-1);
    return again.exitCode();
}

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
    return qEnvironmentVariableIsSet("QT_SCALE_FACTOR") ? 0 : takeAllAtDoubleScale(folder);
}
