#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <cstdlib>

#include "metrics/metric_table.h"
#include "model/edits.h"
#include "model/metric_explanations.h"
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
};

TEST_F(PanelTest, EachRowShowsAndExplainsItsOwnMetric) {
    openTwo();
    trigger("copyAllMetrics");
    EXPECT_EQ(clipboard(),
              "North\nIndividuals\t60\nRichness\t4\nRarefied richness (50)\t3.8\nChao1\t4.0\n"
              "Alroy SQS (quota: 0.80)\t" +
                  text("alroySQS") +
                  "\nShannon's H\t1.066\n"
                  "Fisher's alpha\t0.965\nPielou's J\t0.769\nSimpson's D\t0.627\n"
                  "Buzas-Gibson's E\t0.726");
    const std::vector<ShownMetric> rows = metricsOf(MetricGroup::census);
    value("individuals").setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);
    for (const ShownMetric& shown : rows) {
        SCOPED_TRACE(metricKey(shown));
        const MetricExplanation words = explanationOf(shown);
        ValueField& field = value(metricKey(shown));
        const QLabel& label = caption(metricKey(shown));
        EXPECT_EQ(label.text().toStdString(), metricCaption(shown, {50, 0.8}));
        EXPECT_EQ(label.parentWidget(), field.parentWidget());
        const int apart = std::abs(label.geometry().center().y() - field.geometry().center().y());
        EXPECT_LE(apart, field.scale() > 1 ? 50 : 3);
        ASSERT_TRUE(field.hasFocus());
        QTest::keyClick(&field, Qt::Key_F1);
        const std::string start = words.name + ('\n' + field.text().toStdString());
        EXPECT_EQ(explanation().rfind(start + " for North\n", 0), 0u) << explanation();
        for (const std::string part : {words.meaning, words.formula, words.variant, words.source})
            EXPECT_TRUE(says(part)) << part;
        EXPECT_TRUE(says("\nInputs: N = 60, S = 4"));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        EXPECT_EQ(explanation(), "");
        ASSERT_TRUE(field.hasFocus());
        QTest::keyClick(&field, Qt::Key_Down);
    }
    value("individuals").setFocus();
    for (const ShownMetric& shown : rows) {
        EXPECT_TRUE(value(metricKey(shown)).hasFocus()) << metricKey(shown);
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
    QTest::keyClick(&censusTable(), Qt::Key_Down);
    ASSERT_TRUE(waitUntil([this] { return !label("metricsNote").empty(); }));
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
    // They can be rarefied to 7.
    for (const int size : {7, 8}) {
        const char* const mark = size == 7 ? "" : "N < n";
        Preferences().setRarefactionSize(size);
        window->mainView().updateMetrics();
        ASSERT_TRUE(waitUntil([this] { return !value("rarefiedRichness").isStale(); }));
        EXPECT_EQ(value("rarefiedRichness").mark(), mark) << size;
    }
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
    ValueField& field = value("chaoOne");
    for (const auto& [item, copied] : {std::pair(1, "4.0"), std::pair(2, "North\nIndividuals")}) {
        QContextMenuEvent event(QContextMenuEvent::Mouse, {4, 4}, field.mapToGlobal(QPoint(4, 4)));
        QApplication::sendEvent(&field, &event);
        auto* menu = window->findChild<QMenu*>("metricsMenu");
        ASSERT_NE(menu, nullptr);
        menu->actions().at(item)->trigger();
        menu->close();
        sendDeletions();
        EXPECT_EQ(clipboard().rfind(copied, 0), 0u) << clipboard();
    }
}

// Whatever text was edited: of a cell, by either key, or a detail of the census.
TEST_F(PanelTest, ARefreshThatChangesNothingDrawsAgainWithoutAFlicker) {
    int draws = 0;
    makeRandom = [&draws] { return std::make_unique<SeededRandom>(std::uint64_t(++draws)); };
    openTwo();
    const std::string step = context().undoName();
    const int name = SpeciesTableView::kNameColumn;
    const std::function<void()> edits[] = {
        [&] { window->mainView().refreshMetrics(); }, [&] { type(speciesTable(), 0, name, "a"); },
        [&] { type(speciesTable(), 0, name, "x", Qt::Key_Escape); },
        [&] { type(censusTable(), 0, 0, "North"); },
        [&] { QTest::keyClick(&child<QLineEdit>("latitudeTextField"), Qt::Key_Return); }};
    for (const auto& edit : edits) {
        QCoreApplication::processEvents();
        const int before = draws;
        edit();
        QCoreApplication::processEvents();
        EXPECT_FALSE(value("alroySQS").isStale());
        EXPECT_FALSE(value("rarefiedRichness").isStale());
        EXPECT_EQ(draws, before + 1);
    }
    EXPECT_EQ(context().undoName(), step);
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
        {{700, 580, 200, 20}, {300, 200}, {394, 400, 300, 200}},
        {{700, 290, 200, 20}, {300, 900}, {394, 0, 300, 600}},  // taller than the host
    };
    for (const auto& test : cases) {
        EXPECT_EQ(popoverPlace(host, test.anchor, test.wanted), test.place) << test.anchor.x();
    }
}

}  // namespace
}  // namespace zorvel
