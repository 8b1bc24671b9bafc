#include "ui/kit/look_painting.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOptionHeader>
#include <QStyleOptionMenuItem>
#include <QStyleOptionSlider>
#include <QStyleOptionSpinBox>
#include <QStyleOptionViewItem>
#include <algorithm>

#include "ui/kit/glyphs.h"
#include "ui/kit/look.h"

namespace zorvel {

namespace {

void paintRounded(QPainter& painter, const QRectF& rect, double radius, const QColor& fill,
                  const QColor& line, double width = 1) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(fill);
    painter.setPen(line.isValid() ? QPen(line, width) : QPen(Qt::NoPen));
    const double inset = line.isValid() ? width / 2 : 0;
    painter.drawRoundedRect(rect.adjusted(inset, inset, -inset, -inset), radius, radius);
    painter.restore();
}

QColor mixed(const QColor& a, const QColor& b, double share) {
    const auto part = [share](int x, int y) { return qRound(x + (y - x) * share); };
    return {part(a.red(), b.red()), part(a.green(), b.green()), part(a.blue(), b.blue())};
}

// Of a check box or radio button.
struct MarkInk {
    QColor line;
    QColor mark;
    double width;  // of the line
};

MarkInk markInk(const QStyleOption& option) {
    const LookColors& colors = lookColors(option.palette);
    if ((option.state & QStyle::State_Enabled) == 0) return {colors.border, colors.greyed, 1};
    const bool focused = (option.state & QStyle::State_HasFocus) != 0;
    const bool off = (option.state & QStyle::State_Off) != 0;
    return {focused || !off ? colors.accent : colors.border, colors.accent, focused ? 1.5 : 1};
}

// The arrow that opens a list or steps a number.
void paintStepMark(const QStyleOption& option, Glyph glyph, const QRect& room, bool possible,
                   QPainter& painter) {
    const LookColors& colors = lookColors(option.palette);
    const bool enabled = possible && (option.state & QStyle::State_Enabled) != 0;
    QRectF mark(0, 0, 14, 14);
    mark.moveCenter(QRectF(room).center());
    paintGlyph(painter, glyph, mark, enabled ? colors.secondary : colors.border);
}

}  // namespace

void paintHeaderSection(const QStyleOption& option, QPainter& painter) {
    const LookColors& colors = lookColors(option.palette);
    const bool pressed = (option.state & QStyle::State_Sunken) != 0;
    const bool hovered = (option.state & QStyle::State_MouseOver) != 0;
    painter.fillRect(option.rect, pressed || hovered ? colors.alternate : colors.base);
    painter.fillRect(option.rect.x(), option.rect.bottom(), option.rect.width(), 1,
                     colors.hairline);
}

// The sort mark stands on the inner side of the text: after a left-aligned one, before a
// right-aligned one, so that the text keeps its line with the cells below.
void paintHeaderLabel(const QStyleOptionHeader& option, const QRect& room, QPainter& painter) {
    const LookColors& colors = lookColors(option.palette);
    const bool right = (option.textAlignment & Qt::AlignRight) != 0;
    const bool sorted = option.sortIndicator != QStyleOptionHeader::None;
    constexpr int gap = headerMarkRoom - headerMarkSide;
    const int textRoom = room.width() - (sorted ? headerMarkRoom : 0);
    const QString text = option.fontMetrics.elidedText(option.text, Qt::ElideRight, textRoom);
    const int width = option.fontMetrics.horizontalAdvance(text);

    painter.setPen(sorted ? colors.text : colors.secondary);
    painter.drawText(room, static_cast<int>(option.textAlignment | Qt::AlignVCenter), text);
    if (!sorted) return;
    const int x = right ? room.right() + 1 - width - headerMarkRoom
                        : room.x() + width + (width > 0 ? gap : 0);
    const QRect mark(x, room.center().y() - headerMarkSide / 2, headerMarkSide, headerMarkSide);
    // Qt calls the mark of an ascending order the one that points down.
    const bool ascending = option.sortIndicator == QStyleOptionHeader::SortDown;
    paintGlyph(painter, ascending ? Glyph::chevronUp : Glyph::chevronDown, mark, colors.text);
}

void paintMenuBarItem(const QStyleOptionMenuItem& option, QPainter& painter) {
    const LookColors& colors = lookColors(option.palette);
    painter.fillRect(option.rect, colors.window);
    const bool open = (option.state & (QStyle::State_Selected | QStyle::State_Sunken)) != 0 &&
                      (option.state & QStyle::State_Enabled) != 0;
    if (open)
        paintRounded(painter, QRectF(option.rect).adjusted(1, 3, -1, -3), 5, colors.hover, {});
    painter.setPen((option.state & QStyle::State_Enabled) != 0 ? colors.text : colors.greyed);
    painter.drawText(option.rect, Qt::AlignCenter | Qt::TextShowMnemonic | Qt::TextSingleLine,
                     option.text);
}

