#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include "base/console.h"
#include "interchange/writers.h"
#include "platform/job_queue.h"
#include "platform/preferences.h"
#include "platform/settings.h"
#include "tests/support/extreme_values.h"
#include "tests/support/wait_until.h"
#include "ui/analysis/rarefaction_view.h"
#include "ui/analysis/rarefaction_view_controller.h"
#include "ui/fake_panels.h"

namespace zorvel {
namespace {

// Estimate r at sample size r, limits 2 around it at 95% and 4 at 99%: at 95% the axes end at 20
// and 22, at 99% at 20 and 24.
std::vector<Rarefaction> straightCurve() {
    std::vector<Rarefaction> curve;
    for (int r = 1; r <= 20; ++r) {
        const double value = r;
        curve.push_back({r, value, 1, value - 2, value + 2, value - 4, value + 4});
    }
    return curve;
}

class RarefactionWindowTest : public ::testing::Test {
  protected:
    void SetUp() override {
        clearSettings();
        Preferences().initializePreferences();
        Preferences().setPlotColor(QColor(0, 0, 255));
        setConsoleSink([this](std::string_view line) { console.emplace_back(line); });
    }
    void TearDown() override {
        window.reset();
        jobs.reset();
        setConsoleSink({});
    }

    void show(std::vector<Rarefaction> curve,
              RarefactionKind kind = RarefactionKind::individualBased) {
        window = std::make_unique<RarefactionWindowController>(
            kind, *jobs, Panels{openPanel, savePanel, alerts});
        window->viewController().setRarefactionData(std::move(curve), "North");
        window->show();
        QCoreApplication::processEvents();
    }

    RarefactionViewController& controller() { return window->viewController(); }
    RarefactionView& view() { return controller().rarefactionView(); }
    std::string label(const char* name) {
        auto* found = window->findChild<QLabel*>(name);
        return found->isVisible() ? found->text().toStdString() : std::string();
    }
    // The view drawn alone, a pixel a point.
    QImage drawn(const QColor& ground = Qt::green) {
        QImage image(view().size(), QImage::Format_RGB32);
        image.fill(ground);
        QPainter painter(&image);
        view().drawRect(painter);
        return image;
    }
    QPoint pixelOf(double size, double richness) {
        const QPointF place = view().geometry().pointOf(size, richness);
        return {static_cast<int>(place.x()), static_cast<int>(view().height() - place.y())};
    }
    // What stands in the picture of the plot, of as many pixels a point, at a few known places.
    void expectPlot(const QImage& image, int scale) {
        ASSERT_EQ(image.size(), view().size() * scale);
        const struct {
            double size;
            double richness;
            QColor color;
        } rows[] = {{10.5, 10.5, QColor(0, 0, 255)},
                    {10.5, 11.8, QColor(204, 204, 255)},
                    {10.5, 9.2, QColor(204, 204, 255)},
                    {10.5, 14, Qt::white},
                    {10.5, 5, Qt::white}};
        for (const auto& row : rows) {
            const QColor color = image.pixelColor(pixelOf(row.size, row.richness) * scale);
            EXPECT_NEAR(color.red(), row.color.red(), 2) << row.richness;
            EXPECT_NEAR(color.blue(), row.color.blue(), 2) << row.richness;
        }
    }

    void saveTo(const QString& path, void (RarefactionViewController::*save)()) {
        savePanel.answer = path;
        (controller().*save)();
        waitForWriting();
    }
    // The dialog of the command, with these entries.
    QDialog& imageDialog(bool svg, const QString& width, const QString& dpi, bool titles) {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        controller().saveImage();
        auto* dialog = window->findChild<QDialog*>("imageDialog");
        if (dialog == nullptr) throw std::runtime_error("no dialog");
        dialog->findChild<QRadioButton*>(svg ? "svgButton" : "pngButton")->click();
        dialog->findChild<QLineEdit*>("imageWidthField")->setText(width);
        dialog->findChild<QLineEdit*>("imageResolutionField")->setText(dpi);
        dialog->findChild<QCheckBox*>("imageTitlesBox")->setChecked(titles);
        return *dialog;
    }
    QByteArray savedImage(const PlotImage& image) {
        savePanel.answer = path(image.svg ? "image.svg" : "image.png");
        QDialog& dialog = imageDialog(image.svg, QString::number(image.widthCm, 'g', 17),
                                      QString::number(image.dpi), image.titles);
        dialog.findChild<QPushButton*>("saveImageAsButton")->click();
        waitForWriting();
        EXPECT_EQ(Preferences().plotImage(), image);
        return bytesOf(savePanel.answer);
    }
    void waitForWriting() {
        QObject receiver;
        bool done = false;
        jobs->start(
            &receiver, [] { return 0; }, [&done](int) { done = true; });
        ASSERT_TRUE(waitUntil([&done] { return done; }));
    }
    QString path(const char* name) { return folder.filePath(name); }
    static QByteArray bytesOf(const QString& path) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        return file.readAll();
    }
    static QByteArray outputOf(const QString& program, const QStringList& arguments) {
        QProcess process;
        process.start(program, arguments);
        EXPECT_TRUE(process.waitForFinished()) << program.toStdString();
        EXPECT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
        return process.readAllStandardOutput();
    }

