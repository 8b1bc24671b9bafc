#include <QClipboard>
#include <QInputMethodEvent>

#include "ui/key_presses.h"

namespace zorvel {
namespace {

class CompletionTest : public KeyPressTest {
  protected:
    void SetUp() override {
        KeyPressTest::SetUp();
        ASSERT_TRUE(waitUntil([this] { return window->isActiveWindow(); }));
        press(Qt::Key_N, Qt::ControlModifier | Qt::ShiftModifier);
        typeText("North\r");
        std::vector<TaxonValues> taxa;
        for (const char* name : {"Globigerina", "Globorotalia", "Cafe\u0301 noir",
                                 "\u00C4rmel alba", "\U00010400\U00010428 maior"}) {
            taxa.push_back({SharedText(name), 1, true});
        }
        known = taxa.size();
        context().insertTaxa(census(0), std::move(taxa));
        context().announceChanges();
        beginName();
    }
    // The name of a new row.
    void beginName() {
        press(Qt::Key_E, Qt::ControlModifier);
        ASSERT_NE(field(), nullptr);
        EXPECT_EQ(field()->text(), "");
    }
    void compose(const QString& preedit, const QString& commit) {
        QInputMethodEvent event(preedit, {});
        event.setCommitString(commit);
        QCoreApplication::sendEvent(field(), &event);
    }
    // The text with its selection in brackets.
    std::string shown() {
        QString text = field()->text();
        if (!field()->hasSelectedText()) return text.toStdString();
        text.insert(field()->selectionEnd(), ']');
        return text.insert(field()->selectionStart(), '[').toStdString();
    }
    std::size_t known = 0;
};

TEST_F(CompletionTest, WhatIsTypedAtTheEndIsCompleted) {
    const struct {
        const char* keys;
        const char* shown;
    } cases[] = {{"G", "G[lobigerina]"},
                 {"Glob", "Glob[igerina]"},
                 {"Globo", "Globo[rotalia]"},
                 {"glob", "glob"},
                 {"Globx", "Globx"},
                 {"Globigerina", "Globigerina"},
                 {"Globigerina ", "Globigerina "},
                 {"Caf", "Caf[e\u0301 noir]"},
                 {"Cafe", "Cafe"}};  // the name goes on with the accent of that letter
    for (const auto& each : cases) {
        field()->clear();
        typeText(each.keys);
        EXPECT_EQ(shown(), each.shown) << each.keys;
        // What is proposed is not typed yet.
        const auto drafted = context().frozenCopy(
            [this](ObjectContext& copy) { window->mainView().storeDrafts(copy); });
        EXPECT_EQ(drafted->taxa().back().name()->str(), QString(each.keys).trimmed().toStdString());
    }
}

TEST_F(CompletionTest, DeletedCutUndoneAndRedoneTextIsLeftAlone) {
    typeText("Globo");
    press(Qt::Key_Delete);
    EXPECT_EQ(shown(), "Globo");
    press(Qt::Key_Backspace);
    EXPECT_EQ(shown(), "Glob");
    field()->clear();
    field()->insert("Glob");
    press(Qt::Key_Backspace);
    press(QKeySequence::Undo);
    EXPECT_EQ(field()->text(), "Glob");
    press(QKeySequence::Redo);
    EXPECT_EQ(field()->text(), "Glo");
    press(Qt::Key_Left, Qt::ShiftModifier);
    press(QKeySequence::Cut);
    EXPECT_EQ(shown(), "Gl");
    QApplication::clipboard()->setText("ob");
    press(QKeySequence::Paste);
    EXPECT_EQ(shown(), "Glob[igerina]");
    press(Qt::Key_Backspace);
    EXPECT_EQ(shown(), "Glob");
}

TEST_F(CompletionTest, OnlyTheEndOfTheTextIsCompleted) {
    typeText("Glb");
    press(Qt::Key_Left);
    typeText("o");
    EXPECT_EQ(shown(), "Glob");
    press(Qt::Key_End);
    typeText("o");
    EXPECT_EQ(shown(), "Globo[rotalia]");
}

TEST_F(CompletionTest, ComposedTextIsCompletedOnceItIsThere) {
    compose("\u00A8", {});
    EXPECT_EQ(field()->text(), "");
    compose({}, "\u00C4");
    EXPECT_EQ(shown(), "\u00C4[rmel alba]");
    field()->clear();
    compose({}, "\U00010400");
    EXPECT_EQ(shown(), "\U00010400[\U00010428 maior]");
    compose({}, "\U00010428");
    EXPECT_EQ(shown(), "\U00010400\U00010428[ maior]");
}

TEST_F(CompletionTest, LeavingTheFieldTakesTheCompletion) {
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Tab, Qt::Key_Down}) {
        typeText("Globo");
        press(key);
        EXPECT_EQ(taxonName(census(0).taxonCount() - 1), "Globorotalia") << key;
        beginName();
    }
    for (const Qt::Key key : {Qt::Key_Right, Qt::Key_End}) {
        field()->clear();
        typeText("Globo");
        press(key);
        EXPECT_EQ(shown(), "Globorotalia") << key;
    }
    typeText(" alba");
    press(Qt::Key_Escape);
    EXPECT_EQ(taxonName(census(0).taxonCount() - 1), "");
}

TEST_F(CompletionTest, NewNamesBecomeKnownAndOldOnesStay) {
    press(Qt::Key_Escape);
    type(speciesTable(), 0, SpeciesTableView::kNameColumn, "Neogloboquadrina");
    trigger("addCensusMenuItemTapped");
    press(Qt::Key_Return);
    beginName();
    typeText("Neo");
    EXPECT_EQ(shown(), "Neo[globoquadrina]");
    field()->clear();
    typeText("Globi");
    EXPECT_EQ(shown(), "Globi[gerina]");
    press(Qt::Key_Escape);
    open(write("more.csv", ",Acer\nWest,3\n"));  // another project, which knows its own names alone
    window = windows->windows().back();
    ASSERT_EQ(records(), (std::vector<std::string>{"West", "Acer,3"}));
    type(speciesTable(), 0, SpeciesTableView::kNameColumn, "Globi");
    EXPECT_EQ(taxonName(0), "Globi");
}

}  // namespace
}  // namespace zorvel
