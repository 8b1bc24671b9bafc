// help_pictures FOLDER: draws the pictures of the help, in the light look, without a display; those
// of the tutorial come from doing it. The projects are those that the pages speak of, and the
// random numbers are the same at every call.
#include <QAction>
#include <QDir>
#include <QPushButton>
#include <QRegularExpression>
#include <cstdio>

#include "app/application_delegate.h"
#include "app/imports.h"
#include "tests/support/offscreen_home.h"
#include "tools/pictures/picture_session.h"
#include "ui/kit/small_widgets.h"
#include "ui/main/record_tables.h"
#include "ui/tables/table_dialog.h"

namespace {

using namespace zorvel;

const QByteArray plots =
    "plot,Abies alba,Picea abies,Larix decidua,Acer pseudoplatanus,Sorbus aucuparia,Taxus baccata\n"
    "North,10,5,3,2,1,1\nSouth,4,2,8,0,1,0\nEast,0,3,2,6,0,0\nWest,7,0,2,1,0,0\n"
    "Summit,0,2,11,1,0,0\n";

class HelpPictures : public PictureSession {
  public:
    using PictureSession::PictureSession;

    bool drawAll() {
        look_.choose(LookChoice::light);
        draw(ZORVEL_SOURCE_DIR "/examples/oribatid-mites.csv", 4);
        save(*window_, "window");
        child<CensusTableView>("censusTable").selectRows({0, 1, 2, 3, 4});
        if (!saveWindowOf("diversityAtEqualCoverageMenuItemTapped", "diversity")) return false;
        draw(written("stands.csv", plots), 0);
        return saveWindowOf("projectwideMetricsMenuItemTapped", "project-wide") && saveTables();
    }

  private:
    // What is computed in the background and what fades in arrive.
    static void settle() { processEventsFor(400); }

    void draw(const QString& path, int census) {
        openWindow();
        open(path, census);
        settle();
    }

    // How the window for tables shows each example of the page on spreadsheets.
    bool saveTables() {
        QFile page(ZORVEL_SOURCE_DIR "/docs/help/spreadsheet.html");
        if (!page.open(QIODevice::ReadOnly)) return false;
        const QString text = QString::fromUtf8(page.readAll());
        static const QRegularExpression example("<pre data-file=\"((\\w+)[^\"]*)\">([^<]*)</pre>");
        openWindow();
        auto found = example.globalMatch(text);
        while (found.hasNext()) {
            const QRegularExpressionMatch each = found.next();
            KnownFile table;
            table.file =
                std::make_shared<NamedFile>(written(each.captured(1), each.captured(3).toUtf8()));
            table.isText = table.isTable = true;
            importFiles(windows_, CommandWindow(window_), {table}, window_);
            TableDialog* dialog = nullptr;
            const auto isShown = [&] {
                dialog = window_->findChild<TableDialog*>();
                return dialog != nullptr && child<QPushButton>("tableImportButton").isEnabled();
            };
            if (!waitUntil(isShown)) {
                std::fprintf(stderr, "%s cannot be imported\n", qPrintable(each.captured(1)));
                return false;
            }
            dialog->resize(900, 440);
            settle();
            save(*dialog, "table-" + each.captured(2));
            delete dialog;
        }
        return true;
    }

    // The window that a command opens.
    bool saveWindowOf(const char* command, const char* name) {
        const QWidgetList before = QApplication::topLevelWidgets();
        child<QAction>(command).trigger();
        QWidget* opened = nullptr;
        waitUntil([&] {
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                if (widget->isVisible() && !before.contains(widget)) opened = widget;
            }
            return opened != nullptr;
        });
        if (opened == nullptr) {
            std::fprintf(stderr, "%s opens no window\n", command);
            return false;
        }
        opened->resize(1000, 620);  // there is no desktop that it must fit
        settle();
        waitUntil([opened] { return !opened->findChild<Spinner*>()->isAnimated(); });
        save(*opened, name);
        opened->close();
        return true;
    }
};

}  // namespace

int main(int argc, char** argv) {
    const OffscreenHome home;
    QApplication application(argc, argv);
    const QString folder = application.arguments().value(1, ".");
    QDir().mkpath(folder);
    setUpApplication();
    return HelpPictures(application, folder).drawAll() ? 0 : 1;
}
