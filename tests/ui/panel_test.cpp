#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QTest>

#include "metrics/metric_captions.h"
#include "model/edits.h"
#include "model/metric_explanations.h"
#include "ui/kit/message_strip.h"
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
    Popover* popover() { return window->findChild<Popover*>(); }
    bool isExplaining() { return popover() != nullptr && popover()->isVisible(); }
    std::string explanation() {
        return isExplaining() ? popover()->accessibleName().toStdString() : "";
    }
    // Of the open explanation.
    bool says(const std::string& words) { return explanation().find(words) != std::string::npos; }
    QLabel& caption(const std::string& key) {
        return child<QLabel>((key + "LabelTextField").c_str());
    }
    static std::string clipboard() { return QApplication::clipboard()->text().toStdString(); }
};

TEST_F(PanelTest, EachValueExplainsItselfOnF1) {
    openTwo();
    const struct {
        const char* key;
        const char* inputs;
    } cases[] = {
        {"individuals", "Inputs: N = 60, S = 4\n"},
        {"richness", "Inputs: N = 60, S = 4\n"},
        {"rarefiedRichness", "Inputs: N = 60, S = 4, n = 50\n"},
        {"chaoOne", "Inputs: N = 60, S = 4, f1 = 1, f2 = 0\n"},
        {"alroySQS", "Inputs: N = 60, S = 4, f1 = 1, f2 = 0, q = 0.8\n"},
        {"shannonH", "Inputs: N = 60, S = 4\n"},
        {"fisherAlpha", "Inputs: N = 60, S = 4\n"},
        {"pielouJ", "Inputs: N = 60, S = 4\n"},
        {"simpsonD", "Inputs: N = 60, S = 4\n"},
        {"buzasE", "Inputs: N = 60, S = 4\n"},
    };
    ASSERT_EQ(std::size(cases), metricsPanelRows.size());
    for (const auto& test : cases) {
        const MetricExplanation& words = *explanationOf(test.key);
        value(test.key).setFocus();
        QTest::keyClick(&value(test.key), Qt::Key_F1);
        EXPECT_EQ(explanation().rfind(
                      std::string(words.name) + '\n' + text(test.key) + " for North\n", 0),
                  0u)
            << explanation();
        for (const std::string part :
             {words.meaning, words.formula, words.variant, words.source, test.inputs}) {
            EXPECT_TRUE(says(part)) << test.key << ": " << part;
        }
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        EXPECT_FALSE(isExplaining()) << test.key;
        EXPECT_TRUE(value(test.key).hasFocus()) << test.key;
    }
}

TEST_F(PanelTest, AClickOnARowExplainsItAndAnotherCloses) {
    openTwo();
    QTest::mouseClick(&caption("chaoOne"), Qt::LeftButton);
    EXPECT_TRUE(says(explanationOf("chaoOne")->name));
    QTest::mouseClick(&caption("chaoOne"), Qt::LeftButton);
    EXPECT_FALSE(isExplaining());
    QTest::mouseClick(&value("pielouJ"), Qt::LeftButton);
    EXPECT_TRUE(says(explanationOf("pielouJ")->name));
    QTest::mouseClick(&value("pielouJ"), Qt::LeftButton);
    EXPECT_FALSE(isExplaining());
    // Between a caption and its value, at the edge of the card.
    QWidget* card = caption("simpsonD").parentWidget();
    const int y = caption("simpsonD").geometry().center().y();
    QTest::mouseClick(card, Qt::LeftButton, {}, {card->width() - 3, y});
    EXPECT_TRUE(says(explanationOf("simpsonD")->name));
    // From one row to the next.
    QTest::mouseClick(&caption("buzasE"), Qt::LeftButton);
    EXPECT_TRUE(says(explanationOf("buzasE")->name));
    QTest::mouseClick(&child<QLabel>("speciesHeading"), Qt::LeftButton);
    EXPECT_FALSE(isExplaining());
    EXPECT_TRUE(value("buzasE").hasFocus());
}

