#include "ui/kit/look.h"

namespace zorvel {

namespace {

struct ColorRow {
    QColor LookColors::*color;
    const char* light;
    const char* dark;
};

constexpr ColorRow colorTable[] = {
    {&LookColors::window, "#f4f6f4", "#1f2523"},
    {&LookColors::base, "#ffffff", "#171c1a"},
    {&LookColors::alternate, "#f8faf8", "#1b211e"},
    {&LookColors::raised, "#ffffff", "#29302d"},
    {&LookColors::text, "#1b2520", "#e3e9e5"},
    {&LookColors::secondary, "#586660", "#a0ada6"},
    {&LookColors::greyed, "#66736c", "#8f9c95"},
    {&LookColors::hairline, "#e0e5e1", "#3b4541"},
    {&LookColors::border, "#808c86", "#74817a"},
    {&LookColors::accent, "#1f7a55", "#46b583"},
    {&LookColors::selection, "#1f7a55", "#25704f"},
    {&LookColors::selectionText, "#ffffff", "#ffffff"},
    {&LookColors::selectionSecondary, "#e3f2ea", "#d3e9de"},
    {&LookColors::quietSelection, "#d9e9e1", "#2b3f36"},
    {&LookColors::hover, "#e7ece9", "#2c3431"},
    {&LookColors::bar, "#b7d9c8", "#2f5f4a"},
    {&LookColors::warning, "#fdf3dc", "#3a321e"},
    {&LookColors::warningMark, "#b7791f", "#e0b04f"},
    {&LookColors::problem, "#b3382c", "#f0938a"},
};

LookColors colorsOf(const char* ColorRow::*scheme) {
    LookColors colors;
    for (const ColorRow& row : colorTable) colors.*row.color = QColor(row.*scheme);
    return colors;
}

}  // namespace

const LookColors& lookColors(ColorScheme scheme) {
    static const LookColors light = colorsOf(&ColorRow::light);
    static const LookColors dark = colorsOf(&ColorRow::dark);
    return scheme == ColorScheme::dark ? dark : light;
}

ColorScheme schemeOf(const QPalette& palette) {
    const bool dark = palette.color(QPalette::Window).lightness() < 128;
    return dark ? ColorScheme::dark : ColorScheme::light;
}

QPalette lookPalette(ColorScheme scheme) {
    const LookColors& colors = lookColors(scheme);
    QPalette palette(colors.text, colors.raised, colors.border, colors.hairline, colors.border,
                     colors.text, colors.problem, colors.base, colors.window);
    palette.setColor(QPalette::AlternateBase, colors.alternate);
    palette.setColor(QPalette::Midlight, colors.hover);
    palette.setColor(QPalette::Highlight, colors.selection);
    palette.setColor(QPalette::HighlightedText, colors.selectionText);
    for (const auto group : {QPalette::Inactive, QPalette::Disabled}) {
        palette.setColor(group, QPalette::Highlight, colors.quietSelection);
        palette.setColor(group, QPalette::HighlightedText, colors.text);
    }
    palette.setColor(secondaryText, colors.secondary);
    palette.setColor(QPalette::ToolTipBase, colors.raised);
    palette.setColor(QPalette::ToolTipText, colors.text);
    palette.setColor(QPalette::Link, colors.accent);
    palette.setColor(QPalette::LinkVisited, colors.accent);
    palette.setColor(QPalette::Shadow, Qt::black);
    for (const auto role : {QPalette::Text, QPalette::WindowText, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, colors.greyed);
    }
    return palette;
}

QFont scaledFont(const QFont& font, double factor) {
    QFont scaled = font;
    if (font.pointSizeF() > 0) {
        scaled.setPointSizeF(font.pointSizeF() * factor);
    } else {
        scaled.setPixelSize(qRound(font.pixelSize() * factor));
    }
    scaled.setWeight(QFont::DemiBold);
    return scaled;
}

}  // namespace zorvel
