// Rows by way of the clipboard, which may contain anything.
#include <QClipboard>
#include <QMimeData>

#include "tests/support/extreme_values.h"
#include "tests/support/same_records.h"
#include "ui/main/clipboard_rows.h"
#include "ui/window_fixture.h"

namespace zorvel {
namespace {

class PasteTest : public WindowTest {
  protected:
    using Lines = std::vector<std::string>;

    void SetUp() override {
        WindowTest::SetUp();
        openTrees();
        revision_ = context().revision();
    }
    void paste(QWidget& target, const QString& text) {
        QApplication::clipboard()->setText(text);
        target.setFocus();
        trigger("paste");
    }
    std::string message() { return messages().value(0).toStdString(); }
    bool isUntouched() { return context().revision() == revision_; }
    // The records from a line on.
    Lines recordsFrom(std::size_t line) {
        const Lines all = records();
        return {all.begin() + static_cast<std::ptrdiff_t>(std::min(line, all.size())), all.end()};
    }
    static std::vector<TaxonValues> valuesOf(const Census& record) {
        std::vector<TaxonValues> values;
        record.block()->forEachTaxon(
            [&](const TaxonRecord& each) { values.push_back(each.values); });
        return values;
    }

  private:
    std::uint64_t revision_ = 0;
};

TEST_F(PasteTest, TextGoesToTheEndAsOneStep) {
    censusTable().selectRows({1});
    speciesTable().sortByColumn(1, Qt::DescendingOrder);
    paste(speciesTable(), "Acer\t7\r\n\"Picea\tabies\"\t0\r\nSalix\r\n\r\n");
    EXPECT_EQ(recordsFrom(7), (Lines{"Larix,1", "Acer,7", "Picea abies,0", "Salix,0"}));
    EXPECT_EQ(speciesTable().selectedRows().size(), 3U);
    EXPECT_EQ(text("individuals"), "19");
    EXPECT_EQ(context().undoName(), "Paste");
    trigger("undo");
    paste(censusTable(), "East\t\nWest\n");
    EXPECT_EQ(recordsFrom(7), (Lines{"Larix,1", "East", "West"}));
    EXPECT_EQ(censusTable().selectedRows(), (std::vector<int>{2, 3}));
    trigger("undo");
    EXPECT_FALSE(context().canUndo());
}

TEST_F(PasteTest, NothingIsPastedIfAnythingIsWrong) {
    const std::pair<QString, const char*> rows[] = {
        {"Acer\t7\n\nSalix\t-1", "Nothing was pasted: row 3, column 2: "},
        {"\t7", "Nothing was pasted: row 1, column 1: "},
        {"\n \n", "Nothing was pasted: "},
        {QString(QChar(0xD800)) + "\t3", "Nothing was pasted: "},
    };
    for (const auto& [copied, told] : rows) {
        paste(speciesTable(), copied);
        EXPECT_EQ(message().rfind(told, 0), 0U) << message();
        EXPECT_GT(message().size(), std::string(told).size());
        EXPECT_TRUE(isUntouched()) << told;
    }
    QApplication::clipboard()->clear();
    trigger("paste");
    EXPECT_EQ(message().rfind("Nothing was pasted: ", 0), 0U);
    EXPECT_TRUE(isUntouched());
    paste(speciesTable(), QString("Ab") + QChar(u'\0') + "ies\t7");
    EXPECT_EQ(records()[4], "Ab ies,7");
    EXPECT_EQ(message(), "");
    censusTable().clearSelection();
    paste(speciesTable(), "Acer\t7");
    EXPECT_NE(message().find("census"), std::string::npos) << message();
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
        EXPECT_NE(message().find(row.told), std::string::npos) << message();
        EXPECT_TRUE(isUntouched()) << row.told;
    }
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
    // Into the same project, into one that has no census and shows no table, and with the bytes
    // alone, as from another process.
    for (const char* into : {"same", "empty", "other process"}) {
        if (QString(into) == "empty") window = &windows->openUntitled();
        if (QString(into) == "other process") {
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
    }
}

TEST_F(PasteTest, SpeciesAreCutAndPastedWholeInTheOrderShown) {
    const std::vector<TaxonValues> odd = {
        {"Zea", most, false}, {std::nullopt, least, true}, {" a\nb ", 0, false}};
    context().insertTaxa(census(), odd);
    context().announceChanges();
    speciesTable().setFocus();
    speciesTable().sortByColumn(2, Qt::DescendingOrder);
    speciesTable().selectRows({0, 4, 5});
    trigger("cut");
    EXPECT_EQ(census().taxonCount(), 3U);
    EXPECT_EQ(context().undoName(), "Cut");
    censusTable().selectRows({1});
    speciesTable().setFocus();
    trigger("paste");
    const std::vector<TaxonValues> pasted = valuesOf(census(1));
    EXPECT_EQ(std::vector<TaxonValues>(pasted.begin() + 3, pasted.end()),
              (std::vector<TaxonValues>{odd[0], odd[2], odd[1]}));
    trigger("undo");
    trigger("undo");
    EXPECT_EQ(census().taxonCount(), 6U);
}

TEST_F(PasteTest, WhatIsTooMuchToCopyIsNotCut) {
    context().setNotes(census(), SharedText(std::string(longestCopy, 'n')));
    context().announceChanges();
    QApplication::clipboard()->setText("before");
    censusTable().setFocus();
    trigger("cut");
    EXPECT_EQ(context().censusCount(), 2U);
    EXPECT_EQ(QApplication::clipboard()->text(), "before");
    EXPECT_EQ(message().rfind("Nothing was copied: ", 0), 0U) << message();
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

}  // namespace
}  // namespace zorvel