    QTemporaryDir folder;
    std::vector<std::string> console;
    std::unique_ptr<JobQueue> jobs = std::make_unique<JobQueue>(1);  // jobs end in order
    FakeOpenPanel openPanel;
    FakeSavePanel savePanel;
    FakeAlerts alerts;
    std::unique_ptr<RarefactionWindowController> window;
};

TEST_F(RarefactionWindowTest, DrawsCurveAndBandAsThePreferencesSay) {
    show(straightCurve());
    QImage image = drawn();
    expectPlot(image, 1);
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::white));
    EXPECT_EQ(view().geometry().maxDiversity, 22);
    const QPoint axis = pixelOf(12.5, 0);
    int black = 0;
    for (int y = axis.y() - 1; y <= axis.y() + 1; ++y) {
        black += image.pixelColor(axis.x(), y) == QColor(Qt::black) ? 1 : 0;
    }
    EXPECT_EQ(black, 1);  // the axis is one sharp line
    Preferences().setConfidence(0.99);
    Preferences().setPlotColor(QColor(0, 128, 0));
    image = drawn();
    EXPECT_EQ(view().geometry().maxDiversity, 24);
    EXPECT_EQ(image.pixelColor(pixelOf(10.5, 10.5)), QColor(0, 128, 0));
    EXPECT_EQ(image.pixelColor(pixelOf(10.5, 13.5)), QColor(204, 230, 204));
    controller().preferencesDidChange();
    EXPECT_EQ(label("rarefactionSummary"),
              "Individual-based rarefaction · up to 20 specimens · band: 99% confidence limits");
}

TEST_F(RarefactionWindowTest, TellsTwiceADrawOfALevelThatIsNotInUse) {
    show(straightCurve());
    const struct {
        double level;
        const char* text;
    } rows[] = {{0.9, "0.9"}, {1, "1.0"}, {0, "0.0"}, {-2, "-2.0"}, {1e30, "1.0e+30"}};
    for (const auto& row : rows) {
        Preferences().setConfidence(row.level);
        console.clear();
        const QImage image = drawn();
        const std::string line = std::string("WARNING: unexpected confidence level of ") + row.text;
        EXPECT_EQ(console, (std::vector<std::string>{line, line}));
        EXPECT_EQ(view().geometry().maxDiversity, 1);
        EXPECT_EQ(image.pixelColor(pixelOf(0.5, 0.5)), QColor(0, 0, 255));  // the curve
        EXPECT_EQ(image.pixelColor(pixelOf(10, 0.5)), QColor(Qt::white));   // no band
    }
}

TEST_F(RarefactionWindowTest, LeavesAGapInTheBandButNotInTheCurve) {
    std::vector<Rarefaction> curve = straightCurve();
    for (int i = 8; i <= 11; ++i) curve[i].lower95 = curve[i].upper95 = nan;
    show(curve);
    const QImage image = drawn();
    EXPECT_EQ(image.pixelColor(pixelOf(10.5, 10.5)), QColor(0, 0, 255));
    EXPECT_EQ(image.pixelColor(pixelOf(10.5, 11.8)), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(pixelOf(6, 7)), QColor(204, 204, 255));
    EXPECT_EQ(image.pixelColor(pixelOf(16, 17)), QColor(204, 204, 255));
}

