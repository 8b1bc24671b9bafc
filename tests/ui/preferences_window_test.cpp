#include <QAccessible>
#include <QLineEdit>
#include <QRadioButton>
#include <QScreen>
#include <QSignalSpy>

#include "ui/application_fixture.h"
#include "ui/kit/color_controls.h"

namespace zorvel {
namespace {

constexpr const char* sizeField = "rarefactionSampleSizeValueTextField";
constexpr const char* quotaField = "sqsQuotaValueTextField";

class PreferencesWindowTest : public ApplicationTest {
  protected:
    void SetUp() override {
        ApplicationTest::SetUp();
        show();
    }
    void show() {
        trigger("preferencesMenuItemTapped");
        QCoreApplication::processEvents();
    }
    void close() {
        preferencesWindow().close();
        sendDeletions();
    }
    void reopen() {
        close();
        show();
    }

    template <class Widget>
    Widget& control(const QString& name) {
        auto* widget = preferencesWindow().findChild<Widget*>(name);
        if (widget == nullptr) throw std::runtime_error("no " + name.toStdString());
        return *widget;
    }
    QLineEdit& field(const char* name) { return control<QLineEdit>(name); }
    std::string shown(const char* name) { return field(name).text().toStdString(); }
    std::string note(const char* name) { return control<QLabel>(name).text().toStdString(); }
    ColorWell& well() { return control<ColorWell>("plotColorWell"); }
    void typeInto(const char* name, const char* text) {
        field(name).setFocus();
        field(name).selectAll();
        QTest::keyClick(&field(name), Qt::Key_Delete);
        QTest::keyClicks(&field(name), text);
    }
    // Of numbers as they are stored.
    static std::string stored(const char* name) {
        return name == sizeField ? std::to_string(Preferences().rarefactionSize())
                                 : QString::number(Preferences().sqsQuota(), 'g', 17).toStdString();
    }
};

TEST_F(PreferencesWindowTest, ShowsWhatIsStored) {
    EXPECT_EQ(shown(sizeField), "50");
    EXPECT_EQ(shown(quotaField), "0.80");
    EXPECT_EQ(well().color(), QColor(255, 0, 0));
    EXPECT_TRUE(control<QRadioButton>("confidence95Button").isChecked());
    const QPoint screen = preferencesWindow().screen()->availableGeometry().topLeft();
    EXPECT_EQ(preferencesWindow().pos(), screen + QPoint(60, 60));
    EXPECT_LE(preferencesWindow().height(), 480 - 60 - 44);  // fits on a small screen
    ASSERT_TRUE(waitUntil([this] { return field(sizeField).hasFocus(); }));
    QTest::keyClicks(&field(sizeField), "10");  // instead of the number shown
    close();
    EXPECT_EQ(stored(sizeField), "10");
}

TEST_F(PreferencesWindowTest, NumbersAreReadLimitedAndStored) {
    const struct {
        const char* field;
        const char* typed;
        const char* stored;
        const char* reopened;
        const char* said;  // in the line beside the field; null: what the field is for
    } rows[] = {
        {sizeField, "120", "120", "120", nullptr},
        {sizeField, "0", "1", "1", "Stored as 1"},
        {sizeField, "25.5", "50", "50", "50 stays"},
        {sizeField, "9223372036854775808", "50", "50", "too large. 50 stays"},
        {quotaField, ".75", "0.75", "0.75", nullptr},
        {quotaField, "0.05", "0.050000000000000003", "0.05", nullptr},
        {quotaField, "1.2", "0.98999999999999999", "0.99", "Stored as 0.99"},
        {quotaField, "-3", "0.10000000000000001", "0.10", "Stored as 0.1"},
        {quotaField, "nan", "0.80000000000000004", "0.80", "0.8 stays"},
    };
    const std::string purposes[] = {note("sampleSizeNote"), note("quotaNote")};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.typed);
        const bool isSize = row.field == sizeField;
        const char* noteName = isSize ? "sampleSizeNote" : "quotaNote";
        typeInto(row.field, row.typed);
        const std::string before = isSize ? "50" : "0.80000000000000004";
        EXPECT_EQ(stored(row.field), before);  // typing alone stores nothing
        const std::string& purpose = purposes[isSize ? 0 : 1];
        if (row.said == nullptr) {
            EXPECT_EQ(note(noteName), purpose);
        } else {
            EXPECT_NE(note(noteName).find(row.said), std::string::npos) << note(noteName);
        }
        EXPECT_EQ(field(row.field).accessibleDescription().toStdString(), note(noteName));
        QTest::keyClick(&field(row.field), Qt::Key_Return);
        EXPECT_EQ(stored(row.field), row.stored);
        EXPECT_EQ(shown(row.field), row.typed);
        reopen();
        EXPECT_EQ(shown(row.field), row.reopened);
        EXPECT_EQ(note(noteName), purpose);
        close();
        clearSettings();
        show();
    }
}

