// The window for tables, by its keys.
#include <QAbstractItemModel>
#include <QComboBox>
#include <QHeaderView>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTableWidget>

#include "ui/tables/table_dialog.h"
#include "ui/window_fixture.h"

namespace zorvel {
namespace {

class TableDialogTest : public WindowTest {
  protected:
    // The window that shows the file, once it does.
    void openTable(const QByteArray& bytes) {
        panel.answer = {write("table.csv", bytes)};
        trigger("importTableMenuItemTapped");
        ASSERT_TRUE(waitUntil([this] { return dialog() != nullptr && isShown(); }));
    }
    TableDialog* dialog() { return window->findChild<TableDialog*>(); }
    template <class Widget>
    Widget& part(const char* name) {
        auto* widget = dialog() == nullptr ? nullptr : dialog()->findChild<Widget*>(name);
        if (widget == nullptr) throw std::runtime_error(std::string("no ") + name);
        return *widget;
    }
    bool isShown() { return part<QTableView>("tableSample").model()->rowCount() > 0; }
    QPushButton& importButton() { return part<QPushButton>("tableImportButton"); }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QWidget* focus = dialog()->focusWidget();
        QTest::keyClick(focus != nullptr ? focus : dialog(), key, modifiers);
    }
    std::string title() { return importButton().text().remove('&').toStdString(); }
    // Until a correction has its preview.
    bool waitFor(const std::string& wanted) {
        return waitUntil([&] { return title() == wanted && importButton().isEnabled(); });
    }
    QString headerOf(int column) {
        return part<QTableView>("tableSample")
            .model()
            ->headerData(column, Qt::Horizontal, Qt::AccessibleTextRole)
            .toString();
    }
};

TEST_F(TableDialogTest, ATableIsCorrectedByKeysAndImportedAsOneStep) {
    openTable("Plot;Abies;Larix;Height\nNorth;3;2.5;7\nSouth;1;2;9\n");
    ASSERT_TRUE(waitUntil([&] { return !importButton().text().contains("&Import\n"); }));
    EXPECT_FALSE(importButton().isEnabled()) << "2.5 is no count";
    auto& remarks = part<QListWidget>("tableRemarks");
    ASSERT_EQ(remarks.count(), 1);
    EXPECT_EQ(remarks.item(0)->text(), "C2: 2.5 is not a whole number. Zorvel counts individuals.");
    EXPECT_EQ(headerOf(2), "Column C, role species, 1 problem");
    key(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(dialog()->isVisible()) << "not with a problem";

    // Return in the list leads to the cell; Space opens the roles of its column.
    remarks.setFocus();
    key(Qt::Key_Return);
    auto& sample = part<QTableView>("tableSample");
    EXPECT_EQ(sample.currentIndex(), sample.model()->index(1, 2));
    EXPECT_EQ(dialog()->focusWidget(), &sample);
    EXPECT_EQ(sample.currentIndex().data(Qt::AccessibleTextRole).toString(),
              "C2: 2.5, problem: 2.5 is not a whole number. Zorvel counts individuals.");
    key(Qt::Key_Space);
    auto* menu = dialog()->findChild<QMenu*>("roleMenu");
    ASSERT_NE(menu, nullptr);
    QTest::keyClick(menu, Qt::Key_Up);  // from the first to the last
    QTest::keyClick(menu, Qt::Key_Return);
    ASSERT_TRUE(waitFor("Import 2 Censuses"));
    EXPECT_EQ(headerOf(2), "Column C, role left out");
    key(Qt::Key_Right);
    key(Qt::Key_Space);
    menu = dialog()->findChildren<QMenu*>("roleMenu").last();
    QTest::keyClick(menu, Qt::Key_Up);  // from the first to the last
    QTest::keyClick(menu, Qt::Key_Return);
    ASSERT_TRUE(waitUntil([&] { return headerOf(3) == "Column D, role left out"; }));
    ASSERT_TRUE(waitFor("Import 2 Censuses"));

    key(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(waitUntil([&] { return context().censusCount() == 2; }));
    EXPECT_EQ(records(), (std::vector<std::string>{"North", "Abies,3", "South", "Abies,1"}));
    EXPECT_EQ(messages(), QStringList{"Imported 2 censuses with 2 taxa from table.csv."});
    EXPECT_EQ(context().undoName(), "Import Table");
    context().undo();
    EXPECT_EQ(context().censusCount(), 0u);
    sendDeletions();
    EXPECT_EQ(dialog(), nullptr);

    // The next file of this header opens as this one was left.
    openTable("Plot;Abies;Larix;Height\nWest;5;;\n");
    ASSERT_TRUE(waitFor("Import 1 Census"));
    EXPECT_EQ(headerOf(3), "Column D, role left out");
    key(Qt::Key_Escape);
    sendDeletions();
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_EQ(context().censusCount(), 0u);
}

TEST_F(TableDialogTest, WhatIsInDoubtIsAskedBeforeTheImport) {
    openTable("Name,A,B,C\nX,1,2,3\nY,4,5,6\nZ,7,8,9\n");
    ASSERT_TRUE(waitUntil([&] { return title() == "Import 3 Censuses"; }));
    EXPECT_FALSE(importButton().isEnabled());
    const auto answers = dialog()->findChildren<QPushButton*>("tableDoubtAnswer");
    ASSERT_EQ(answers.size(), 2);
    EXPECT_EQ(answers[0]->accessibleDescription(),
              "Zorvel is not sure whether B-D are censuses or species. Choose.");
    answers[0]->click();
    ASSERT_TRUE(waitFor("Import 3 Censuses"));
    EXPECT_EQ(headerOf(1), "Column B, role census");
    EXPECT_EQ(part<QTableWidget>("tableCensuses").item(0, 0)->text(), "A");
}

}  // namespace
}  // namespace zorvel
