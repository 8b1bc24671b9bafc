// The window for tables, by its keys.
#include <QAbstractItemModel>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QListWidget>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QTableWidget>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

#include "app/imports.h"
#include "platform/file_reading.h"
#include "tables/guess.h"
#include "tables/source.h"
#include "ui/main/clipboard_rows.h"
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
    int remarkCount() { return part<QListWidget>("tableRemarks").count(); }
    QString headerOf(int column) {
        return part<QTableView>("tableSample")
            .model()
            ->headerData(column, Qt::Horizontal, Qt::AccessibleTextRole)
            .toString();
    }
};

TEST_F(TableDialogTest, ATableIsCorrectedByKeysAndImportedAsOneStep) {
    openTable("Plot;Abies;Larix;Other\nNorth;3;2.5;7\nSouth;1;2;9\n");
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
    EXPECT_EQ(headerOf(2), "Column C, role ignored");
    key(Qt::Key_Right);
    key(Qt::Key_Space);
    menu = dialog()->findChildren<QMenu*>("roleMenu").last();
    QTest::keyClick(menu, Qt::Key_Up);  // from the first to the last
    QTest::keyClick(menu, Qt::Key_Return);
    ASSERT_TRUE(waitUntil([&] { return headerOf(3) == "Column D, role ignored"; }));
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
    openTable("Plot;Abies;Larix;Other\nWest;5;;\n");
    ASSERT_TRUE(waitFor("Import 1 Census"));
    EXPECT_EQ(headerOf(3), "Column D, role ignored");
    key(Qt::Key_Escape);
    sendDeletions();
    EXPECT_EQ(dialog(), nullptr);
    EXPECT_EQ(context().censusCount(), 0u);
}

