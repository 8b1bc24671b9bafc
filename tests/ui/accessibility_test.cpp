#include <QAccessible>
#include <QLineEdit>
#include <QTest>
#include <functional>

#include "metrics/metric_table.h"
#include "ui/kit/message_strip.h"
#include "ui/window_fixture.h"

namespace {
std::vector<std::string> alertsRaised;  // names of what raised them
}

// In place of Qt's own, which without a desktop drops all events before anything receives them.
void QAccessible::updateAccessibility(QAccessibleEvent* event) {
    if (event->type() != QAccessible::Alert) return;
    alertsRaised.push_back(event->accessibleInterface()->text(QAccessible::Name).toStdString());
}

namespace zorvel {
namespace {

// As a screen reader does: from the window down, tables by their cells.
void visit(QAccessibleInterface* item, const std::function<void(QAccessibleInterface&)>& see) {
    if (item == nullptr || item->state().invisible) return;
    see(*item);
    if (item->tableInterface() != nullptr) return;
    for (int i = 0; i < item->childCount(); ++i) visit(item->child(i), see);
}

std::string nameOf(QAccessibleInterface& item) {
    return item.text(QAccessible::Name).toStdString();
}

class AccessibilityTest : public WindowTest {
  protected:
    QAccessibleInterface& root() { return *QAccessible::queryAccessibleInterface(window); }
    static QAccessibleTableInterface& tableOf(QTableView& view) {
        return *QAccessible::queryAccessibleInterface(&view)->tableInterface();
    }
    // How many were seen.
    int expectNames() { return expectNamesIn(window); }
    static int expectNamesIn(QWidget* shown) {
        int focusable = 0;
        visit(QAccessible::queryAccessibleInterface(shown), [&](QAccessibleInterface& item) {
            if (!item.state().focusable) return;
            ++focusable;
            const QObject* object = item.object();
            EXPECT_FALSE(nameOf(item).empty())
                << (object ? object->metaObject()->className() : "?") << ' '
                << (object ? object->objectName().toStdString() : "") << " role " << item.role();
        });
        return focusable;
    }
};

TEST_F(AccessibilityTest, WhatCanHaveTheFocusHasANameInEveryState) {
    EXPECT_GE(expectNames(), 2);  // the empty project
    open(exampleFile);
    ASSERT_TRUE(waitForJobs());
    window->mainView().messageStrip().addMessage("no");
    EXPECT_GE(expectNames(), 20);
    QTest::keyClick(&value("chaoOne"), Qt::Key_F1);
    const int explained = expectNames();
    EXPECT_GE(explained, 21);
    speciesTable().beginEditing(speciesTable().model()->index(0, 1));
    expectNames();
    trigger("diversityAtEqualCoverage");
    QWidget* diversity = window->mainView().diversityWindowController();
    EXPECT_GE(expectNamesIn(diversity), 15);
    auto* curves =
        QAccessible::queryAccessibleInterface(diversity->findChild<QWidget*>("curvesView"));
    EXPECT_EQ(curves->role(), QAccessible::Chart);
}

TEST_F(AccessibilityTest, AValueIsReadWithItsCaptionAndWhatItMeans) {
    open(exampleFile);
    ASSERT_TRUE(waitForJobs());
    std::vector<std::string> read;
    visit(&root(), [&](QAccessibleInterface& item) {
        const auto* field = qobject_cast<ValueField*>(item.object());
        if (field == nullptr) return;
        for (const ShownMetric& shown : metricsOf(MetricGroup::census)) {
            const std::string key = metricKey(shown);
            if (field != &value(key)) continue;
            read.push_back(nameOf(item));
            EXPECT_EQ(item.text(QAccessible::Value).toStdString(), text(key));
            EXPECT_FALSE(item.text(QAccessible::Description).isEmpty()) << key;
            EXPECT_TRUE(item.state().readOnly) << key;
        }
    });
    std::vector<std::string> captions;
    for (const ShownMetric& shown : metricsOf(MetricGroup::census))
        captions.push_back(metricCaption(shown, {50, 0.8}));
    EXPECT_EQ(read, captions);
}

TEST_F(AccessibilityTest, TablesAreReadCellByCellUnderTheirHeaders) {
    open(write("two.csv", ",Abies,Betula\nNorth,3,14\nSouth,5,6\n"));
    QAccessibleTableInterface& species = tableOf(speciesTable());
    ASSERT_EQ(species.rowCount(), 2);
    ASSERT_EQ(species.columnCount(), 3);
    const auto read = [](QAccessibleTableInterface& table, int row, int column) {
        QAccessibleInterface* cell = table.cellAt(row, column);
        std::string header = "?";
        for (QAccessibleInterface* each : cell->tableCellInterface()->columnHeaderCells()) {
            header = nameOf(*each);
            // They belong to the caller, who can delete them only in this way.
            QAccessible::deleteAccessibleInterface(QAccessible::registerAccessibleInterface(each));
        }
        return header + ": " + nameOf(*cell);
    };
    EXPECT_EQ(read(species, 1, 0), "Included in the metrics: Included in the metrics");
    EXPECT_EQ(read(species, 1, 1), "Name: Betula");
    EXPECT_EQ(read(species, 1, 2), "Abundance: 14");
    QAccessibleTableInterface& censuses = tableOf(censusTable());
    ASSERT_EQ(censuses.rowCount(), 2);
    EXPECT_EQ(read(censuses, 1, 0), "Census: South");
    EXPECT_EQ(read(censuses, 1, 1), "Species: 2");
}

// A message is announced to screen readers when it comes, and once.
TEST_F(AccessibilityTest, AMessageRaisesAnAlert) {
    alertsRaised.clear();
    auto& strip = child<MessageStrip>("messageStrip");
    strip.setMessage("file", "moss: the disk is full");
    strip.setMessage("file", "moss: the disk is full");
    window->mainView().messageStrip().addMessage("no");
    strip.dismiss();
    EXPECT_EQ(alertsRaised,
              (std::vector<std::string>{"moss: the disk is full", "moss: the disk is full\nno"}));
}

TEST_F(AccessibilityTest, MessagesAreAlertsAndExplanationsHelp) {
    open(exampleFile);
    window->mainView().messageStrip().addMessage("moss.csv could not be read");
    QTest::keyClick(&value("chaoOne"), Qt::Key_F1);
    std::vector<std::string> told;
    std::vector<std::string> help;
    visit(&root(), [&](QAccessibleInterface& item) {
        if (item.role() == QAccessible::AlertMessage) told.push_back(nameOf(item));
        if (item.role() == QAccessible::HelpBalloon) help.push_back(nameOf(item));
    });
    EXPECT_EQ(told, std::vector<std::string>{"moss.csv could not be read"});
    ASSERT_EQ(help.size(), 1u);
    EXPECT_EQ(help.front().rfind("Chao1, bias-corrected\n", 0), 0u);
    // The focus is in the text, so that it is read at once.
    EXPECT_EQ(nameOf(*QAccessible::queryAccessibleInterface(QApplication::focusWidget())),
              help.front());
}

}  // namespace
}  // namespace zorvel