TEST_F(PanelTest, SelectingDigitsExplainsNothing) {
    openTwo();
    ValueField& shannon = value("shannonH");
    QTest::mouseDClick(&shannon, Qt::LeftButton);
    EXPECT_FALSE(shannon.selectedText().isEmpty());
    EXPECT_FALSE(isExplaining());
    QTest::mousePress(&shannon, Qt::LeftButton, {}, {shannon.width() - 2, 8});
    QTest::mouseRelease(&shannon, Qt::LeftButton, {}, {2, 8});
    EXPECT_FALSE(isExplaining());
}

TEST_F(PanelTest, TheFocusElsewhereClosesTheExplanation) {
    openTwo();
    value("shannonH").setFocus();
    QTest::keyClick(&value("shannonH"), Qt::Key_F1);
    speciesTable().setFocus();
    EXPECT_FALSE(isExplaining());
    EXPECT_TRUE(speciesTable().hasFocus());
    value("shannonH").setFocus();
    QTest::keyClick(&value("shannonH"), Qt::Key_F1);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    EXPECT_FALSE(isExplaining());
    EXPECT_TRUE(value("fisherAlpha").hasFocus());
}

TEST_F(PanelTest, ArrowsAndTabGoFromValueToValue) {
    openTwo();
    value("individuals").setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up);
    for (const PanelRow& row : metricsPanelRows) {
        EXPECT_TRUE(value(std::string(row.key)).hasFocus()) << row.key;
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    }
    EXPECT_TRUE(value("buzasE").hasFocus());
    value("individuals").setFocus();
    for (const PanelRow& row : metricsPanelRows) {
        EXPECT_TRUE(value(std::string(row.key)).hasFocus()) << row.key;
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
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

TEST_F(PanelTest, AMissingValueSaysWhyItIsMissing) {
    openTwo();
    goToSouth();
    QTest::mouseClick(&caption("alroySQS"), Qt::LeftButton);
    EXPECT_TRUE(says("No value for South\n"));
    EXPECT_TRUE(says(
        "SQS has no estimate: it needs at least 11 specimens. The grey value is that of North."));
    EXPECT_TRUE(says("N = 7, S = 2"));
    // Nor can 7 specimens be rarefied to 50.
    ASSERT_TRUE(waitUntil([this] { return !value("rarefiedRichness").isStale(); }));
    EXPECT_EQ(value("rarefiedRichness").mark(), "N < n");
    EXPECT_NE(label("rarefiedNote").find("7 specimens"), std::string::npos);
    EXPECT_TRUE(value("rarefiedRichness").accessibleDescription().contains("7 specimens"));
    // The reason stands once.
    EXPECT_EQ(explanation().find("11 specimens"), explanation().rfind("11 specimens"));
    QTest::mouseClick(&caption("fisherAlpha"), Qt::LeftButton);
    EXPECT_TRUE(says("0.0 for South\n"));
    EXPECT_TRUE(says("where no species has 5 specimens"));
    QTest::keyClick(&censusTable(), Qt::Key_Up);
    ASSERT_TRUE(waitForJobs());
    EXPECT_EQ(value("rarefiedRichness").mark(), "");
    EXPECT_EQ(label("rarefiedNote"), "");
}

TEST_F(PanelTest, AQuotaOutOfReachNamesTheCoverageOfTheDrawnResult) {
    Preferences().setSqsQuota(0.99);
    open(write("one.csv", ",a,b,c,d,e,f\nNorth,10,5,3,2,1,1\n"));
    ASSERT_TRUE(waitUntil([this] { return !label("metricsNote").empty(); }));
    EXPECT_EQ(label("metricsNote"),
              "SQS has no estimate: the quota is above the reachable coverage, 0.92.");
    value("alroySQS").setFocus();
    QTest::keyClick(&value("alroySQS"), Qt::Key_F1);
    EXPECT_TRUE(says("q = 0.99"));
    EXPECT_TRUE(says("reachable coverage, 0.92"));
}

TEST_F(PanelTest, ValuesAreCopiedOneOrAll) {
    openTwo();
    value("shannonH").setFocus();
    value("shannonH").deselect();
    QTest::keyClick(&value("shannonH"), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard(), text("shannonH"));
    value("fisherAlpha").setFocus();
    trigger("copy");
    EXPECT_EQ(clipboard(), text("fisherAlpha"));
    trigger("copyAllMetrics");
    std::string expected = "North";
    for (const PanelRow& row : metricsPanelRows) {
        expected += '\n' + metricCaption(row, 50, 0.8) + '\t' + text(std::string(row.key));
    }
    EXPECT_EQ(clipboard(), expected);
}

// Another census's value, though it is still shown, is never copied under this one's name.
TEST_F(PanelTest, TheCopyHoldsNoValueOfAnotherCensus) {
    openTwo();
    Preferences().setSqsQuota(0.7);
    goToSouth();
    ASSERT_TRUE(waitUntil([this] { return !value("rarefiedRichness").isStale(); }));
    EXPECT_EQ(label("alroySQSLabelTextField"), "Alroy SQS (quota: 0.80)");
    trigger("copyAllMetrics");
    const QStringList lines = QApplication::clipboard()->text().split('\n');
    ASSERT_EQ(lines.size(), 11);
    EXPECT_EQ(lines[0], "South");
    EXPECT_EQ(lines[3], "Rarefied richness (50)\t2.0");
    EXPECT_EQ(lines[5], "Alroy SQS (quota: 0.70)\t-");
}

TEST_F(PanelTest, TheContextMenuOffersExplanationAndCopies) {
    openTwo();
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
    EXPECT_TRUE(says(explanationOf("chaoOne")->name));
}

TEST_F(PanelTest, ARefreshThatChangesNothingDrawsAgainWithoutAFlicker) {
    int draws = 0;
    makeRandom = [&draws] {
        ++draws;
        return std::make_unique<SeededRandom>(static_cast<std::uint64_t>(draws));
    };
    openTwo();
    const int drawn = draws;
    window->mainView().refreshMetrics();
    EXPECT_FALSE(value("alroySQS").isStale());
    EXPECT_FALSE(value("rarefiedRichness").isStale());
    EXPECT_EQ(draws, drawn + 1);
    drainJobs();
    EXPECT_FALSE(value("alroySQS").isStale());
    Preferences().setSqsQuota(0.5);
    window->mainView().refreshMetrics();
    EXPECT_EQ(draws, drawn + 2);
}

// Whatever text it was: of a cell, by either key, or a detail of the census.
TEST_F(PanelTest, TheEndOfAnEditThatChangesNothingDrawsAgain) {
    int draws = 0;
    makeRandom = [&draws] {
        ++draws;
        return std::make_unique<SeededRandom>(static_cast<std::uint64_t>(draws));
    };
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
    const auto captionOf = [](const MainWindowController& shown) {
        return shown.findChild<QLabel*>("rarefiedRichnessLabelTextField")->text().toStdString();
    };
    ASSERT_TRUE(waitUntil([&] { return !other.mainView().isInProgress(); }));
    Preferences().setRarefactionSize(20);
    emit windows->preferencesDidChange();
    EXPECT_TRUE(waitUntil([&] {
        return captionOf(*window) == "Rarefied richness (20)" &&
               captionOf(other) == "Rarefied richness (20)";
    }));
}

TEST_F(PanelTest, EveryEditIsFollowedByTheMetrics) {
    openTwo();
    type(speciesTable(), 0, SpeciesTableView::kAbundanceColumn, "40");
    EXPECT_EQ(text("individuals"), "70");
    speciesTable().selectRow(1);
    speciesTable().setFocus();
    QTest::keyClick(&speciesTable(), Qt::Key_Space);
    EXPECT_EQ(text("individuals"), "50");
    EXPECT_EQ(text("richness"), "3");
    trigger("undo");
    EXPECT_EQ(text("individuals"), "70");
    trigger("undo");
    EXPECT_EQ(text("individuals"), "60");
    trigger("redo");
    EXPECT_EQ(text("individuals"), "70");
    ASSERT_TRUE(waitForJobs());
    type(censusTable(), 0, 0, "Fen");
    EXPECT_EQ(label("metricsHeading"), "Fen");
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
