#include <gtest/gtest.h>

#include <QApplication>
#include <QFontMetrics>
#include <QImage>
#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>
#include <QToolTip>
#include <QWidget>
#include <algorithm>
#include <cmath>
#include <memory>

#include "ui/kit/glyphs.h"
#include "ui/kit/look.h"
#include "ui/kit/message_strip.h"
#include "ui/kit/spinner.h"
#include "ui/kit/value_field.h"

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

TEST(Look, TextIsLegibleOnEveryGroundOfBothSchemes) {
    for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
        const LookColors& colors = lookColors(scheme);
        EXPECT_EQ(schemeOf(lookPalette(scheme)), scheme);
        for (const QColor& ground : {colors.window, colors.base, colors.alternate, colors.raised,
                                     colors.quietSelection, colors.warning}) {
            EXPECT_GE(contrast(colors.text, ground), 7.0) << ground.name().toStdString();
        }
        for (const QColor& ground : {colors.window, colors.base, colors.raised}) {
            EXPECT_GE(contrast(colors.secondary, ground), 4.5) << ground.name().toStdString();
            EXPECT_GE(contrast(colors.accent, ground), 3.0) << ground.name().toStdString();
        }
        EXPECT_GE(contrast(colors.selectionText, colors.selection), 4.5);
        EXPECT_GE(contrast(colors.stale, colors.raised), 3.0);
    }
}

// Whoever makes the label, Qt too.
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

TEST(Look, TheChosenItemOfAMenuStandsOnTheColourOfSelection) {
    QMenu menu;
    QAction* chosen = menu.addAction("Chosen");
    menu.addAction("Other");
    menu.popup({});
    menu.setActiveAction(chosen);
    const QImage picture = menu.grab().toImage();
    const QRect item = menu.actionGeometry(chosen);
    EXPECT_EQ(picture.pixelColor(item.right() - 3, item.center().y()),
              menu.palette().color(QPalette::Highlight));
    menu.close();
}

TEST(Glyphs, EachPaintsWithinItsSquareInItsColour) {
    for (const Glyph glyph : {Glyph::tick, Glyph::cross, Glyph::warning, Glyph::search,
                              Glyph::chevronUp, Glyph::chevronDown, Glyph::plus, Glyph::minus}) {
        QImage image(40, 40, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        paintGlyph(painter, glyph, QRectF(10, 10, 20, 20), Qt::black);
        painter.end();
        int inked = 0;
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 40; ++x) {
                const bool ink = qGray(image.pixel(x, y)) < 128;
                const bool inside = x >= 10 && x < 30 && y >= 10 && y < 30;
                EXPECT_TRUE(inside || !ink) << x << ' ' << y;
                inked += ink ? 1 : 0;
            }
        }
        EXPECT_GT(inked, 15) << static_cast<int>(glyph);
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
    EXPECT_EQ(field.palette().color(QPalette::Text), lookColors(ColorScheme::dark).stale);
    EXPECT_EQ(field.toolTip(), "whose it is");
    field.setStale({});
    EXPECT_EQ(field.palette().color(QPalette::Text), lookColors(ColorScheme::dark).text);
    EXPECT_EQ(field.toolTip(), "what it means");
    applyLook(*qApp, ColorScheme::light);
    QCoreApplication::processEvents();
    EXPECT_EQ(field.palette().color(QPalette::Text), lookColors(ColorScheme::light).text);
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
