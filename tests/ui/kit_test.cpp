#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QToolTip>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <utility>
#include <vector>

#include "ui/kit/alerts.h"
#include "ui/kit/color_controls.h"
#include "ui/kit/glyphs.h"
#include "ui/kit/look.h"
#include "ui/kit/message_strip.h"
#include "ui/kit/shown_text.h"
#include "ui/kit/small_widgets.h"
#include "ui/kit/value_field.h"
#include "ui/kit/window_placement.h"

namespace zorvel {
namespace {

// Relative luminance and contrast ratio (Web Content Accessibility Guidelines 2.1, 1.4.3).
double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

double contrast(const QColor& a, const QColor& b) {
    const double first = luminance(a) + 0.05;
    const double second = luminance(b) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

constexpr double textRatio = 4.5;  // 1.4.3
constexpr double markRatio = 3.0;  // 1.4.11

TEST(Look, TextsAndMarksStandOutFromTheirGrounds) {
    using C = LookColors;
    const struct {
        double least;
        std::vector<QColor C::*> inks;
        std::vector<QColor C::*> grounds;
    } rows[] = {
        {7,
         {&C::text},
         {&C::window, &C::base, &C::alternate, &C::raised, &C::quietSelection, &C::warning}},
        {textRatio, {&C::secondary}, {&C::window, &C::base, &C::alternate, &C::raised}},
        {textRatio, {&C::secondary}, {&C::quietSelection, &C::hover}},
        {textRatio, {&C::greyed, &C::problem}, {&C::window, &C::base, &C::raised}},
        {textRatio, {&C::accent}, {&C::window, &C::base, &C::raised}},
        {textRatio, {&C::selectionText, &C::selectionSecondary}, {&C::selection}},
        {markRatio, {&C::border}, {&C::window, &C::base, &C::alternate, &C::raised}},
        {markRatio, {&C::accent}, {&C::alternate, &C::quietSelection}},
        {markRatio, {&C::warningMark}, {&C::window, &C::base, &C::alternate, &C::warning}},
    };
    for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
        const LookColors& colors = lookColors(scheme);
        EXPECT_EQ(schemeOf(lookPalette(scheme)), scheme);
        for (const auto& row : rows) {
            for (const auto ink : row.inks) {
                for (const auto ground : row.grounds) {
                    EXPECT_GE(contrast(colors.*ink, colors.*ground), row.least)
                        << (colors.*ink).name().toStdString() << " on "
                        << (colors.*ground).name().toStdString();
                }
            }
        }
    }
    for (const NamedColor& each : distinctColors()) {
        EXPECT_GE(contrast(each.color, Qt::white), markRatio) << each.name.toStdString();
    }
}

TEST(Look, EveryPairOfThePaletteIsLegible) {
    const std::pair<QPalette::ColorRole, QPalette::ColorRole> pairs[] = {
        {QPalette::WindowText, QPalette::Window},
        {QPalette::Text, QPalette::Base},
        {QPalette::Text, QPalette::AlternateBase},
        {QPalette::ButtonText, QPalette::Button},
        {QPalette::PlaceholderText, QPalette::Base},
        {QPalette::PlaceholderText, QPalette::Window},
        {QPalette::ToolTipText, QPalette::ToolTipBase},
        {QPalette::Link, QPalette::Window},
        {QPalette::HighlightedText, QPalette::Highlight},
    };
    for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
        const QPalette palette = lookPalette(scheme);
        for (const auto group : {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            for (const auto& [ink, ground] : pairs) {
                EXPECT_GE(contrast(palette.color(group, ink), palette.color(group, ground)),
                          textRatio)
                    << group << ' ' << ink << ' ' << ground;
            }
        }
    }
}

// The strongest contrast to the ground in the middle of what the widget paints.
double strongestContrast(QWidget& widget, const QColor& ground, int from, int to) {
    widget.adjustSize();
    const QImage picture = widget.grab().toImage();
    double strongest = 1;
    for (int x = from; x < std::min(to, picture.width() - from); ++x) {
        const QColor pixel = picture.pixelColor(x, picture.height() / 2);
        strongest = std::max(strongest, contrast(pixel, ground));
    }
    return strongest;
}

// What is painted, not what the palette holds.
TEST(Look, EdgesOfControlsAndWordsOnButtonsCanBeSeen) {
    for (const ColorScheme scheme : {ColorScheme::dark, ColorScheme::light}) {
        applyLook(*qApp, scheme);
        const QColor ground = lookColors(scheme).window;
        QWidget panel;
        QWidget* controls[] = {new QLineEdit(&panel), new QCheckBox("x", &panel),
                               new QComboBox(&panel), new QRadioButton("x", &panel),
                               new QSpinBox(&panel),  new QPlainTextEdit(&panel)};
        for (QWidget* control : controls) {
            EXPECT_GE(strongestContrast(*control, ground, 0, 3), markRatio)
                << control->metaObject()->className();
        }
        auto* on = new QRadioButton(&panel);
        on->setChecked(true);
        EXPECT_GE(strongestContrast(*on, ground, 6, 10), markRatio);
        auto* refused = new QPushButton("Open", &panel);
        refused->setProperty(primaryButtonProperty, true);
        refused->setEnabled(false);
        EXPECT_GE(strongestContrast(*refused, ground, 5, 80), markRatio);
    }
}

TEST(Look, AlertsBearTheSignOfTheMessageStrip) {
    applyLook(*qApp, ColorScheme::light);
    QMessageBox box;
    const QIcon sign = glyphIcon(Glyph::warning, &LookColors::warningMark);
    for (const auto icon : {QMessageBox::Warning, QMessageBox::Critical, QMessageBox::Question}) {
        box.setIcon(icon);
        EXPECT_EQ(box.iconPixmap().toImage(), sign.pixmap(box.iconPixmap().size()).toImage());
    }
}

TEST(AlertsTest, TabGoesRoundTheOptionsAndTheButtons) {
    QStringList reached;
    QTimer::singleShot(0, qApp, [&reached] {
        QWidget* const dialog = QApplication::activeModalWidget();
        for (int i = 0; i < 4; ++i) {
            const QWidget* const focus = dialog->focusWidget();
            const auto* const button = qobject_cast<const QAbstractButton*>(focus);
            reached += button != nullptr ? button->text().remove('&') : "none";
            QTest::keyClick(dialog, Qt::Key_Tab);
        }
        QTest::keyClick(dialog, Qt::Key_Escape);
    });
    Choice choice;
    choice.options = {"List", "Matrix"};
    choice.preselected = 1;
    choice.accept = "Import";
    EXPECT_EQ(Alerts().choose(nullptr, choice), -1);
    EXPECT_EQ(reached, (QStringList{"Matrix", "Import", "Cancel", "Matrix"}));
}

// Rows of any height, as wrapped texts give them.
TEST(CardTest, AHairlineStandsAboveEachRowButTheFirst) {
    Card card;
    auto* grid = new QGridLayout(&card);
    grid->setVerticalSpacing(0);
    for (int row = 0; row < 3; ++row) {
        auto* text = new QLabel("words that do not fit into one line of the card", &card);
        text->setWordWrap(true);
        grid->addWidget(text, row, 0);
    }
    card.resize(120, card.heightForWidth(120));
    const QImage picture = card.grab().toImage();
    for (int row = 0; row < 3; ++row) {
        const QRect room = grid->itemAtPosition(row, 0)->geometry();
        EXPECT_EQ(
            picture.pixelColor(room.right(), room.top()) == lookColors(card.palette()).hairline,
            row > 0)
            << row;
    }
}

TEST(FittingSize, AWindowFitsItsScreenWithItsFrame) {
    constexpr QSize frame(2, 25);
    const struct {
        QSize wanted, screen;
        QPoint corner;
    } rows[] = {{{1024, 700}, {1024, 700}, {}},
                {{1000, 620}, {1024, 700}, {100, 100}},
                {{720, 560}, {800, 480}, {120, 120}}};
    for (const auto& row : rows) {
        const QSize outer = fittingSize(row.wanted, row.screen, row.corner) + frame;
        EXPECT_TRUE(QRect({}, row.screen).contains(QRect(row.corner, outer)));
    }
    EXPECT_EQ(fittingSize({1024, 700}, {1920, 1080}), QSize(1024, 700));
}

TEST(FittingSize, WindowsCascadeWithinTheirScreen) {
    constexpr QSize least(780, 420);
    const struct {
        QRect screen;
        QPoint before, next;
    } rows[] = {{{0, 30, 1920, 1050}, {200, 100}, {230, 130}},
                {{0, 0, 800, 480}, {0, 0}, {8, 16}},
                {{0, 0, 800, 480}, {8, 16}, {0, 0}}};
    for (const auto& row : rows) {
        EXPECT_EQ(cascadedPlace(row.before, least, row.screen), row.next);
    }
}

// Labels that Qt makes, too.
TEST(Look, EveryLabelShowsMarkupAsText) {
    applyLook(*qApp, ColorScheme::light);
    const QString name = "<img src=\"/p.png\"><b>x</b>";
    QMessageBox box;
    box.setText(name);
    box.setInformativeText(name);
    QLabel label(name, &box);
    box.show();
    QToolTip::showText({}, name);
    int shown = 0;
    for (QWidget* widget : QApplication::allWidgets()) {
        const auto* each = qobject_cast<QLabel*>(widget);
        if (each == nullptr || each->text() != name) continue;
        EXPECT_EQ(each->textFormat(), Qt::PlainText) << each->metaObject()->className();
        ++shown;
    }
    EXPECT_EQ(shown, 4);
    QToolTip::hideText();
}

TEST(Look, LongTooltipsAreShownInLines) {
    applyLook(*qApp, ColorScheme::light);
    const QString words = QString("<b>words ").repeated(40);
    QWidget widget;
    QTableWidget table(1, 1);
    table.setItem(0, 0, new QTableWidgetItem("cell"));
    const QPoint place = table.visualItemRect(table.item(0, 0)).center();
    for (const QString& tip : {QString("short"), words, QString(4000, 'x')}) {
        widget.setToolTip(tip);
        table.item(0, 0)->setToolTip(tip);
        for (QWidget* each : {&widget, table.viewport()}) {
            QHelpEvent help(QEvent::ToolTip, place, place);
            QApplication::sendEvent(each, &help);
            QString shown = QToolTip::text();
            for (const QString& line : shown.split('\n')) EXPECT_LE(line.size(), 80);
            EXPECT_EQ(shown.contains('\n'), tip.size() > 80);
            EXPECT_EQ(shown.remove('\n').remove(' '), QString(tip).remove(' '));
            QToolTip::hideText();
        }
    }
}

TEST(ValueFieldTest, ALongNumberIsSetSmallerUntilItFits) {
    QWidget panel;
    ValueField field(&panel);
    field.setScale(2);
    field.resize(100, 40);
    field.setText("140");
    const QFont large = field.font();
    field.setText("9223372036854775807");
    EXPECT_LE(QFontMetrics(field.font()).horizontalAdvance(field.text()), 130);
    EXPECT_LT(field.font().pointSizeF(), large.pointSizeF());
    field.setText("140");
    EXPECT_EQ(field.font(), large);
}

TEST(ValueFieldTest, ASchemeChangeKeepsTheMarkOfAStaleValue) {
    QWidget panel;
    ValueField field(&panel);
    field.setExplanation("what it means");
    field.setStale("whose it is");
    applyLook(*qApp, ColorScheme::dark);
    QCoreApplication::processEvents();
    EXPECT_EQ(field.palette().color(QPalette::Text), lookColors(ColorScheme::dark).greyed);
    EXPECT_EQ(field.toolTip(), "whose it is");
    field.setStale({});
    EXPECT_EQ(field.palette().color(QPalette::Text), lookColors(ColorScheme::dark).text);
    EXPECT_EQ(field.toolTip(), "what it means");
    applyLook(*qApp, ColorScheme::light);
    QCoreApplication::processEvents();
    EXPECT_EQ(field.palette().color(QPalette::Text), lookColors(ColorScheme::light).text);
}

TEST(ShownTextTest, ALineShowsAMarkForWhatIsNotSeen) {
    const struct {
        QString text;
        QString line;
    } rows[] = {
        {"Abies alba", "Abies alba"},
        {"a\nb\r\nc\rd", "a\u21b5b\u21b5c\u21b5d"},
        {u"a\u2028b\u2029c\u0085d"_qs, "a\u21b5b\u21b5c\u21b5d"},
        {"a\tb\x1b[2J", "a\u21e5b\ufffd[2J"},
        {u"a\u202eb\u2066c\u009bd\u007f"_qs, "a\ufffdb\ufffdc\ufffdd\ufffd"},
        {u"\u05d0\u200f \u00e9 \U0001f33f"_qs, u"\u05d0\u200f \u00e9 \U0001f33f"_qs},
    };
    for (const auto& row : rows) EXPECT_EQ(oneLine(row.text), row.line) << row.line.toStdString();
    EXPECT_EQ(withShortWords("in abcdefghij kl", 6), "in abc\u2026hij kl");
    EXPECT_EQ(withShortWords("a abcdef\n", 6), "a abcdef\n");
    QWidget window;
    window.setWindowTitle(asWindowTitle("a[*]\nb") + "[*]");
    window.setWindowModified(true);
    window.show();
    EXPECT_EQ(window.windowHandle()->title(), "a[*]\u21b5b*");
}

// What is copied or read aloud is what was set.
TEST(WrappedLabelTest, BreaksWordsThatAreTooLongAndAddsNothing) {
    const QString text = "Core " + QString("W_ong").repeated(40) + " end";
    WrappedLabel label;
    label.setText(text);
    label.resize(250, label.heightForWidth(250));
    label.show();
    EXPECT_LT(label.minimumSizeHint().width(), 250);
    EXPECT_GT(label.height(), 4 * label.fontMetrics().lineSpacing());
    label.setSelection(0, static_cast<int>(text.size()));
    EXPECT_EQ(label.selectedText(), text);
    // Each line of it is within the width, and the last one within the height.
    const QImage picture = label.grab().toImage();
    const QColor ground = picture.pixelColor(0, picture.height() - 1);
    const auto isInked = [&](int y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixelColor(x, y) != ground) return true;
        }
        return false;
    };
    const int line = label.fontMetrics().lineSpacing();
    for (int y = 0; y + line <= picture.height(); y += line) EXPECT_TRUE(isInked(y + line / 2));
}