TEST_F(RarefactionWindowTest, SaysWhatTheCurveIsAndWhatIsMissing) {
    std::vector<Rarefaction> gap = straightCurve();
    gap[8].upper95 = nan;
    std::vector<Rarefaction> noBand = straightCurve();
    for (Rarefaction& point : noBand) point.lower95 = nan;
    std::vector<Rarefaction> noVariance = noBand;
    for (Rarefaction& point : noVariance) point.variance = nan;
    const std::vector<Rarefaction> whole = straightCurve();
    const auto first = [&](int count) { return std::vector(whole.begin(), whole.begin() + count); };
    constexpr std::int64_t tooMany = RarefactionCalculator::kMostIndividuals + 1;
    const auto individuals = RarefactionKind::individualBased;
    const auto samples = RarefactionKind::sampleBased;
    const struct {
        RarefactionKind kind;
        std::vector<Rarefaction> curve;
        const char* absence;
    } rows[] = {
        {individuals, whole, ""},
        {samples, whole, ""},
        {individuals, gap, "The band has gaps where no confidence limit can be computed."},
        {individuals, noVariance,
         "The curve has no confidence band: no limit of it can be computed."},
        {samples, noBand, "The curve has no confidence band: no limit of it can be computed."},
        {samples, noVariance,
         "The curve has no confidence band: its variance rests on Chao2, which has no value for "
         "these censuses."},
        {individuals, RarefactionCalculator().individualBasedCurve(CountsVector{tooMany}),
         "The curve cannot be drawn: there are more than 10^18 specimens, too many to rarefy "
         "exactly."},
        {individuals, {}, "A curve is drawn from three points on; this one has none."},
        {individuals, first(1), "A curve is drawn from three points on; this one has one."},
        {samples, first(2), "A curve is drawn from three points on; this one has two."},
    };
    for (const auto& row : rows) {
        show(row.curve, row.kind);
        EXPECT_EQ(label("rarefactionAbsence"), row.absence);
        const bool isSampleBased = row.kind == samples;
        EXPECT_EQ(label("widthAxisTitle"), isSampleBased ? "Censuses" : "Specimens");
        EXPECT_EQ(label("heightAxisTitle"), "Expected taxa");
        const std::string kind = isSampleBased ? "Sample-based" : "Individual-based";
        EXPECT_EQ(label("rarefactionSummary").find(kind + " rarefaction"), 0u);
        if (row.curve.size() >= 3) continue;
        QImage untouched(view().size(), QImage::Format_RGB32);
        untouched.fill(Qt::green);
        EXPECT_EQ(drawn(Qt::green), untouched);
        QTest::keyClick(&view(), Qt::Key_Right);
        EXPECT_EQ(view().markedPoint(), -1);
        EXPECT_EQ(label("plotReadout"), "");
        saveTo(path("empty.pdf"), &RarefactionViewController::savePlotTapped);
        EXPECT_TRUE(outputOf("pdfinfo", {path("empty.pdf")}).simplified().contains("Pages: 1 "));
        EXPECT_EQ(outputOf("pdftotext", {path("empty.pdf"), "-"}).trimmed(), "");
    }
}

TEST_F(RarefactionWindowTest, AppearsAtItsPlace) {
    show(straightCurve());
    const QPoint corner = window->screen()->availableGeometry().topLeft();
    EXPECT_EQ(window->frameGeometry().topLeft(), corner + QPoint(120, 120));
    window->move(300, 200);
    window->hide();
    window->show();
    EXPECT_EQ(window->frameGeometry().topLeft(), corner + QPoint(120, 120));
}

TEST_F(RarefactionWindowTest, ReadsOutPointsByKeyAndPointer) {
    show(straightCurve());
    const struct {
        Qt::Key key;
        int place;
    } rows[] = {{Qt::Key_Right, 0},    {Qt::Key_Right, 1}, {Qt::Key_Left, 0},
                {Qt::Key_Left, 0},     {Qt::Key_End, 19},  {Qt::Key_Right, 19},
                {Qt::Key_PageDown, 9}, {Qt::Key_Home, 0},  {Qt::Key_PageUp, 10},
                {Qt::Key_Escape, -1},  {Qt::Key_Left, 19}};
    for (const auto& row : rows) {
        QTest::keyClick(&view(), row.key);
        EXPECT_EQ(view().markedPoint(), row.place) << row.key;
    }
    QTest::mouseMove(&view(), pixelOf(4.4, 15));
    EXPECT_EQ(view().markedPoint(), 3);
    const std::string values = "4 specimens · 4.0 expected taxa · 95% limits 2.0 to 6.0";
    EXPECT_EQ(label("plotReadout"), values);
    EXPECT_EQ(view().accessibleDescription().toStdString(), values);
    const QImage onScreen = view().grab().toImage();
    const QPoint ring = pixelOf(4, 4);
    EXPECT_EQ(onScreen.pixelColor(ring), QColor(Qt::white));  // the ring's middle
    EXPECT_EQ(drawn().pixelColor(ring), QColor(0, 0, 255));   // what is saved has no ring
}

