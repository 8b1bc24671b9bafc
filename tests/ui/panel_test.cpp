#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <cstdlib>

#include "metrics/metric_table.h"
#include "model/edits.h"
#include "ui/kit/popover.h"
#include "ui/window_fixture.h"

namespace zorvel {
namespace {

// North has an SQS estimate, South has too few specimens for one.
const char unequalCensuses[] = ",a,b,c,d\nNorth,30,20,9,1\nSouth,4,3,0,0\n";

class PanelTest : public WindowTest {
  protected:
    void openTwo() {
        open(write("two.csv", unequalCensuses));
        ASSERT_TRUE(waitForJobs());
    }
    void goToSouth() {
        QTest::keyClick(&censusTable(), Qt::Key_Down);
        ASSERT_TRUE(waitUntil([this] { return !label("metricsNote").empty(); }));
    }
    // Of the open explanation; empty where none is open.
    std::string explanation() {
        auto* popover = window->findChild<Popover*>();
        const bool isOpen = popover != nullptr && popover->isVisible();
        return isOpen ? popover->accessibleName().toStdString() : "";
    }
    bool says(const std::string& words) { return explanation().find(words) != std::string::npos; }
    QLabel& caption(const std::string& key) {
        return child<QLabel>((key + "LabelTextField").c_str());
    }
    static std::string clipboard() { return QApplication::clipboard()->text().toStdString(); }
    void countDraws(int& draws) {
        makeRandom = [&draws] {
            return std::make_unique<SeededRandom>(static_cast<std::uint64_t>(++draws));
        };
    }
};

// Each value beside its caption, with its own inputs and formula; by keys alone.
TEST_F(PanelTest, EachRowShowsAndExplainsItsOwnMetric) {
    openTwo();
    const struct {
        const char* key;
        const char* caption;
        std::string text;
        const char* inputs;
        const char* formula;
    } rows[] = {
        {"individuals", "Individuals", "60", "", "N = the sum"},
        {"richness", "Richness", "4", "", "S = the number"},
        {"rarefiedRichness", "Rarefied richness (50)", "3.8", ", n = 50", "the sum over"},
        {"chaoOne", "Chao1", "4.0", ", f1 = 1, f2 = 0", "S + f1 (f1 - 1)"},
        {"alroySQS", "Alroy SQS (quota: 0.80)", text("alroySQS"), ", f1 = 1, f2 = 0, q = 0.8",
         "the geometric mean"},
        {"shannonH", "Shannon's H", "1.066", "", "-(the sum of p ln p)\n"},
        {"fisherAlpha", "Fisher's alpha", "0.965", "", "the root of S"},
        {"pielouJ", "Pielou's J", "0.769", "", "H / ln S\n"},
        {"simpsonD", "Simpson's D", "0.627", "", "1 - (the sum of N_i"},
        {"buzasE", "Buzas-Gibson's E", "0.726", "", "e^H / S\n"},
    };
    std::string copied = "North";
    value("individuals").setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);
    for (const auto& row : rows) {
        SCOPED_TRACE(row.key);
        ValueField& field = value(row.key);
        const QLabel& label = caption(row.key);
        copied += std::string("\n") + row.caption + '\t' + row.text;
        EXPECT_EQ(label.text().toStdString(), row.caption);
        EXPECT_EQ(field.text().toStdString(), row.text);
        EXPECT_EQ(label.parentWidget(), field.parentWidget());
        const int apart = std::abs(label.geometry().center().y() - field.geometry().center().y());
        EXPECT_LE(apart, row.key == rows[0].key || row.key == rows[1].key ? 40 : 3);

        ASSERT_TRUE(field.hasFocus());
        QTest::keyClick(&field, Qt::Key_F1);
        EXPECT_TRUE(says('\n' + row.text + " for North\n"));
        EXPECT_TRUE(says(std::string("\nInputs: N = 60, S = 4") + row.inputs)) << explanation();
        EXPECT_TRUE(says(std::string("\nFormula: ") + row.formula)) << explanation();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        EXPECT_EQ(explanation(), "");
        ASSERT_TRUE(field.hasFocus());
        QTest::keyClick(&field, Qt::Key_Down);
    }
    trigger("copyAllMetrics");
    EXPECT_EQ(clipboard(), copied);
    value("individuals").setFocus();
    for (const auto& row : rows) {
        EXPECT_TRUE(value(row.key).hasFocus()) << row.key;
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
}

TEST_F(PanelTest, AClickOnARowExplainsItAndAnotherCloses) {
    openTwo();
    QWidget* card = caption("simpsonD").parentWidget();
    const QPoint atItsEdge(card->width() - 3, caption("simpsonD").geometry().center().y());
    const struct {
        QWidget* widget;
        QPoint place;
        const char* name;
    } clicks[] = {{&caption("chaoOne"), {2, 2}, "Chao1, bias-corrected\n"},
                  {&caption("chaoOne"), {2, 2}, ""},
                  {&value("pielouJ"), {2, 2}, "Pielou's J\n"},
                  {card, atItsEdge, "Simpson's D\n"},  // from one row to the next
                  {&child<QLabel>("speciesHeading"), {2, 2}, ""}};
    for (const auto& click : clicks) {
        QTest::mouseClick(click.widget, Qt::LeftButton, {}, click.place);
        EXPECT_EQ(explanation().substr(0, std::string(click.name).size()), click.name);
        EXPECT_EQ(explanation().empty(), *click.name == '\0');
    }
    EXPECT_TRUE(value("simpsonD").hasFocus());
    // Selecting digits explains nothing.
    ValueField& shannon = value("shannonH");
    QTest::mouseDClick(&shannon, Qt::LeftButton);
    EXPECT_FALSE(shannon.selectedText().isEmpty());
    QTest::mousePress(&shannon, Qt::LeftButton, {}, {shannon.width() - 2, 8});
    QTest::mouseRelease(&shannon, Qt::LeftButton, {}, {2, 8});
    EXPECT_EQ(explanation(), "");
    // The focus elsewhere closes.
    QTest::keyClick(&shannon, Qt::Key_F1);
    EXPECT_NE(explanation(), "");
    speciesTable().setFocus();
    EXPECT_EQ(explanation(), "");
    EXPECT_TRUE(speciesTable().hasFocus());
}

TEST_F(PanelTest, TheExplanationFollowsTheRecords) {
    openTwo();
    QTest::mouseClick(&caption("richness"), Qt::LeftButton);
    editAbundance(context(), context().censuses().front().taxa().back(), 0);
    context().announceChanges();
    EXPECT_TRUE(says("3 for North"));
    EXPECT_TRUE(says("N = 59, S = 3"));
    trigger("undo");
    EXPECT_TRUE(says("N = 60, S = 4"));
}

TEST_F(PanelTest, AMissingValueSaysWhyAndIsNotCopied) {
    openTwo();
    Preferences().setSqsQuota(0.7);
    goToSouth();
    QTest::mouseClick(&caption("alroySQS"), Qt::LeftButton);
    EXPECT_TRUE(says("No value for South\n"));
    EXPECT_TRUE(says(
        "SQS has no estimate: it needs at least 11 specimens. The grey value is that of North."));
    EXPECT_EQ(explanation().find("11 specimens"), explanation().rfind("11 specimens"));
    // Nor can 7 specimens be rarefied to 50.
    ASSERT_TRUE(waitUntil([this] { return !value("rarefiedRichness").isStale(); }));
    EXPECT_EQ(value("rarefiedRichness").mark(), "N < n");
    EXPECT_NE(label("rarefiedNote").find("7 specimens"), std::string::npos);
    EXPECT_TRUE(value("rarefiedRichness").accessibleDescription().contains("7 specimens"));
    QTest::mouseClick(&caption("fisherAlpha"), Qt::LeftButton);
    EXPECT_TRUE(says("0.0 for South\n"));
    EXPECT_TRUE(says("where no species has 5 specimens"));
    // The field still shows the value of North, under the caption of North.
    EXPECT_EQ(label("alroySQSLabelTextField"), "Alroy SQS (quota: 0.80)");
    trigger("copyAllMetrics");
    EXPECT_EQ(clipboard().rfind("South\nIndividuals\t7\n", 0), 0u);
    EXPECT_NE(clipboard().find("\nAlroy SQS (quota: 0.70)\t-\n"), std::string::npos);
    QTest::keyClick(&censusTable(), Qt::Key_Up);
    ASSERT_TRUE(waitForJobs());
    EXPECT_EQ(value("rarefiedRichness").mark(), "");
    EXPECT_EQ(label("rarefiedNote"), "");
}

TEST_F(PanelTest, OneValueIsCopiedByKeyAndMenu) {
    openTwo();
    value("shannonH").setFocus();
    value("shannonH").deselect();
    QTest::keyClick(&value("shannonH"), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard(), text("shannonH"));
    value("fisherAlpha").setFocus();
    trigger("copy");
    EXPECT_EQ(clipboard(), text("fisherAlpha"));
    const auto choose = [this](int item) {
        ValueField& field = value("chaoOne");
        QContextMenuEvent event(QContextMenuEvent::Mouse, {4, 4}, field.mapToGlobal(QPoint(4, 4)));
        QApplication::sendEvent(&field, &event);
        auto* menu = window->findChild<QMenu*>("metricsMenu");
        ASSERT_NE(menu, nullptr);
        menu->actions().at(item)->trigger();
        menu->close();
        sendDeletions();
    };
    choose(1);
    EXPECT_EQ(clipboard(), text("chaoOne"));
    choose(2);
    EXPECT_EQ(clipboard().rfind("North\nIndividuals\t60\n", 0), 0u);
    choose(0);
    EXPECT_TRUE(says("Chao1, bias-corrected"));
}

// Whatever text was edited: of a cell, by either key, or a detail of the census.
TEST_F(PanelTest, ARefreshThatChangesNothingDrawsAgainWithoutAFlicker) {
    int draws = 0;
    countDraws(draws);
    openTwo();
    const std::string step = context().undoName();
    const auto drawsAfter = [&](const std::function<void()>& edit) {
        QCoreApplication::processEvents();
        const int before = draws;
        edit();
        QCoreApplication::processEvents();
        EXPECT_FALSE(value("alroySQS").isStale());
        EXPECT_FALSE(value("rarefiedRichness").isStale());
        return draws - before;
    };
    const int name = SpeciesTableView::kNameColumn;
    EXPECT_EQ(drawsAfter([&] { window->mainView().refreshMetrics(); }), 1);
    EXPECT_EQ(drawsAfter([&] { type(speciesTable(), 0, name, "a"); }), 1);
    EXPECT_EQ(drawsAfter([&] { type(speciesTable(), 0, name, "x", Qt::Key_Escape); }), 1);
    EXPECT_EQ(drawsAfter([&] { type(censusTable(), 0, 0, "North"); }), 1);
    QLineEdit& latitude = child<QLineEdit>("latitudeTextField");
    latitude.setFocus();
    EXPECT_GE(drawsAfter([&] { QTest::keyClick(&latitude, Qt::Key_Return); }), 1);
    EXPECT_EQ(context().undoName(), step);
}

TEST_F(PanelTest, ChangedPreferencesReachEveryWindow) {
    openTwo();
    MainWindowController& other = windows->openUntitled();
    windows->openFile(write("other.csv", ",a,b\nEast,30,25\n"), &other);
    ASSERT_TRUE(waitUntil([&] { return !other.mainView().isInProgress(); }));
    Preferences().setRarefactionSize(20);
    emit windows->preferencesDidChange();
    for (const MainWindowController* each : {window, &other}) {
        const auto* caption = each->findChild<QLabel*>("rarefiedRichnessLabelTextField");
        EXPECT_TRUE(waitUntil([&] { return caption->text() == "Rarefied richness (20)"; }));
    }
}

TEST(PopoverTest, StandsBesideItsAnchorAndInsideItsHost) {
    const QSize host(1000, 600);
    const struct {
        QRect anchor;
        QSize wanted;
        QRect place;
    } cases[] = {
        {{700, 290, 200, 20}, {300, 200}, {394, 199, 300, 200}},  // left of it
        {{50, 290, 200, 20}, {300, 200}, {256, 199, 300, 200}},   // no room on the left
        {{200, 290, 600, 20}, {300, 200}, {700, 199, 300, 200}},  // on neither side: over it
        {{700, 0, 200, 20}, {300, 200}, {394, 0, 300, 200}},
        {{700, 580, 200, 20}, {300, 200}, {394, 400, 300, 200}},
        {{700, 290, 200, 20}, {300, 900}, {394, 0, 300, 600}},  // taller than the host
        {{0, 0, 1000, 20}, {1200, 200}, {0, 0, 1000, 200}},
    };
    for (const auto& test : cases) {
        EXPECT_EQ(popoverPlace(host, test.anchor, test.wanted), test.place) << test.anchor.x();
    }
}

}  // namespace
}  // namespace zorvel
