// screenshots FOLDER: writes the windows' states as pictures, light and dark, and in FOLDER/200 the
// same at twice the scale; with QT_SCALE_FACTOR at that scale alone. For looking at, and for the
// picture of the README; not a test.
#include <QApplication>
#include <QDialog>
#include <QDir>
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
#include <QTimer>
#include <QToolButton>
#include <functional>
#include <initializer_list>

#include "app/application_delegate.h"
#include "app/document_commands.h"
#include "app/preferences_view_controller.h"
#include "platform/preferences.h"
#include "platform/settings.h"
#include "tests/support/offscreen_home.h"
#include "tools/pictures/analysis_pictures.h"
#include "tools/pictures/picture_session.h"
#include "ui/kit/color_controls.h"
#include "ui/main/record_tables.h"

namespace {

using namespace zorvel;

class Session : public PictureSession {
  public:
    using PictureSession::PictureSession;

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
        takeRarefactionPictures(folder_, name_, jobs_, {openPanel_, savePanel_, alerts_});
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
        window_->mainView().startProgress(QString("importing census matrix..."), [] {});
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
        waitUntil([&] { return saved; });
        QFile::remove(path);
        window_->mainView().undo();
        waitUntil([this] { return window_->document().problem().has_value(); });
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
            save(*box, "alert-" + name_);
            box->close();
        });
        window_->mainView().calculateProjectWideMetrics();
    }

    void backups() {
        QString path;
        for (const char* time : {"08.00.00", "09.30.00", "17.45.12"}) {
            path = written(QString("moss 2024-05-01 %1.zorvel").arg(time), "backup");
        }
        QDialog& list =
            showBackups("moss", QFileInfo(path).path(), jobs_, *window_, [](const QString&) {});
        const auto& open = *list.findChild<QPushButton*>("openCopyButton");
        waitUntil([&] { return open.isEnabled(); });
        save(list, "backups-" + name_);
        delete &list;
    }

    void preferences() {
        ColorPanel colors;
        Preferences().setPlotColor(QColor("#d55e00"));
        PreferencesWindowController page(colors);
        page.setAttribute(Qt::WA_DeleteOnClose, false);
        const auto take = [&](const char* state) {
            QCoreApplication::processEvents();
            save(page, QString("preferences-") + state + name_);
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
            save(*panel, "color-panel-" + name_);
        }
        page.close();
        Preferences().setPlotColor(QColor(255, 0, 0));
    }

    QTableView* table(const char* name) { return &child<QTableView>(name); }

    void shot(const QString& state) {
        processEventsFor(100);
        save(*window_, state + '-' + name_);
    }

    QString name_;
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