TEST_F(RarefactionWindowTest, SavesOnePdfPageOfTheViewsSize) {
    show(straightCurve());
    window->resize(700, 500);
    QCoreApplication::processEvents();
    drawn();
    saveTo(path("north.pdf"), &RarefactionViewController::savePlotTapped);
    EXPECT_EQ(savePanel.ending, ".pdf");
    EXPECT_EQ(label("plotSaved"), "Saved to north.pdf");
    QCoreApplication::processEvents();
    const auto* saved = window->findChild<QLabel*>("plotSaved");
    EXPECT_GE(saved->width(), saved->fontMetrics().horizontalAdvance(saved->text()));
    EXPECT_EQ(savePanel.suggestions, QStringList("North rarefaction"));
    const QByteArray facts = outputOf("pdfinfo", {path("north.pdf")}).simplified();
    const QSize size = view().size();
    EXPECT_TRUE(facts.contains("Pages: 1 ")) << facts.toStdString();
    EXPECT_TRUE(facts.contains(
        QString("Page size: %1 x %2 pts").arg(size.width()).arg(size.height()).toUtf8()))
        << facts.toStdString();
    const QByteArray text = outputOf("pdftotext", {path("north.pdf"), "-"}).simplified();
    const QList<QByteArray> words = text.split(' ');
    for (const char* tick : {"0", "5", "10", "15", "20"}) {
        EXPECT_EQ(words.count(tick), 2) << text.toStdString();
    }
    outputOf("pdftoppm", {"-r", "72", "-png", "-singlefile", path("north.pdf"), path("north")});
    expectPlot(QImage(path("north.png")), 1);
    EXPECT_TRUE(alerts.warnings.isEmpty());
}

TEST_F(RarefactionWindowTest, SavesImagesOfTheirSizeOnPaperWithAndWithoutTitles) {
    show(straightCurve());
    drawn();
    for (const bool titles : {false, true}) {
        const QSize size = view().size() + (titles ? QSize(24, 52) : QSize(0, 0));
        const QByteArray svg = savedImage({true, 8.5, 300, titles});
        EXPECT_EQ(savePanel.ending, ".svg");
        const double height = 85.0 * size.height() / size.width();
        EXPECT_TRUE(svg.contains("width=\"85mm\"")) << svg.left(400).toStdString();
        EXPECT_TRUE(svg.contains(QString("height=\"%1mm\"").arg(height, 0, 'f', 2).toUtf8()));
        EXPECT_TRUE(svg.contains(
            QString("viewBox=\"0 0 %1 %2\"").arg(size.width()).arg(size.height()).toUtf8()));
        EXPECT_TRUE(svg.contains(">15</text>"));
        for (const char* text : {">North</text>", ">Specimens</text>", ">Expected taxa</text>"}) {
            EXPECT_EQ(svg.contains(text), titles) << text;
        }
        const QImage png =
            QImage::fromData(savedImage({false, size.width() / 72.0 * 2.54, 144, titles}), "PNG");
        EXPECT_EQ(png.size(), size * 2);
        EXPECT_EQ(png.dotsPerMeterX(), 5669);
        EXPECT_EQ(png.dotsPerMeterY(), 5669);
        expectPlot(png.copy(QRect(titles ? QPoint(48, 56) : QPoint(), view().size() * 2)), 2);
        EXPECT_EQ(label("plotSaved"), "Saved to image.png");
        EXPECT_EQ(controller().figure().size, size);  // printed
    }
    window->findChild<QCheckBox*>("plotTitlesBox")->click();
    EXPECT_EQ(controller().figure().size, view().size());
}

TEST_F(RarefactionWindowTest, TellsWhatIsWrongWithAnImageBeforeItIsSaved) {
    show(straightCurve());
    const struct {
        bool svg;
        const char* width;
        const char* dpi;
        const char* note;
    } rows[] = {{false, "8,5", " 300 ", "1,004 \u00d7 "},
                {true, "8.5", "x", "8.5 \u00d7 "},
                {false, "8.5", "x", "whole number from 36 to 2400"},
                {false, "8.5", "35", "whole number from 36 to 2400"},
                {false, "8.5", "2401", "whole number from 36 to 2400"},
                {true, "0.9", "300", "centimetres from 1 to 200"},
                {true, "200.1", "300", "centimetres from 1 to 200"},
                {false, "nan", "300", "centimetres from 1 to 200"},
                {false, "", "300", "centimetres from 1 to 200"},
                {false, "84.6", "600", "19,984 \u00d7 "},
                {false, "85", "600", "no side may have more than 20,000"}};
    for (const auto& row : rows) {
        QDialog& dialog = imageDialog(row.svg, row.width, row.dpi, true);
        const QString note = dialog.findChild<QLabel*>("imageNote")->text();
        EXPECT_TRUE(note.contains(row.note)) << row.width << ' ' << note.toStdString();
        EXPECT_EQ(dialog.findChild<QPushButton*>("saveImageAsButton")->isEnabled(),
                  note.contains(" cm"));
        QTest::keyClick(&dialog, Qt::Key_Escape);
    }
    EXPECT_EQ(Preferences().plotImage(), PlotImage());
    show({});
    EXPECT_FALSE(window->findChild<QPushButton*>("saveImageButton")->isEnabled());
}

