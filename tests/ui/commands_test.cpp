#include <QAction>
#include <QClipboard>
#include <QLineEdit>
#include <QTest>

#include "app/command_line.h"
#include "app/edit_commands.h"
#include "ui/kit/look.h"
#include "ui/window_fixture.h"

namespace zorvel {
namespace {

TEST(CommandLine, AnswersOptionsAndLeavesFiles) {
    const struct {
        QStringList arguments;
        bool answered;
        int status;
        const char* begins;
    } cases[] = {
        {{}, false, 0, ""},
        {{"counts.csv"}, false, 0, ""},
        {{"--help"}, true, 0, "Usage: zorvel"},
        {{"counts.csv", "--version"}, true, 0, "zorvel "},
        {{"--frobnicate"}, true, 2, "zorvel: unknown option --frobnicate"},
        {{"--", "--help"}, false, 0, ""},
    };
    for (const auto& test : cases) {
        const auto answer = answerCommandLine(test.arguments);
        ASSERT_EQ(answer.has_value(), test.answered) << test.arguments.join(' ').toStdString();
        if (!answer) continue;
        EXPECT_EQ(answer->status, test.status);
        EXPECT_TRUE(answer->text.startsWith(test.begins)) << answer->text.toStdString();
        EXPECT_TRUE(answer->text.endsWith('\n'));
    }
    EXPECT_EQ(filesOf({"--", "--help", "b.csv"}), (QStringList{"--help", "b.csv"}));
}

class CommandsTest : public WindowTest {
  protected:
    std::string clipboard() { return QApplication::clipboard()->text().toStdString(); }
};

TEST_F(CommandsTest, CopyTakesWhatTheFocusedPartHasSelected) {
    open(write("trees.csv", ",Abies,Betula\nNorth,3,14\nSouth,5,6\n"));
    ASSERT_TRUE(waitUntil([this] { return censusTable().hasFocus(); }));
    trigger("copy");
    EXPECT_EQ(clipboard(), "North\t2");
    speciesTable().setFocus();
    trigger("copy");
    EXPECT_EQ(clipboard(), "North\t2");  // nothing is selected there
    trigger("selectAll");
    trigger("copy");
    EXPECT_EQ(clipboard(), "Abies\t3\nBetula\t14");
    value("individuals").setFocus();
    trigger("selectAll");
    trigger("copy");
    EXPECT_EQ(clipboard(), "17");
    censusTable().setFocus();
    QTest::keyClick(&censusTable(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(clipboard(), "North\t2");
}

TEST_F(CommandsTest, ValuesCannotBeTyped) {
    open(write("trees.csv", ",Abies,Betula\nNorth,3,14\n"));
    QTest::keyClicks(&value("individuals"), "999");
    EXPECT_EQ(text("individuals"), "17");
}

TEST_F(CommandsTest, TheLookIsAppliedAndKept) {
    trigger("darkLook");
    EXPECT_EQ(schemeOf(QApplication::palette()), ColorScheme::dark);
    QCoreApplication::processEvents();
    EXPECT_EQ(child<QLabel>("censusCountLabel").palette().color(QPalette::WindowText),
              lookColors(ColorScheme::dark).secondary);
    EXPECT_EQ(LookChoice(*qApp).choice(), LookChoice::dark);
    MainWindowController& other = windows->openUntitled();
    EXPECT_TRUE(other.findChild<QAction*>("darkLook")->isChecked());
    other.findChild<QAction*>("lightLook")->trigger();
    EXPECT_TRUE(child<QAction>("lightLook").isChecked());
    EXPECT_EQ(schemeOf(QApplication::palette()), ColorScheme::light);
}

TEST_F(CommandsTest, OpenAndCloseFromTheMenu) {
    panel.answer = {write("trees.csv", ",Abies\nNorth,3\n")};
    trigger("openDocument");
    ASSERT_TRUE(waitUntil([this] { return censusTable().model()->rowCount() == 1; }));
    trigger("openDocument");  // the window is taken: the file gets another
    ASSERT_TRUE(waitUntil([this] { return windows->windows().size() == 2; }));
    trigger("performClose");
    EXPECT_EQ(windows->windows().size(), 1u);
}

}  // namespace
}  // namespace zorvel