TEST_F(PreferencesWindowTest, ARoundedQuotaIsSaidToBeRounded) {
    close();
    Preferences().setSqsQuota(0.123);
    show();
    EXPECT_EQ(shown(quotaField), "0.12");
    EXPECT_NE(note("quotaNote").find("stored value is 0.123"), std::string::npos);
    close();
    EXPECT_EQ(Preferences().sqsQuota(), 0.12);
}

TEST_F(PreferencesWindowTest, EveryClosingAnnouncesOnceAndNothingElseDoes) {
    QSignalSpy changes(windows.get(), &ProjectWindows::preferencesDidChange);
    QSignalSpy plotChanges(windows.get(), &ProjectWindows::plotPreferencesDidChange);
    QTest::mouseClick(&control<QRadioButton>("confidence99Button"), Qt::LeftButton);
    EXPECT_EQ(Preferences().confidence(), 0.99);
    EXPECT_FALSE(control<QRadioButton>("confidence95Button").isChecked());
    typeInto(sizeField, "20");
    QTest::keyClick(&field(sizeField), Qt::Key_Return);
    preferencesWindow().showMinimized();
    EXPECT_EQ(changes.count(), 0);
    EXPECT_EQ(plotChanges.count(), 1);
    close();
    EXPECT_EQ(changes.count(), 1);
    show();
    EXPECT_TRUE(control<QRadioButton>("confidence99Button").isChecked());
    QTest::keyClick(&preferencesWindow(), Qt::Key_Escape);  // untouched
    EXPECT_EQ(changes.count(), 2);
    EXPECT_EQ(delegate->preferencesWindowController(), nullptr);
}

TEST_F(PreferencesWindowTest, TheMetricsFollowWhenAFieldEndsEditingAndWhenItCloses) {
    open(exampleFile);
    ASSERT_TRUE(waitForJobs());
    show();  // the project's window has come to the front
    typeInto(sizeField, "20");
    field(quotaField).setFocus();
    EXPECT_TRUE(waitUntil(
        [this] { return label("rarefiedRichnessLabelTextField") == "Rarefied richness (20)"; }));
    typeInto(quotaField, "0.5");
    close();
    EXPECT_TRUE(
        waitUntil([this] { return label("alroySQSLabelTextField") == "Alroy SQS (quota: 0.50)"; }));
    ASSERT_TRUE(waitForJobs());
    EXPECT_EQ(text("rarefiedRichness"), "9.1");
    EXPECT_EQ(text("alroySQS"), "3.7");
}

TEST_F(PreferencesWindowTest, AnUnknownLevelShowsAs95AndStays) {
    close();
    Preferences().setConfidence(1e-7);
    console.clear();
    show();
    EXPECT_TRUE(control<QRadioButton>("confidence95Button").isChecked());
    EXPECT_EQ(console,
              std::vector<std::string>{"unexpected confidence level in Preferences: 1.0e-07"});
    EXPECT_EQ(Preferences().confidence(), 1e-7);
    QTest::mouseClick(&control<QRadioButton>("confidence95Button"), Qt::LeftButton);
    EXPECT_EQ(Preferences().confidence(), 0.95);
}