TEST_F(RarefactionWindowTest, SavingReplacesAFileAndCancellingDoesNothing) {
    Preferences().setConfidence(0.99);  // the table has all levels
    show(straightCurve());
    QFile old(path("north.csv"));
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write(QByteArray(100000, 'x'));
    old.close();
    saveTo(old.fileName(), &RarefactionViewController::saveDataTapped);
    EXPECT_EQ(savePanel.ending, ".csv");
    EXPECT_EQ(bytesOf(old.fileName()).toStdString(), writeRarefactionTable(straightCurve()));
    saveTo({}, &RarefactionViewController::saveDataTapped);
    saveTo({}, &RarefactionViewController::savePlotTapped);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList("north.csv"));
    EXPECT_TRUE(alerts.warnings.isEmpty());
}

TEST_F(RarefactionWindowTest, TellsOfAFailedWriteEvenAfterTheWindowHasGone) {
    show(straightCurve());
    saveTo(path("no/such/folder.pdf"), &RarefactionViewController::savePlotTapped);
    savePanel.answer = "/dev/full";
    controller().saveData();
    window.reset();
    ASSERT_TRUE(waitUntil([this] { return alerts.warnings.size() == 2; }));
    EXPECT_EQ(alerts.warnings,
              (QStringList{"The plot could not be saved: No such file or directory",
                           "The table could not be saved: No space left on device"}));
    EXPECT_FALSE(QFileInfo("/dev/full").isFile());
}

TEST_F(RarefactionWindowTest, CopiesPlotAndTable) {
    Preferences().setPlotImage({false, 16, 300, false});
    show(straightCurve());
    drawn();
    QTest::keyClick(window.get(), Qt::Key_C, Qt::ControlModifier);
    const QMimeData* copied = QGuiApplication::clipboard()->mimeData();
    expectPlot(qvariant_cast<QImage>(copied->imageData()), 2);
    EXPECT_TRUE(copied->data("application/pdf").startsWith("%PDF"));
    EXPECT_TRUE(copied->data("image/svg+xml").contains("<svg"));
    QTest::keyClick(window.get(), Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    copied = QGuiApplication::clipboard()->mimeData();
    const QStringList lines = copied->text().split('\n');
    EXPECT_EQ(lines.size(), 22);
    EXPECT_EQ(lines.value(3).toStdString(), "3\t3.000\t1.000\t1.000\t5.000\t-1.000\t7.000");
    EXPECT_EQ(copied->data("text/csv").toStdString(), writeRarefactionTable(straightCurve()));
}

// A name with a point in it gets its ending after the dialog has asked what it asks.
TEST(SavePanelTest, AsksBeforeItReplacesAFileWhoseEndingWasNotTyped) {
    const QTemporaryDir folder;
    const QString there = folder.filePath("St. Helena.pdf");
    QFile(there).open(QIODevice::WriteOnly);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QStringList asked;
    const auto answer = [&] {
        QWidget* modal = QApplication::activeModalWidget();
        if (auto* question = qobject_cast<QMessageBox*>(modal)) {
            asked.append(question->text());
            question->reject();
        } else if (auto* dialog = qobject_cast<QFileDialog*>(modal)) {
            if (!asked.isEmpty()) return dialog->reject();
            dialog->findChild<QLineEdit*>()->setText(folder.filePath("St. Helena"));
            QMetaObject::invokeMethod(dialog, "accept", Qt::QueuedConnection);
        }
    };
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, answer);
    timer.start(50);
    SavePanel panel;
    EXPECT_EQ(panel.chooseFile(nullptr, "Save Plot", "plot", {"PDF", ".pdf"}), "");
    ASSERT_EQ(asked.size(), 1);
    EXPECT_TRUE(asked.front().contains("Helena.pdf")) << asked.front().toStdString();
}

}  // namespace
}  // namespace zorvel
