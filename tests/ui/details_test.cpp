// The details of the selected census as a user types them, and the marks of shared names.
#include <QClipboard>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <limits>

#include "ui/kit/printed_sheet.h"
#include "ui/main/record_names.h"
#include "ui/window_fixture.h"

namespace zorvel {
namespace {

class DetailsTest : public WindowTest {
  protected:
    void SetUp() override {
        WindowTest::SetUp();
        openTrees();
    }
    QLineEdit& field(const std::string& name) {
        return child<QLineEdit>((name + "TextField").c_str());
    }
    QPlainTextEdit& notes() { return child<QPlainTextEdit>("notesTextView"); }
    void typeInto(QWidget& widget, const QString& text) {
        widget.setFocus();
        if (auto* line = qobject_cast<QLineEdit*>(&widget)) line->selectAll();
        if (auto* many = qobject_cast<QPlainTextEdit*>(&widget)) many->selectAll();
        QTest::keyClick(&widget, Qt::Key_Delete);
        QApplication::clipboard()->setText(text);
        QTest::keySequence(&widget, QKeySequence::Paste);
    }
    // Typed, and stored by Return.
    void enter(const std::string& name, const QString& text) {
        typeInto(field(name), text);
        QTest::keyClick(&field(name), Qt::Key_Return);
    }
};

TEST_F(DetailsTest, EachDetailIsAStepOfItsOwn) {
    enter("latitude", "46.5");
    enter("longitude", "7° 15' W");
    enter("date", "2024-05-31 14:05");
    typeInto(notes(), "wet\n  meadow");
    QTest::keyClick(&notes(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(census().latitude(), 46.5);
    EXPECT_EQ(census().longitude(), -7.25);
    EXPECT_EQ(census().notes()->str(), "wet\n  meadow");
    EXPECT_EQ(field("longitude").text(), "-7.25");
    EXPECT_EQ(
        window->mainView().printedCensus()->lines,
        (QStringList{"Project: trees", "Latitude 46.5, longitude -7.25", "Date: 2024-05-31 14:05",
                     "The metrics are those of the included species."}));
    for (const char* step :
         {"Change Notes", "Change Date", "Change Longitude", "Change Latitude"}) {
        EXPECT_EQ(context().undoName(), step);
        trigger("undo");
    }
    EXPECT_FALSE(context().canUndo());
    EXPECT_EQ(field("latitude").text(), "0");
    EXPECT_EQ(field("date").text(), "");
    EXPECT_EQ(notes().toPlainText(), "");
    for (int i = 0; i < 4; ++i) trigger("redo");
    EXPECT_EQ(field("date").text(), "2024-05-31 14:05");
    EXPECT_EQ(notes().toPlainText(), "wet\n  meadow");
}

TEST_F(DetailsTest, WhatCannotBeStoredStaysWithTheReasonAndIsReportedBeforeItGoes) {
    const struct {
        std::string name;
        const char* detail;
        const char* typed;
    } rows[] = {{"latitude", "Latitude", "91"},
                {"longitude", "Longitude", "nan"},
                {"date", "Date", "2023-02-29"}};
    int other = 1;
    for (const auto& [name, detail, typed] : rows) {
        SCOPED_TRACE(name);
        const auto& problem = child<QLabel>((name + "Problem").c_str());
        const QString stored = field(name).text();
        enter(name, typed);
        EXPECT_EQ(field(name).text(), typed);
        EXPECT_TRUE(problem.isVisible());
        EXPECT_FALSE(problem.text().isEmpty());
        EXPECT_EQ(field(name).accessibleDescription(), problem.text());
        QTest::keyClick(&field(name), Qt::Key_Escape);
        EXPECT_FALSE(problem.isVisible());
        EXPECT_EQ(field(name).text(), stored);
        enter(name, typed);
        const QString begin = QString("%1: “%2” was not stored: ").arg(detail, typed);
        EXPECT_FALSE(window->close());
        EXPECT_TRUE(messages().value(0).startsWith(begin)) << messages().join('|').toStdString();
        strip().dismiss();
        censusTable().selectRows({other});
        other = 1 - other;
        ASSERT_EQ(messages().size(), 1);
        EXPECT_TRUE(messages().front().startsWith(begin));
        EXPECT_EQ(field(name).text(), stored);
        EXPECT_FALSE(problem.isVisible());
        strip().dismiss();
    }
    EXPECT_FALSE(context().canUndo());
}

TEST_F(DetailsTest, WhatIsTypedIsADraftUntilItIsAnEdit) {
    typeInto(field("latitude"), "north of here");
    typeInto(field("longitude"), "2.5");
    typeInto(notes(), "by the brook");
    const auto copy = drafts();
    EXPECT_EQ(copy->censuses()[0].latitude(), 0);
    EXPECT_EQ(copy->censuses()[0].longitude(), 2.5);
    EXPECT_EQ(copy->censuses()[0].notes()->str(), "by the brook");
    EXPECT_EQ(census(0).notes()->str(), "");
    // An end that cannot ask stores the same and tells of the rest.
    window->mainView().endEditing();
    EXPECT_EQ(census(0).notes()->str(), "by the brook");
    ASSERT_EQ(messages().size(), 1);
    EXPECT_TRUE(messages().front().contains("“north of here”"));
}

TEST_F(DetailsTest, WhatWasTypedIsStoredByLeavingItWhicheverWay) {
    typeInto(field("latitude"), "1.5");
    field("longitude").setFocus();
    EXPECT_EQ(census(0).latitude(), 1.5);
    typeInto(field("longitude"), "2.5");
    censusTable().selectRows({1});
    EXPECT_EQ(census(0).longitude(), 2.5);
    EXPECT_EQ(census(1).longitude(), 0);
    typeInto(notes(), "of the south");
    trigger("addCensusMenuItemTapped");
    EXPECT_EQ(census(1).notes()->str(), "of the south");
    EXPECT_FALSE(census(2).notes());
}

TEST_F(DetailsTest, AnUnchangedTextIsNoEditWhateverWasImported) {
    const double outside = 1234.5;
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const SharedText odd("one\r\ntwo\u00A0\u2028three");
    context().insertCensus({"Odd", outside, nan, odd, std::nullopt}, {});
    context().announceChanges();
    const std::uint64_t revision = context().revision();
    censusTable().selectRows({2});
    EXPECT_EQ(field("latitude").text(), "1234.5");
    EXPECT_EQ(field("longitude").text(), "nan");
    for (QWidget* each :
         {static_cast<QWidget*>(&field("latitude")), static_cast<QWidget*>(&field("longitude")),
          static_cast<QWidget*>(&field("date")), static_cast<QWidget*>(&notes())}) {
        each->setFocus();
        QTest::keyClick(each, Qt::Key_X);
        QTest::keyClick(each, Qt::Key_Backspace);
        QTest::keyClick(each, Qt::Key_Return, Qt::ControlModifier);
    }
    censusTable().setFocus();
    EXPECT_EQ(context().revision(), revision);
    EXPECT_EQ(census(2).notes()->str(), odd.str());
    // An edit of the notes keeps the spaces that do not break.
    notes().setFocus();
    notes().moveCursor(QTextCursor::End);
    QTest::keyClicks(&notes(), "!");
    QTest::keyClick(&notes(), Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(census(2).notes()->str(), "one\ntwo\u00A0\u2028three!");
}

TEST_F(DetailsTest, NotesTooLongForAnEditorAreShownInPart) {
    std::string megabytes(5'000'000, 'x');
    context().insertCensus({"Phone", 0, 0, SharedText(megabytes), std::nullopt}, {});
    context().announceChanges();
    censusTable().selectRows({2});
    EXPECT_LT(notes().toPlainText().size(), 50'000);
    EXPECT_TRUE(notes().isReadOnly());
    EXPECT_TRUE(child<QLabel>("notesProblem").isVisible());
    notes().setFocus();
    QTest::keyClicks(&notes(), "y");
    censusTable().selectRows({0});
    EXPECT_FALSE(notes().isReadOnly());
    EXPECT_FALSE(child<QLabel>("notesProblem").isVisible());
    EXPECT_EQ(census(2).notes()->str().size(), megabytes.size());
}

TEST_F(DetailsTest, TypedTextOutlivesAnUndoAndADeletedCensus) {
    enter("latitude", "12");
    typeInto(field("latitude"), "bad");
    trigger("undo");  // the field's own typing
    typeInto(field("latitude"), "bad");
    window->mainView().undo();
    EXPECT_EQ(census().latitude(), 0);
    EXPECT_EQ(field("latitude").text(), "bad");
    context().deleteCensuses({census()});
    context().announceChanges();
    ASSERT_FALSE(messages().isEmpty());
    EXPECT_TRUE(messages().back().contains("“bad”"));
}

TEST_F(DetailsTest, SharedNamesAreMarkedAsTheyComeAndGo) {
    const auto isMarked = [](QTableView& table, int row, int column) {
        const QModelIndex cell = table.model()->index(row, column);
        return cell.data(Qt::DecorationRole).isValid() &&
               !cell.data(Qt::AccessibleDescriptionRole).toString().isEmpty();
    };
    context().insertTaxa(census(), {{"Carex", 1}, {"Acer", 2}});
    context().announceChanges();
    EXPECT_FALSE(isMarked(speciesTable(), 0, 1));
    type(speciesTable(), 1, 1, "Abies");
    EXPECT_TRUE(isMarked(speciesTable(), 0, 1));
    EXPECT_TRUE(isMarked(speciesTable(), 1, 1));
    EXPECT_FALSE(isMarked(speciesTable(), 2, 1));
    EXPECT_TRUE(child<QLabel>("sharedNamesLabel").text().contains("“Abies”"));
    trigger("undo");
    EXPECT_FALSE(isMarked(speciesTable(), 0, 1));
    EXPECT_FALSE(child<QLabel>("sharedNamesLabel").isVisible());

    type(censusTable(), 1, 0, "North");
    EXPECT_TRUE(isMarked(censusTable(), 0, 0));
    EXPECT_TRUE(isMarked(censusTable(), 1, 0));
    censusTable().selectRows({1});
    window->mainView().deleteCensusRows();
    EXPECT_FALSE(isMarked(censusTable(), 0, 0));
}

TEST_F(DetailsTest, AListWithoutNamesIsToldInOneLine) {
    open(write("list.csv", "3\n4\n5\n"));
    QLabel& line = child<QLabel>("sharedNamesLabel");
    context().insertTaxa(census(0), std::vector<TaxonValues>(40, {"unnamed taxon", 1}));
    context().announceChanges();
    censusTable().selectRows({0});
    EXPECT_TRUE(line.text().startsWith("40 ")) << line.text().toStdString();
    EXPECT_FALSE(speciesTable().model()->index(5, 1).data(Qt::DecorationRole).isValid());
    EXPECT_TRUE(speciesTable()
                    .model()
                    ->index(5, 1)
                    .data(Qt::ToolTipRole)
                    .toString()
                    .contains(sharedSpeciesReason));
}

TEST(SharedNames, AreCanonicallyEqual) {
    const std::optional<SharedText> none;
    const std::optional<SharedText> composed = SharedText("\u00C9chinops");
    const std::optional<SharedText> decomposed = SharedText("E\u0301chinops");
    const std::optional<SharedText> other = SharedText("echinops");
    SharedNames names;
    for (const auto& name : {none, none, composed, other, decomposed, composed}) names.add(name);
    EXPECT_FALSE(names.isShared(none));
    EXPECT_TRUE(names.isShared(composed));
    EXPECT_TRUE(names.isShared(decomposed));
    EXPECT_FALSE(names.isShared(other));
    EXPECT_EQ(names.recordCount(), 3U);
    EXPECT_EQ(names.names().size(), 1U);
}

}  // namespace
}  // namespace zorvel
