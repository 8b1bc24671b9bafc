// What reaches the paper: pages are printed to PDF files and read back.
#include <QFileInfo>
#include <QPainter>
#include <QPdfWriter>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>

#include "app/printing.h"
#include "ui/analysis/plot_files.h"
#include "ui/analysis/project_wide_metrics_window_controller.h"
#include "ui/analysis/rarefaction_view_controller.h"
#include "ui/kit/printed_sheet.h"
#include "window_fixture.h"

namespace zorvel {
namespace {

QByteArray outputOf(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished());
    EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
    return process.readAllStandardOutput();
}

QStringList pageTexts(const QString& path) {
    QString text = QString::fromUtf8(outputOf("pdftotext", {"-layout", path, "-"}));
    QStringList pages = text.replace(QChar(0xFB01), "fi").split('\f');  // the ligature
    pages.removeLast();
    return pages;
}

// The lines of a page, white space within them made one space.
QStringList linesOf(const QString& page) {
    QStringList lines;
    for (const QString& line : page.split('\n')) {
        if (const QString words = line.simplified(); !words.isEmpty()) lines.append(words);
    }
    return lines;
}

PrintedTable numberedTable(int rows) {
    PrintedTable table;
    table.heading = "Numbers";
    table.columns = {{"Name", 3, false}, {"Count", 1, true}};
    for (int row = 0; row < rows; ++row) {
        table.rows.append({QString("name %1").arg(row), QString::number(row)});
    }
    return table;
}

TEST(PrintedSheet, RowsAreSharedOutAmongPages) {
    const auto shown = [](const QList<QList<PrintedPart>>& pages) {
        QStringList texts;
        for (const QList<PrintedPart>& parts : pages) {
            QStringList text;
            for (const PrintedPart& part : parts) {
                text.append(QString("%1:%2+%3").arg(part.table).arg(part.firstRow).arg(part.rows));
            }
            texts.append(text.join(' '));
        }
        return texts.join(" | ").toStdString();
    };
    // Footer and title 26 points each, a heading 32, a header 18, a row 15.
    const struct {
        QList<int> tables;  // how many rows each has
        double height;
        std::string pages;
    } cases[] = {
        {{}, 200, ""},
        {{0}, 200, ""},
        {{1}, 117, "0:0+1"},
        {{1}, 116, " | 0:0+1"},
        {{2}, 131, "0:0+1 | 0:1+1"},
        {{2}, 132, "0:0+2"},
        {{9}, 132, "0:0+2 | 0:2+5 | 0:7+2"},
        {{1, 1}, 181, "0:0+1 | 1:0+1"},
        {{1, 1}, 182, "0:0+1 1:0+1"},
        {{3}, 10, " | 0:0+1 | 0:1+1 | 0:2+1"},
    };
    for (const auto& c : cases) {
        PrintedSheet sheet;
        for (const int rows : c.tables) sheet.tables.append(numberedTable(rows));
        EXPECT_EQ(shown(pagesOf(sheet, c.height)), c.pages) << c.height;
    }
}

class PrintingTest : public WindowTest {
  protected:
    QString pdf(const char* name = "out.pdf") { return folder.filePath(name); }
};

TEST_F(PrintingTest, LongTablesRepeatTheirHeaderOnNumberedPages) {
    PrintedSheet sheet;
    sheet.title = "A title";
    sheet.lines = {QString("word ").repeated(60) + "end"};
    sheet.tables = {numberedTable(120)};
    for (const bool some : {false, true}) {
        {
            QPdfWriter writer(pdf());
            writer.setPageSize(QPageSize(QPageSize::A4));
            if (some) writer.setPageRanges(QPageRanges::fromString("2-3"));
            ASSERT_TRUE(printSheet(writer, sheet));
        }
        const QStringList pages = pageTexts(pdf());
        ASSERT_EQ(pages.size(), some ? 2 : 3);
        QStringList rows;
        for (const QString& page : pages) {
            const QStringList lines = linesOf(page);
            EXPECT_EQ(lines.count("Name Count"), 1);
            rows += lines.filter(QRegularExpression("^name \\d+ \\d+$"));
        }
        EXPECT_TRUE(linesOf(pages.back()).back().endsWith("Page 3 of 3"));
        EXPECT_EQ(rows.back(), "name 119 119");
        if (some) continue;
        EXPECT_EQ(rows.size(), 120);
        EXPECT_EQ(linesOf(pages.front()).front(), "A title");
        EXPECT_TRUE(pages.front().contains("word end"));
        EXPECT_EQ(linesOf(pages.front()).count("Numbers"), 1);
        EXPECT_FALSE(linesOf(pages.back()).contains("Numbers"));
    }
}

TEST_F(PrintingTest, ADrawingStandsInTheMiddleAndShrinksOnlyWhereItMust) {
    const struct {
        QSize size;
        QRectF place;  // on a page of 400 by 300 points
    } cases[] = {{{100, 100}, {150, 100, 100, 100}}, {{800, 200}, {0, 100, 400, 100}}};
    for (const auto& c : cases) {
        QTransform seen;
        {
            QPdfWriter writer(pdf());
            writer.setResolution(720);
            writer.setPageSize(QPageSize(QSizeF(400, 300), QPageSize::Point));
            writer.setPageMargins(QMarginsF());
            ASSERT_TRUE(printDrawing(
                writer, {c.size, "plot", [&](QPainter& painter) { seen = painter.transform(); }}));
        }
        const QRectF place = seen.mapRect(QRectF(QPointF(), c.size));
        EXPECT_EQ(QRectF(place.topLeft() / 10, place.size() / 10), c.place);
    }
}

// Always answers with a file.
class FakePrintPanel : public PrintPanel {
  public:
    std::optional<PrintTarget> choosePrinter(QWidget* /*parent*/, const QString& title,
                                             QPageLayout::Orientation orientation) override {
        titles.append(title);
        if (path.isEmpty()) return std::nullopt;
        PrintTarget target;
        target.path = path;
        target.layout =
            QPageLayout(QPageSize(QPageSize::A4), orientation, QMarginsF(15, 15, 15, 15));
        return target;
    }
    QString path;
    QStringList titles;
};

class PrintCommandTest : public PrintingTest {
  protected:
    void SetUp() override {
        PrintingTest::SetUp();
        printOnRequest(*windows, printPanel);
        printPanel.path = pdf();
        open(exampleFile);
        ASSERT_TRUE(waitForJobs());
    }
    QStringList printed() {
        EXPECT_TRUE(waitUntil([this] { return QFileInfo::exists(printPanel.path); }));
        return pageTexts(printPanel.path);
    }
    FakePrintPanel printPanel;
};

TEST_F(PrintCommandTest, TheSelectedCensusWithItsMetricsAndSpecies) {
    editInclude(context(), {context().censuses().front().taxa().front()}, false);
    context().announceChanges();
    ASSERT_TRUE(waitForJobs());
    trigger("print");
    const QStringList lines = linesOf(printed().join('\n'));
    const std::string name = cell(censusTable(), 0, 0);
    EXPECT_EQ(lines.front().toStdString(), name);
    EXPECT_EQ(printPanel.titles, QStringList{QString::fromStdString(name)});
    EXPECT_TRUE(lines.contains("Project: oribatid-mites"));
    EXPECT_TRUE(lines.contains("Individuals " + QString::fromStdString(text("individuals"))));
    EXPECT_TRUE(lines.filter("Chao1").join(' ').endsWith(QString::fromStdString(text("chaoOne"))));
    for (int row = 0; row < speciesTable().model()->rowCount(); ++row) {
        const std::string line = cell(speciesTable(), row, 1) + " " + cell(speciesTable(), row, 2) +
                                 (row == 0 ? " no" : " yes");
        EXPECT_TRUE(lines.contains(QString::fromStdString(line).simplified())) << line;
    }
    ASSERT_TRUE(waitUntil([this] { return !strip().messages().empty(); }));
    EXPECT_EQ(strip().messages(), QStringList{"Printed to out.pdf."});
}

TEST_F(PrintCommandTest, WithoutASelectedCensusTheStripTellsWhy) {
    censusTable().clearSelection();
    trigger("print");
    EXPECT_EQ(printPanel.titles, QStringList());
    EXPECT_EQ(strip().messages(),
              QStringList{"Nothing was printed: select the census to be printed first."});
}

TEST_F(PrintCommandTest, MetricsOfTheProject) {
    trigger("projectwideMetricsMenuItemTapped");
    auto* metrics = window->mainView().projectWideMetricsWindowController();
    auto* button = metrics->findChild<QPushButton*>("printMetrics");
    EXPECT_FALSE(button->isEnabled());
    ASSERT_TRUE(waitUntil([&] { return button->isEnabled(); }));
    button->click();
    const QStringList lines = linesOf(printed().join('\n'));
    EXPECT_EQ(lines.front(), "oribatid-mites");
    for (const auto* field : metrics->findChildren<ValueField*>()) {
        const QString line = field->accessibleName() + ' ' + field->text();
        EXPECT_TRUE(lines.contains(line.simplified())) << line.toStdString();
    }
    EXPECT_TRUE(lines.contains("Average of the censuses"));
}

TEST_F(PrintCommandTest, ThePlotOfACurve) {
    trigger("individualBasedRarefactionMenuItemTapped");
    ASSERT_TRUE(waitUntil([this] { return window->mainView().rarefactionWindowController(); }));
    auto* plot = window->mainView().rarefactionWindowController();
    plot->findChild<QPushButton*>("printPlotButton")->click();
    const QStringList pages = printed();
    EXPECT_EQ(pages.size(), 1);
    // The ticks of both axes begin with 0.
    EXPECT_EQ(linesOf(pages.front()).join(' ').split(' ').count("0"), 2);
    EXPECT_EQ(printPanel.titles, QStringList{plot->viewController().drawing().title});
}

TEST_F(PrintCommandTest, NothingWhereThePanelIsCancelledAndAnAlertWhereTheFileFails) {
    printPanel.path.clear();
    trigger("print");
    printPanel.path = folder.filePath("no/folder/out.pdf");
    trigger("print");
    ASSERT_TRUE(waitUntil([this] { return !alerts.warnings.empty(); }));
    EXPECT_EQ(alerts.warnings,
              QStringList{"“out.pdf” could not be written: No such file or directory"});
    EXPECT_EQ(strip().messages(), QStringList());
}

}  // namespace
}  // namespace zorvel
