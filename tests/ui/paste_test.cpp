// Rows by way of the clipboard, which may hold anything.
#include <QClipboard>
#include <QHeaderView>
#include <QMimeData>

#include "tests/support/extreme_values.h"
#include "tests/support/same_records.h"
#include "ui/kit/message_strip.h"
#include "ui/main/clipboard_rows.h"
#include "ui/window_fixture.h"

namespace zorvel {
namespace {

class PasteTest : public WindowTest {
  protected:
    void SetUp() override {
        WindowTest::SetUp();
        open(write("trees.csv", ",Abies,Betula,Larix\nNorth,3,14,2\nSouth,5,6,1\n"));
        revision_ = context().revision();
    }
    Census census(std::size_t place = 0) { return context().censuses().at(place); }
    void paste(QWidget& target, const QString& text) {
        QApplication::clipboard()->setText(text);
        target.setFocus();
        trigger("paste");
    }
    QString message() { return child<MessageStrip>("messageStrip").messages().value(0); }
    bool isUntouched() { return context().revision() == revision_; }
    std::vector<std::string> taxa(std::size_t place) {
        std::vector<std::string> lines;
        for (const Zorvel& taxon : census(place).taxa()) {
            lines.push_back((taxon.name() ? taxon.name()->str() : "-") + "=" +
                            std::to_string(taxon.abundance()));
        }
        return lines;
    }

