// The program's look: its colours, light and dark, and how they are put on the application. The
// colours of a scheme are constants; everything that paints asks for them by the palette it is
// given, so that a change of scheme needs no bookkeeping. Main thread.
#pragma once

#include <QColor>
#include <QFont>
#include <QPalette>

class QApplication;

namespace zorvel {

enum class ColorScheme { light, dark };

struct LookColors {
    QColor window;     // behind panels
    QColor base;       // behind tables and fields
    QColor alternate;  // every other row
    QColor raised;     // cards, menus, tooltips
    QColor text;
    QColor secondary;  // captions, headers, placeholders
    QColor greyed;     // text of what is disabled, values of another record
    QColor hairline;   // between panes and rows
    QColor border;     // around fields, marks and buttons; icons of what is disabled
    QColor accent;     // focus, primary button, links
    QColor selection;  // rows of the table that has the focus
    QColor selectionText;
    QColor selectionSecondary;  // secondary text on those rows
    QColor quietSelection;      // rows of the others
    QColor hover;
    QColor bar;      // share of the largest abundance
    QColor warning;  // ground of the message strip
    QColor warningMark;
    QColor problem;  // text of refusals
};

const LookColors& lookColors(ColorScheme scheme);

// For QWidget::setForegroundRole(); the colours of these roles follow the scheme by themselves.
inline constexpr QPalette::ColorRole secondaryText = QPalette::PlaceholderText;
inline constexpr QPalette::ColorRole problemText = QPalette::BrightText;

// The scheme that a palette belongs to, and its colours.
ColorScheme schemeOf(const QPalette& palette);
inline const LookColors& lookColors(const QPalette& palette) {
    return lookColors(schemeOf(palette));
}

QPalette lookPalette(ColorScheme scheme);

// Style, palette and tooltip colours of the whole program; may be called again at any time.
void applyLook(QApplication& application, ColorScheme scheme);

// Property of the one push button of a page that does what the page is for.
inline constexpr const char* primaryButtonProperty = "primary";

// The font scaled by a factor, in semibold.
QFont scaledFont(const QFont& font, double factor);

}  // namespace zorvel