TEST_F(PreferencesWindowTest, TheWellTakesAColorWithItsAlphaFromThePanel) {
    QSignalSpy plotChanges(windows.get(), &ProjectWindows::plotPreferencesDidChange);
    well().setFocus();
    QTest::keyClick(&well(), Qt::Key_Return);
    EXPECT_EQ(colors.titles, QStringList{"Colour of the curve"});
    EXPECT_EQ(colors.shown, QColor(255, 0, 0));
    colors.choose(QColor(0, 114, 178, 102));
    EXPECT_EQ(Preferences().plotColor(), QColor(0, 114, 178, 102));
    EXPECT_EQ(well().color(), QColor(0, 114, 178, 102));
    EXPECT_EQ(plotChanges.count(), 1);
    const QAccessibleInterface* read = QAccessible::queryAccessibleInterface(&well());
    EXPECT_EQ(read->text(QAccessible::Name), "Colour of the curve");
    EXPECT_EQ(read->text(QAccessible::Description), "Blue, 40% opaque");
    // What lets the ground through is neither its own color nor the ground's all over.
    const QImage picture = well().grab().toImage();
    EXPECT_NE(picture.pixelColor(12, 16), picture.pixelColor(17, 16));

    close();
    colors.choose(QColor(Qt::green));  // the panel answers when the window has gone
    EXPECT_EQ(Preferences().plotColor(), QColor(0, 114, 178, 102));
}

TEST_F(PreferencesWindowTest, ThePaletteHasTheNamedColorsAndMarksTheOneInUse) {
    QSignalSpy plotChanges(windows.get(), &ProjectWindows::plotPreferencesDidChange);
    const std::vector<std::pair<QString, QString>> published = {{"Black", "#000000"},
                                                                {"Bluish green", "#009e73"},
                                                                {"Blue", "#0072b2"},
                                                                {"Vermillion", "#d55e00"},
                                                                {"Reddish purple", "#cc79a7"}};
    const auto chips = control<ColorPalette>("colorPalette").findChildren<ColorChip*>();
    ASSERT_EQ(static_cast<std::size_t>(chips.size()), published.size());
    for (qsizetype i = 0; i < chips.size(); ++i) {
        EXPECT_EQ(chips[i]->accessibleName(), published[static_cast<std::size_t>(i)].first);
        EXPECT_EQ(chips[i]->color().name(), published[static_cast<std::size_t>(i)].second);
        EXPECT_FALSE(chips[i]->isInUse());
    }
    chips[3]->setFocus();
    QTest::keyClick(chips[3], Qt::Key_Space);
    EXPECT_EQ(Preferences().plotColor(), QColor("#d55e00"));
    EXPECT_EQ(well().color(), QColor("#d55e00"));
    EXPECT_EQ(plotChanges.count(), 1);
    for (ColorChip* chip : chips) EXPECT_EQ(chip->isInUse(), chip == chips[3]);
}

TEST_F(PreferencesWindowTest, TheCommandBringsTheOpenWindowToTheFront) {
    typeInto(sizeField, "20");
    const PreferencesWindowController* first = &preferencesWindow();
    preferencesWindow().showMinimized();
    show();
    EXPECT_EQ(&preferencesWindow(), first);
    EXPECT_FALSE(preferencesWindow().isMinimized());
    EXPECT_EQ(Preferences().rarefactionSize(), 20);
    EXPECT_EQ(field(sizeField).selectedText(), "20");
    // What another program has stored meanwhile, and text that is no number.
    Preferences().setSqsQuota(0.123);
    typeInto(sizeField, "many");
    field(quotaField).setFocus();
    QTest::keyClick(&preferencesWindow(), Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_TRUE(field(sizeField).hasFocus());
    EXPECT_EQ(field(sizeField).selectedText(), "20");
    EXPECT_EQ(shown(quotaField), "0.12");
    EXPECT_EQ(Preferences().sqsQuota(), 0.123);
}

TEST_F(PreferencesWindowTest, TheEndOfTheProgramClosesIt) {
    QSignalSpy changes(windows.get(), &ProjectWindows::preferencesDidChange);
    EXPECT_FALSE(preferencesWindow().testAttribute(Qt::WA_QuitOnClose));
    typeInto(sizeField, "20");
    delegate.reset();
    EXPECT_EQ(Preferences().rarefactionSize(), 20);
    EXPECT_EQ(changes.count(), 1);
}

}  // namespace
}  // namespace zorvel