void paintPushButton(const QStyleOption& option, QPainter& painter, bool primary) {
    const LookColors& colors = lookColors(option.palette);
    const bool enabled = (option.state & QStyle::State_Enabled) != 0;
    const bool down = (option.state & (QStyle::State_Sunken | QStyle::State_On)) != 0;
    const bool hovered = (option.state & QStyle::State_MouseOver) != 0;
    primary = primary && enabled;
    QColor fill = primary ? colors.selection : colors.raised;
    const double shade = down ? 0.18 : hovered && enabled ? 0.08 : 0;
    fill = mixed(fill, primary ? Qt::black : colors.text, shade);
    paintRounded(painter, option.rect, 6, fill, primary ? QColor() : colors.border);
    if ((option.state & QStyle::State_HasFocus) == 0) return;
    const QColor ring = primary ? colors.selectionText : colors.accent;
    paintRounded(painter, QRectF(option.rect).adjusted(2, 2, -2, -2), 4, Qt::transparent, ring,
                 1.5);
}

void paintToolButton(const QStyleOption& option, QPainter& painter) {
    const LookColors& colors = lookColors(option.palette);
    const bool down = (option.state & QStyle::State_Sunken) != 0;
    const bool hovered = (option.state & QStyle::State_MouseOver) != 0;
    const bool focused = (option.state & QStyle::State_HasFocus) != 0;
    const QColor fill = mixed(colors.hover, colors.text, down ? 0.2 : 0.08);
    if (hovered || down || focused) {
        paintRounded(painter, option.rect, 5, hovered || down ? fill : QColor(Qt::transparent),
                     focused ? colors.accent : QColor());
    }
}

void paintFieldPanel(const QStyleOption& option, QPainter& painter) {
    const LookColors& colors = lookColors(option.palette);
    const bool focused = (option.state & QStyle::State_HasFocus) != 0;
    paintRounded(painter, option.rect, 6, colors.base, focused ? colors.accent : colors.border,
                 focused ? 1.5 : 1);
}

void paintComboBox(const QStyleOption& option, const QRect& arrow, bool editable,
                   QPainter& painter) {
    if (editable) {
        paintFieldPanel(option, painter);
    } else {
        paintPushButton(option, painter, false);
    }
    paintStepMark(option, Glyph::chevronDown, arrow, true, painter);
}

void paintSpinBox(const QStyleOptionSpinBox& option, const QRect& up, const QRect& down,
                  QPainter& painter) {
    if (option.frame) paintFieldPanel(option, painter);
    paintStepMark(option, Glyph::chevronUp, up,
                  option.stepEnabled.testFlag(QAbstractSpinBox::StepUpEnabled), painter);
    paintStepMark(option, Glyph::chevronDown, down,
                  option.stepEnabled.testFlag(QAbstractSpinBox::StepDownEnabled), painter);
}

void paintCheckBox(const QStyleOption& option, QPainter& painter) {
    const MarkInk ink = markInk(option);
    paintRounded(painter, option.rect, 4, lookColors(option.palette).base, ink.line, ink.width);
    if ((option.state & QStyle::State_On) != 0) {
        paintGlyph(painter, Glyph::tick, option.rect, ink.mark);
    } else if ((option.state & QStyle::State_NoChange) != 0) {
        paintGlyph(painter, Glyph::minus, option.rect, ink.mark);
    }
}

void paintRadioMark(const QStyleOption& option, QPainter& painter) {
    const MarkInk ink = markInk(option);
    const QRectF circle = option.rect;
    const double radius = circle.width() / 2;
    // A thinner line would lose its contrast where it is round.
    paintRounded(painter, circle, radius, lookColors(option.palette).base, ink.line,
                 std::max(ink.width, 1.25));
    if ((option.state & QStyle::State_On) == 0) return;
    const double inset = circle.width() * 0.28;
    paintRounded(painter, circle.adjusted(inset, inset, -inset, -inset), radius, ink.mark, {});
}

// A box with its tick where the cell can be checked; elsewhere only the tick.
void paintItemCheck(const QStyleOption& option, QPainter& painter) {
    const LookColors& colors = lookColors(option.palette);
    const auto* item = qstyleoption_cast<const QStyleOptionViewItem*>(&option);
    const bool editable = item != nullptr && (item->index.flags() & Qt::ItemIsUserCheckable) != 0;
    const bool selected = (option.state & QStyle::State_Selected) != 0;
    const bool active = (option.state & QStyle::State_Active) != 0;
    const QColor ink = selected && active ? colors.selectionText : colors.accent;
    if (editable) {
        paintRounded(painter, option.rect, 4, colors.base, selected ? ink : colors.border);
    }
    if ((option.state & QStyle::State_On) == 0) return;
    const QColor tick = editable ? colors.accent : ink;
    paintGlyph(painter, Glyph::tick, option.rect, tick);
}

void paintScrollBar(const QStyleOptionSlider& option, const QRect& handle, QPainter& painter) {
    const LookColors& colors = lookColors(option.palette);
    painter.fillRect(option.rect, colors.base);
    if (option.maximum <= option.minimum) return;
    const bool busy = (option.state & (QStyle::State_MouseOver | QStyle::State_Sunken)) != 0;
    const QRectF thumb = QRectF(handle).adjusted(3, 3, -3, -3);
    const double radius = std::min(thumb.width(), thumb.height()) / 2;
    paintRounded(painter, thumb, radius, mixed(colors.border, colors.secondary, busy ? 0.6 : 0),
                 {});
}

}  // namespace zorvel