TEST_F(TableDialogTest, PastedAndDroppedColumnsAreShownFirst) {
    const QString text = "Plot\tAbies\tLarix\nNorth\t3\t1\nSouth\t0\t2\n";
    QApplication::clipboard()->setText(text);
    trigger("paste");  // into an empty project, where nothing takes it
    ASSERT_TRUE(waitUntil([this] { return dialog() != nullptr && isShown(); }));
    key(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(waitUntil([&] { return context().censusCount() == 2; }));
    EXPECT_EQ(messages(), QStringList{"Imported 2 censuses with 3 taxa from the clipboard."});
    sendDeletions();
    // Two columns are one too many for the names of censuses, three for species.
    for (RecordTableView* table : {static_cast<RecordTableView*>(&censusTable()),
                                   static_cast<RecordTableView*>(&speciesTable())}) {
        table->setFocus();
        trigger("paste");
        ASSERT_NE(dialog(), nullptr);
        dialog()->reject();
        sendDeletions();
    }
    // A browser may give no text.
    auto* page = new QMimeData;
    page->setHtml(
        "<p>Plots</p><table><tr><th>Plot</th><th>Abies &amp; Larix</th></tr>"
        "<tr><td>North<td>\n<b>3</b> </tr><tr><td>East</td><td>4</td></tr></table>");
    EXPECT_EQ(tableText(*page, 1), "Plot\tAbies & Larix\nNorth\t3\nEast\t4\n");
    QApplication::clipboard()->setMimeData(page);
    censusTable().setFocus();
    trigger("paste");
    ASSERT_TRUE(waitUntil([this] { return dialog() != nullptr && isShown(); }));
    EXPECT_EQ(context().censusCount(), 2u);
}

TEST_F(TableDialogTest, DoubtfulAndUtf16FilesAreShownFirst) {
    const QString semicolons = write("a.csv", "Plot;Abies\nNorth;3\n");
    const QString text = "\ufeffPlot;Abies\nNorth;4\n";
    const auto* units = reinterpret_cast<const char*>(text.utf16());
    const QString wide = write("b.csv", QByteArray(units, 2 * text.size()));
    emit window->filesDropped({semicolons, wide});
    ASSERT_TRUE(waitUntil([this] { return dialog() != nullptr && waitFor("Import 1 Census"); }));
    EXPECT_EQ(alerts.choices.size(), 1) << "UTF-16 is no question";
    key(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(waitUntil([&] { return context().censusCount() == 1; }));
    sendDeletions();
    ASSERT_TRUE(waitUntil([this] { return dialog() != nullptr && waitFor("Import 1 Census"); }));
    key(Qt::Key_Escape);
    sendDeletions();
    EXPECT_EQ(records(), (std::vector<std::string>{"North", "Abies,3"}));
    // An opened file makes a project of its own.
    windows->openFiles({wide}, window);
    ASSERT_TRUE(waitUntil([this] { return dialog() != nullptr && waitFor("Import 1 Census"); }));
    key(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(waitUntil([this] { return windows->windows().size() == 2; }));
    window = windows->windows().back();
    ASSERT_TRUE(waitUntil([&] { return context().censusCount() == 1; }));
}

TEST_F(TableDialogTest, SheetsOfAWorkbookAreShownAndItsFaultsTold) {
    emit window->filesDropped({ZORVEL_SOURCE_DIR
                               "/tests/data/workbooks/libreoffice_species_rows_totals.ods",
                               write("cut.xlsx", "PK\x03\x04 and nothing else")});
    ASSERT_TRUE(waitUntil([this] { return dialog() != nullptr && waitFor("Import 3 Censuses"); }));
    EXPECT_TRUE(alerts.choices.isEmpty());
    EXPECT_TRUE(part<QLabel>("tableUnderstood").text().startsWith("Understood: sheet "));
    key(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(waitUntil([&] { return context().censusCount() == 3; }));
    sendDeletions();
    ASSERT_TRUE(waitUntil([this] { return !alerts.warnings.isEmpty(); }));
    EXPECT_TRUE(alerts.warnings.front().startsWith("“cut.xlsx” could not be read: "));
}

TEST_F(TableDialogTest, ProblemsFoundByTheImportBringTheWindowBack) {
    QByteArray text = "Plot,Abies,Larix,Notes\n";
    const QByteArray filler(4000, 'x');
    for (int i = 0; i < 1100; ++i) text += "P" + QByteArray::number(i) + ",1,2," + filler + '\n';
    text += "Last,1,2.5\n";
    openTable(text);
    ASSERT_TRUE(
        waitUntil([&] { return title() == "Import All Rows" && importButton().isEnabled(); }));
    key(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(waitUntil([&] { return dialog()->isVisible() && remarkCount() > 0; }));
    EXPECT_EQ(part<QListWidget>("tableRemarks").item(0)->text().left(8), "C1102: 2");
    EXPECT_EQ(context().censusCount(), 0u);
    part<QPushButton>("tableTakeAsZero").click();
    ASSERT_TRUE(waitUntil([&] { return importButton().isEnabled(); }));
    key(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(waitUntil([&] { return context().censusCount() == 1101; }));
    EXPECT_EQ(census(1100).taxonCount(), 1u);
}

// Answers are numbered; the focus goes to what is to be done next.
TEST_F(TableDialogTest, WhatIsInDoubtIsAskedBeforeTheImport) {
    openTable("Name,A,B,C\nX,1.234,2,3\nY,4,5,6\nZ,7,8,2a\n");
    ASSERT_TRUE(waitUntil([&] { return title() == "Import 3 Censuses"; }));
    EXPECT_FALSE(importButton().isEnabled());
    const auto answers = [this] {
        return dialog()->findChildren<QPushButton*>("tableDoubtAnswer");
    };
    ASSERT_EQ(answers().size(), 3);
    EXPECT_EQ(answers()[1]->accessibleDescription(),
              "Zorvel is not sure whether B-D are censuses or species. Choose.");
    ASSERT_TRUE(waitUntil([&] { return dialog()->isActiveWindow(); }));
    QTest::keyClick(dialog()->windowHandle(), Qt::Key_2, Qt::AltModifier);
    ASSERT_TRUE(waitUntil([&] { return answers()[0]->text() == "&1: Yes, it is 1234"; }));
    EXPECT_EQ(dialog()->focusWidget(), answers()[0]);
    EXPECT_EQ(answers()[0]->accessibleDescription(),
              "Zorvel is not sure whether 1.234 is a whole number. Choose.");
    key(Qt::Key_Space);
    ASSERT_TRUE(waitUntil([&] { return answers().isEmpty(); }));
    EXPECT_EQ(dialog()->focusWidget(), &part<QListWidget>("tableRemarks")) << "a problem is left";
    ASSERT_TRUE(waitUntil([&] { return dialog()->isActiveWindow(); }));
    QTest::keyClick(dialog()->windowHandle(), Qt::Key_0, Qt::AltModifier);
    ASSERT_TRUE(waitFor("Import 3 Censuses"));
    EXPECT_EQ(headerOf(1), "Column B, role species");
}

// Answered once, also for the next file of the header.
TEST_F(TableDialogTest, NumbersThatMayBeYearsAreCountsOnlyIfTheAnswerSaysSo) {
    const auto answers = [this] {
        return dialog()->findChildren<QPushButton*>("tableDoubtAnswer");
    };
    const struct {
        int answer;
        QByteArray header;
        std::string role;
        std::vector<std::string> records;
    } cases[] = {{0, "Xyz", "ignored", {"A", "Poa,3", "B", "Poa,1", "C", "Poa,2"}},
                 {1,
                  "Zyx",
                  "species",
                  {"A", "Zyx,2019", "Poa,3", "B", "Zyx,2020", "Poa,1", "C", "Zyx,2019", "Poa,2"}}};
    for (const auto& [answer, header, role, imported] : cases) {
        const QByteArray text = "Site," + header + ",Poa\nA,2019,3\nB,2020,1\nC,2019,2\n";
        openTable(text);
        ASSERT_TRUE(waitUntil([&] { return answers().size() == 2; }));
        EXPECT_FALSE(importButton().isEnabled());
        EXPECT_EQ(answers()[0]->accessibleDescription(),
                  "Zorvel is not sure whether column B holds counts: its numbers look like years "
                  "or areas. Choose.");
        EXPECT_EQ(answers()[0]->text(), "&1: They are not counts");
        EXPECT_EQ(answers()[1]->text(), "&2: They are counts");
        answers()[answer]->click();
        ASSERT_TRUE(waitFor("Import 3 Censuses"));
        EXPECT_TRUE(answers().isEmpty());
        EXPECT_EQ(headerOf(1).toStdString(), "Column B, role " + role);
        key(Qt::Key_Return, Qt::ControlModifier);
        ASSERT_TRUE(waitUntil([&] { return context().censusCount() == 3; }));
        EXPECT_EQ(records(), imported);
        context().undo();
        sendDeletions();
        openTable(text);
        ASSERT_TRUE(waitFor("Import 3 Censuses"));
        key(Qt::Key_Escape);
        sendDeletions();
    }
}

TEST_F(TableDialogTest, CountsOfSexesAreAddedIfTheAnswerSaysSo) {
    openTable("Site,Species,Males,Females\nA,Lasius,2,3\nB,Lasius,4,4\n");
    ASSERT_TRUE(waitUntil([&] { return title() == "Import 2 Censuses"; }));
    const auto answers = dialog()->findChildren<QPushButton*>("tableDoubtAnswer");
    ASSERT_EQ(answers.size(), 3);
    EXPECT_EQ(answers[2]->text(), "&3: Their sum");
    answers[2]->click();
    ASSERT_TRUE(waitFor("Import 2 Censuses"));
    EXPECT_EQ(part<QTableWidget>("tableCensuses").item(1, 2)->text(), "8");
    key(Qt::Key_Escape);
    sendDeletions();
    // Of one census; the answer can be changed.
    openTable("Species,\u2642,\u2640\nLasius niger,2,3\nFormica rufa,4,4\n");
    const auto stages = [this] { return dialog()->findChildren<QPushButton*>("tableDoubtAnswer"); };
    ASSERT_TRUE(waitUntil([&] { return stages().size() == 2; }));
    EXPECT_EQ(
        stages()[0]->accessibleDescription(),
        "Zorvel is not sure whether to add the counts of columns B-C, whose headers differ in "
        "nothing but a sex or stage. Choose.");
    stages()[1]->click();
    ASSERT_TRUE(waitFor("Import 2 Censuses"));
    auto& box = part<QComboBox>("tableStagesBox");
    EXPECT_EQ(box.currentText(), "Kept apart");
    emit box.activated(0);
    ASSERT_TRUE(waitFor("Import 1 Census"));
    EXPECT_EQ(part<QTableWidget>("tableCensuses").item(0, 2)->text(), "13");
}

TEST_F(TableDialogTest, EachLetterLeadsToOnePart) {
    openTable("Name;A;B;C\nX;1;2;3,5\nY;4;5;6\n");
    part<QPushButton>("tableMoreButton").click();
    dialog()->offerSkip();
    dialog()->resize(700, 500);
    ASSERT_TRUE(waitUntil([this] { return part<QPushButton>("tableOptionsButton").isVisible(); }));
    part<QPushButton>("tableOptionsButton").click();
    QStringList letters;
    const auto take = [&letters](const QString& text) {
        const QString letter = QKeySequence::mnemonic(text).toString();
        if (!letter.isEmpty()) letters.append(letter);
    };
    for (auto* label : dialog()->findChildren<QLabel*>()) {
        if (label->isVisible() && label->buddy() != nullptr) take(label->text());
    }
    for (auto* button : dialog()->findChildren<QAbstractButton*>()) {
        if (button->isVisible()) take(button->text());
    }
    EXPECT_GE(letters.size(), 24);
    EXPECT_EQ(letters.removeDuplicates(), 0) << letters.join(' ').toStdString();
}

// Rows of a disk that does not answer, until they are not wanted any more.
class SlowSource final : public TableSource {
  public:
    [[nodiscard]] std::unique_ptr<RowSource> rows(const TextForm& /*form*/,
                                                  const std::stop_token& stop) const override {
        begun = true;
        std::mutex mutex;
        std::unique_lock lock(mutex);
        std::condition_variable_any answer;
        answer.wait_for(lock, stop, std::chrono::seconds(20), [] { return false; });
        stopped = stop.stop_requested();
        return std::make_unique<TextRows>(bytesOf("Plot,Abies\nNorth,3\n"), TextForm());
    }
    [[nodiscard]] TableGuess guess(const TableChoices& choices,
                                   const std::stop_token& /*stop*/) const override {
        return guessTable("Plot,Abies\nNorth,3\n", true, choices);
    }
    mutable std::atomic<bool> begun = false;
    mutable std::atomic<bool> stopped = false;
};

TEST_F(TableDialogTest, CancelEndsTheReadingOfAFileAndOfItsPreview) {
    const auto table = [this](const char* name) {
        KnownFile known;
        known.file = std::make_shared<NamedFile>(write(name, "Plot,Abies\nNorth,3\n"));
        known.isText = known.isTable = true;
        return known;
    };
    holdJobs();
    importFiles(*windows, CommandWindow(window), {table("a.csv"), table("b.csv")}, window);
    EXPECT_EQ(label("progressLabel"), "reading a.csv...");
    child<QPushButton>("cancelProgressButton").click();
    EXPECT_TRUE(isIdle());
    EXPECT_EQ(messages(), QStringList{"The import was cancelled. Also not imported: b.csv."});
    releaseJobs();
    drainJobs();
    EXPECT_EQ(dialog(), nullptr);

    const auto source = std::make_shared<SlowSource>();
    auto* slow = new TableDialog(
        "slow.csv", std::make_shared<TableInput>(TableInput{{{"", source}}}), *jobs, window);
    slow->open();
    EXPECT_EQ(part<QLabel>("tableUnderstood").text(), "Looking at the table...");
    ASSERT_TRUE(waitUntil([&] { return source->begun.load(); }));
    key(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(slow->isVisible()) << "there is nothing to import yet";
    key(Qt::Key_Escape);
    EXPECT_EQ(slow->result(), QDialog::Rejected);
    EXPECT_FALSE(slow->isVisible());
    delete slow;
    drainJobs();
    EXPECT_TRUE(source->stopped);
}

// Until a table is shown, the options are of no table.
TEST_F(TableDialogTest, NothingIsCorrectedBeforeTheFirstPreview) {
    holdJobs();
    emit window->mainView().tableGiven("a dropped table",
                                       "Plot\tAbies\tLarix\nNorth\t3\t1\nSouth\t0\t2\n");
    EXPECT_FALSE(part<QWidget>("tableOptions").isEnabled());
    releaseJobs();
    ASSERT_TRUE(waitFor("Import 2 Censuses"));
    EXPECT_TRUE(part<QWidget>("tableOptions").isEnabled());
    dialog()->reject();
    sendDeletions();

    emit window->filesDropped({ZORVEL_SOURCE_DIR "/tests/data/workbooks/cells.ods"});
    ASSERT_TRUE(waitUntil([this] { return dialog() != nullptr && isShown(); }));
    holdJobs();
    auto& layouts = part<QComboBox>("tableLayoutBox");
    emit layouts.activated(1);
    emit part<QComboBox>("tableSheetBox").activated(0);
    EXPECT_FALSE(layouts.isEnabled());
    releaseJobs();
    ASSERT_TRUE(waitUntil([&] { return layouts.isEnabled(); }));
    EXPECT_EQ(layouts.currentIndex(), 0) << "a sheet begins as it is guessed";
}

// Texts and tables are one series in the order in which they were dropped.
TEST_F(TableDialogTest, OfSeveralFilesOneIsSkippedOrAllAreCancelled) {
    const auto table = [this](const char* name) {
        const QString text = "\ufeffPlot;Abies\n" + QString(name) + ";4\n";
        return write(name,
                     QByteArray(reinterpret_cast<const char*>(text.utf16()), 2 * text.size()));
    };
    const auto isAsking = [this](const QString& name) {
        sendDeletions();
        return waitUntil([&] {
            return dialog() != nullptr && waitFor("Import 1 Census") &&
                   part<QTableWidget>("tableCensuses").item(0, 0)->text() == name;
        });
    };
    emit window->filesDropped({table("a"), write("b.txt", "7\n8\n9\n"), table("c"), table("d"),
                               write("e.txt", "7\n8\n9\n"), table("f")});
    ASSERT_TRUE(isAsking("a"));
    EXPECT_EQ(context().censusCount(), 0u) << "b.txt waits";
    part<QPushButton>("tableSkipButton").click();
    ASSERT_TRUE(isAsking("c"));
    EXPECT_EQ(context().censusCount(), 1u);
    key(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_TRUE(isAsking("d"));
    key(Qt::Key_Escape);
    drainJobs();
    EXPECT_EQ(context().censusCount(), 2u);
    EXPECT_EQ(messages().last(), "The import was cancelled. Also not imported: e.txt, f.");
}

}  // namespace
}  // namespace zorvel
