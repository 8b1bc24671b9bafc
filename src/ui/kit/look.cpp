#include "ui/kit/look.h"

#include <QApplication>
#include <QStyle>
#include <QToolTip>

#include "ui/kit/look_style.h"

namespace zorvel {

const LookColors& lookColors(ColorScheme scheme) {
    static const LookColors light = {
        .window = "#f4f6f4",
        .base = "#ffffff",
        .alternate = "#f8faf8",
        .raised = "#ffffff",
        .text = "#1b2520",
        .secondary = "#586660",
        .greyed = "#66736c",
        .hairline = "#e0e5e1",
        .border = "#808c86",
        .accent = "#1f7a55",
        .selection = "#1f7a55",
        .selectionText = "#ffffff",
        .selectionSecondary = "#e3f2ea",
        .quietSelection = "#d9e9e1",
        .hover = "#e7ece9",
        .bar = "#b7d9c8",
        .warning = "#fdf3dc",
        .warningMark = "#b7791f",
        .problem = "#b3382c",
    };
    static const LookColors dark = {
        .window = "#1f2523",
        .base = "#171c1a",
        .alternate = "#1b211e",
        .raised = "#29302d",
        .text = "#e3e9e5",
        .secondary = "#a0ada6",
        .greyed = "#8f9c95",
        .hairline = "#3b4541",
        .border = "#74817a",
        .accent = "#46b583",
        .selection = "#25704f",
        .selectionText = "#ffffff",
        .selectionSecondary = "#d3e9de",
        .quietSelection = "#2b3f36",
        .hover = "#2c3431",
        .bar = "#2f5f4a",
        .warning = "#3a321e",
        .warningMark = "#e0b04f",
        .problem = "#f0938a",
    };
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

void applyLook(QApplication& application, ColorScheme scheme) {
    if (qobject_cast<LookStyle*>(QApplication::style()) == nullptr) {
        QApplication::setStyle(new LookStyle);
    }
    const QPalette palette = lookPalette(scheme);
    application.setPalette(palette);
    QToolTip::setPalette(palette);
}

QFont scaledFont(const QFont& font, double factor, bool strong) {
    QFont scaled = font;
    if (font.pointSizeF() > 0) {
        scaled.setPointSizeF(font.pointSizeF() * factor);
    } else {
        scaled.setPixelSize(qRound(font.pixelSize() * factor));
    }
    if (strong) scaled.setWeight(QFont::DemiBold);
    return scaled;
}

}  // namespace zorvel