  private:
    std::uint64_t revision_ = 0;
};

TEST_F(PasteTest, SpeciesGoToTheEndOfTheSelectedCensusAsOneStep) {
    censusTable().selectRows({1});
    speciesTable().sortByColumn(1, Qt::DescendingOrder);
    paste(speciesTable(), "Acer\t7\r\n\"Picea\tabies\"\t0\r\nSalix\r\n\r\n");
    EXPECT_EQ(taxa(1), (std::vector<std::string>{"Abies=5", "Betula=6", "Larix=1", "Acer=7",
                                                 "Picea abies=0", "Salix=0"}));
    EXPECT_EQ(taxa(0).size(), 3U);
    EXPECT_EQ(speciesTable().selectedRows().size(), 3U);
    EXPECT_EQ(text("individuals"), "19");
    EXPECT_EQ(context().undoName(), "Paste");
    trigger("undo");
    EXPECT_EQ(taxa(1).size(), 3U);
    EXPECT_FALSE(context().canUndo());
}

TEST_F(PasteTest, CensusesComeByNameAndACopiedTableComesBack) {
    paste(censusTable(), "East\t12\nWest\n");
    ASSERT_EQ(context().censusCount(), 4U);
    EXPECT_EQ(census(2).name()->str(), "East");
    EXPECT_EQ(census(3).name()->str(), "West");
    EXPECT_EQ(censusTable().selectedRows(), (std::vector<int>{2, 3}));
    trigger("undo");
    EXPECT_EQ(context().censusCount(), 2U);
}

TEST_F(PasteTest, NothingIsPastedWhereACellIsWrong) {
    const struct {
        const char* copied;
        const char* told;
    } rows[] = {
        {"Acer\t7\nSalix\tx\n", "Nothing was pasted: row 2, column 2: "},
        {"Acer\t7\n\nSalix\t-1", "Nothing was pasted: row 3, column 2: "},
        {"\t7", "Nothing was pasted: row 1, column 1: "},
        {"Acer\t7\t9", "Nothing was pasted: row 1, column 3: "},
        {"\n \n", "Nothing was pasted: "},
    };
    for (const auto& row : rows) {
        paste(speciesTable(), row.copied);
        EXPECT_TRUE(message().startsWith(row.told)) << message().toStdString();
        EXPECT_GT(message().size(), QString(row.told).size());
        EXPECT_TRUE(isUntouched()) << row.copied;
    }
    paste(speciesTable(), "Acer\t7");
    EXPECT_EQ(message(), "");  // what has been mended is told no longer
}

TEST_F(PasteTest, TheClipboardMayHoldAnything) {
    paste(speciesTable(), QString(QChar(0xD800)) + "\t3");
    EXPECT_TRUE(message().startsWith("Nothing was pasted: "));
    EXPECT_TRUE(isUntouched());
    QApplication::clipboard()->clear();
    trigger("paste");
    EXPECT_TRUE(message().startsWith("Nothing was pasted: "));
    EXPECT_TRUE(isUntouched());
    paste(speciesTable(), QString("Ab") + QChar(u'\0') + "ies\t3");
    ASSERT_EQ(taxa(0).size(), 4U);
    EXPECT_EQ(taxa(0).back(), "Ab ies=3");
}

TEST_F(PasteTest, WithoutASelectedCensusItSaysWhy) {
    censusTable().clearSelection();
    paste(speciesTable(), "Acer\t7");
    EXPECT_TRUE(message().contains("census")) << message().toStdString();
    EXPECT_TRUE(isUntouched());
}

TEST_F(PasteTest, CopiedRowsHoldWhatIsStored) {
    const std::string longName(3000, 'n');
    const std::string odd = "\"q\"\tx\ny";
    context().insertTaxa(census(),
                         {{SharedText(longName), 1}, {std::nullopt, 2}, {SharedText(odd), 4}});
    context().announceChanges();
    speciesTable().selectRows({0, 3, 4, 5});
    EXPECT_EQ(speciesTable().selectedText().toStdString(),
              "Abies\t3\n" + longName + "\t1\n\t2\n\"\"\"q\"\"\tx\ny\"\t4");
    censusTable().selectAll();
    EXPECT_EQ(censusTable().selectedText(), "North\t6\nSouth\t3");
}

TEST_F(PasteTest, CensusesComeBackWholeInEveryProject) {
    const auto valuesOf = [](const Census& record) {
        std::vector<TaxonValues> values;
        record.block()->forEachTaxon(
            [&](const TaxonRecord& each) { values.push_back(each.values); });
        return values;
    };
    context().insertCensus({std::nullopt, 46.5, -120.25, "wet\nand cold", TimeStamp()},
                           {{"Abies", 3, false}, {std::nullopt, least, true}, {"a\nb", 0, true}});
    context().announceChanges();
    censusTable().setFocus();
    censusTable().sortByColumn(0, Qt::DescendingOrder);  // unnamed, South, North
    censusTable().selectRows({0, 1});
    const CensusAttributes attributes = census(2).block()->attributes;
    const std::vector<TaxonValues> odd = valuesOf(census(2));
    const std::vector<TaxonValues> south = valuesOf(census(1));
    trigger("cut");
    EXPECT_EQ(QApplication::clipboard()->text(), "\t0\nSouth\t3");
    ASSERT_EQ(context().censusCount(), 1U);
    // Into the same project, into one that has no census and shows no table, and, as another run
    // of the program finds them on the clipboard, once more.
    for (const char* into : {"same", "empty", "other run"}) {
        if (QString(into) == "empty") window = &windows->openUntitled();
        if (QString(into) == "other run") {
            auto* bytes = new QMimeData;
            bytes->setData(copiedCensusesType,
                           QApplication::clipboard()->mimeData()->data(copiedCensusesType));
            QApplication::clipboard()->setMimeData(bytes);
        }
        const std::size_t before = context().censusCount();
        trigger("paste");
        ASSERT_EQ(context().censusCount(), before + 2) << into;
        EXPECT_TRUE(sameAttributes(census(before).block()->attributes, attributes)) << into;
        EXPECT_EQ(valuesOf(census(before)), odd) << into;
        EXPECT_EQ(valuesOf(census(before + 1)), south) << into;
        EXPECT_EQ(censusTable().selectedRows().size(), 2U) << into;
        EXPECT_EQ(window->focusWidget(), &censusTable()) << into;
        trigger("undo");
        EXPECT_EQ(context().censusCount(), before) << into;
        trigger("redo");
        EXPECT_EQ(context().censusCount(), before + 2) << into;
    }
}

TEST_F(PasteTest, SpeciesComeBackWholeInTheOrderThatIsShown) {
    const std::vector<TaxonValues> odd = {
        {"Zea", most, false}, {std::nullopt, least, true}, {" a\nb ", 0, false}};
    context().insertTaxa(census(), odd);
    context().announceChanges();
    speciesTable().setFocus();
    speciesTable().sortByColumn(2, Qt::DescendingOrder);
    speciesTable().selectRows({0, 4, 5});
    trigger("cut");
    censusTable().selectRows({1});
    speciesTable().setFocus();
    trigger("paste");
    std::vector<TaxonValues> pasted;
    census(1).block()->forEachTaxon(
        [&](const TaxonRecord& each) { pasted.push_back(each.values); });
    EXPECT_EQ(std::vector<TaxonValues>(pasted.begin() + 3, pasted.end()),
              (std::vector<TaxonValues>{odd[0], odd[2], odd[1]}));
}

TEST_F(PasteTest, RecordsThatDoNotBelongThereOrAreDamagedAreRefused) {
    const struct {
        const char* type;
        QWidget& target;
        const char* told;
    } rows[] = {
        {copiedSpeciesType, censusTable(), "species"},
        {copiedCensusesType, speciesTable(), "censuses"},
        {copiedSpeciesType, speciesTable(), "damaged"},
        {copiedCensusesType, censusTable(), "damaged"},
    };
    for (const auto& row : rows) {
        auto* data = new QMimeData;
        data->setText("Acer\t7");
        data->setData(row.type, "zorvel records 1\nCT");
        QApplication::clipboard()->setMimeData(data);
        row.target.setFocus();
        trigger("paste");
        EXPECT_TRUE(message().contains(row.told)) << message().toStdString();
        EXPECT_TRUE(isUntouched()) << row.told;
    }
}

TEST_F(PasteTest, WhatIsTooMuchToCopyIsNotCut) {
    const SharedText notes(std::string(longestCopy, 'n'));
    context().setNotes(census(), notes);
    context().announceChanges();
    QApplication::clipboard()->setText("before");
    censusTable().setFocus();
    trigger("cut");
    EXPECT_EQ(context().censusCount(), 2U);
    EXPECT_EQ(QApplication::clipboard()->text(), "before");
    EXPECT_TRUE(message().startsWith("Nothing was copied: ")) << message().toStdString();
}

TEST_F(PasteTest, CutIsCopyAndDeleteInOneStep) {
    speciesTable().setFocus();
    speciesTable().selectRows({0, 2});
    trigger("cut");
    EXPECT_EQ(QApplication::clipboard()->text(), "Abies\t3\nLarix\t2");
    EXPECT_EQ(taxa(0), std::vector<std::string>{"Betula=14"});
    EXPECT_EQ(context().undoName(), "Cut");
    trigger("undo");
    EXPECT_EQ(taxa(0).size(), 3U);
    EXPECT_FALSE(context().canUndo());
    // What was cut in one census can be pasted into another.
    censusTable().selectRows({1});
    speciesTable().setFocus();
    trigger("paste");
    EXPECT_EQ(taxa(1).back(), "Larix=2");
}

TEST_F(PasteTest, TheDeleteKeyTakesAllSelectedRows) {
    speciesTable().setFocus();
    speciesTable().selectRows({0, 1});
    QTest::keyClick(&speciesTable(), Qt::Key_Delete);
    EXPECT_EQ(taxa(0), std::vector<std::string>{"Larix=2"});
    EXPECT_EQ(speciesTable().selectedRows(), std::vector<int>{0});
    trigger("undo");
    EXPECT_EQ(taxa(0).size(), 3U);
}

TEST_F(PasteTest, AHundredThousandRowsAtOnce) {
    QString rows;
    for (int i = 0; i < 100'000; ++i) rows += QString("Species %1\t%2\n").arg(i).arg(i % 7);
    paste(speciesTable(), rows);
    EXPECT_EQ(census().taxonCount(), 100'003U);
    EXPECT_EQ(speciesTable().selectedRows().size(), 100'000U);
    trigger("undo");
    EXPECT_EQ(census().taxonCount(), 3U);
}

TEST_F(PasteTest, ColumnWidthsAreKeptForTheNextWindow) {
    window->resize(1600, 700);  // room for names, which would take what wide columns have
    QHeaderView* header = speciesTable().horizontalHeader();
    header->resizeSection(2, 140);
    EXPECT_EQ(header->length(), speciesTable().viewport()->width());
    header->resizeSection(1, header->sectionSize(1) + 20);
    EXPECT_EQ(header->sectionSize(2), 120);
    const QByteArray layout = window->mainView().saveLayout();
    header->resizeSection(2, 200);
    window->mainView().restoreLayout(layout);
    EXPECT_EQ(header->sectionSize(2), 120);
    EXPECT_EQ(header->length(), speciesTable().viewport()->width());
    window->mainView().restoreLayout(layout.left(layout.size() / 2));  // of an earlier version
    EXPECT_EQ(header->sectionSize(2), 120);
}

}  // namespace
}  // namespace zorvel