class PaintCounter : public QObject {
  public:
    int paints = 0;
    bool eventFilter(QObject* /*watched*/, QEvent* event) override {
        paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

TEST(WrappedLabelTest, WhatIsPaintedIsNotPaintedAgain) {
    WrappedLabel label;
    label.setText("long words");
    MessageStrip strip;
    strip.addMessage("more words");
    for (QWidget* widget : std::initializer_list<QWidget*>{&label, &strip}) {
        PaintCounter counter;
        widget->installEventFilter(&counter);
        widget->show();
        widget->update();
        for (int turn = 0; turn < 20; ++turn) QCoreApplication::processEvents();
        const int paints = std::exchange(counter.paints, 0);
        EXPECT_GT(paints, 0);
        for (int turn = 0; turn < 20; ++turn) QCoreApplication::processEvents();
        EXPECT_EQ(counter.paints, 0);
    }
}

TEST(MessageStripTest, SaysNothingThatIsNotInItsMessages) {
    MessageStrip strip;
    // A name of 250 characters, the reason, and where the changes are kept.
    strip.addMessage(QString(600, 'x'));
    EXPECT_EQ(strip.messages(), QStringList(QString(600, 'x')));
    strip.dismiss();
    const QString word = QString("long").repeated(30);
    strip.addMessage("a\nb " + word);
    EXPECT_EQ(strip.findChild<QLabel*>("messageText")->text(), "a\u21b5b " + word);
    EXPECT_EQ(strip.accessibleName(), "a\u21b5b " + word);
}

TEST(MessageStripTest, ProblemsStayUntilDismissedAndNewsMakesRoom) {
    MessageStrip strip;
    EXPECT_TRUE(strip.isHidden());
    const auto shown = [&] { return strip.accessibleName().split('\n'); };
    for (const char* news : {"n1", "n2", "n3", "n4", "n5"}) {
        strip.addMessage(news, MessageStrip::Tone::news);
    }
    EXPECT_EQ(strip.messages(), (QStringList{"n2", "n3", "n4", "n5"}));
    strip.setMessage("file", "disk full", {}, MessageStrip::Lasting::untilWithdrawn);
    for (int i = 1; i <= 6; ++i) strip.addMessage(QString::number(i));
    strip.addMessage("n6", MessageStrip::Tone::news);
    strip.addMessage("n7", MessageStrip::Tone::news);
    EXPECT_EQ(strip.messages(), (QStringList{"disk full", "1", "2", "3", "4", "5", "6", "n7"}));
    EXPECT_EQ(shown(), (QStringList{"disk full", "3", "4", "5", "6", "n7"}));
    strip.dismiss();
    EXPECT_EQ(shown(), (QStringList{"disk full", "1", "2"}));
    strip.dismiss();
    strip.dismiss();
    EXPECT_EQ(shown(), QStringList{"disk full"});
    strip.withdraw("file");
    EXPECT_TRUE(strip.isHidden());
}

TEST(MessageStripTest, EachMessageHasTheGroundAndTheSignOfItsTone) {
    MessageStrip strip;
    strip.addMessage("imported", MessageStrip::Tone::news);
    strip.setMessage("file", "disk full");
    strip.resize(300, 66);
    const QImage picture = strip.grab().toImage();
    const LookColors& colors = lookColors(ColorScheme::light);
    EXPECT_EQ(picture.pixelColor(4, 4), colors.quietSelection);
    EXPECT_EQ(picture.pixelColor(4, 60), colors.warning);
    const auto hasMark = [&](int from, int to) {
        for (int y = from; y < to; ++y) {
            for (int x = 0; x < 40; ++x) {
                if (picture.pixelColor(x, y) == colors.warningMark) return true;
            }
        }
        return false;
    };
    EXPECT_FALSE(hasMark(0, 33));
    EXPECT_TRUE(hasMark(33, 66));
}

TEST(MessageStripTest, ANamedMessageIsReplacedInItsPlaceAndWithdrawn) {
    MessageStrip strip;
    auto& button = *strip.findChild<QPushButton*>("messageActionButton");
    int runs = 0;
    strip.setMessage("file", "disk full", {"Save As...", [&] { ++runs; }});
    strip.addMessage("other");
    strip.setMessage("file", "read-only", {"Save As...", [&] { runs += 10; }});
    EXPECT_EQ(strip.messages(), (QStringList{"read-only", "other"}));
    EXPECT_FALSE(button.isHidden());
    button.click();
    EXPECT_EQ(runs, 10);
    strip.withdraw("file");
    EXPECT_EQ(strip.messages(), QStringList{"other"});
    EXPECT_TRUE(button.isHidden());
    strip.withdraw("file");
    EXPECT_FALSE(strip.isHidden());
    // An action may take its own message away.
    strip.setMessage("file", "again", {"Forget", [&] { strip.dismiss(); }});
    button.click();
    EXPECT_TRUE(strip.isHidden());
}

}  // namespace
}  // namespace zorvel
