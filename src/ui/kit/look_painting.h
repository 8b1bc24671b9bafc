// The painting of single controls for LookStyle, its only user. Main thread.
#pragma once

class QPainter;
class QStyleOption;
class QStyleOptionHeader;
class QStyleOptionMenuItem;
class QStyleOptionSlider;
class QStyleOptionSpinBox;
class QRect;
class QWidget;

namespace zorvel {

// The sort mark beside a heading, and the room that it takes with its gap; in pixels.
inline constexpr int headerMarkSide = 12;
inline constexpr int headerMarkRoom = headerMarkSide + 4;

void paintHeaderSection(const QStyleOption& option, QPainter& painter);
void paintHeaderLabel(const QStyleOptionHeader& option, const QRect& room, QPainter& painter);
void paintMenuBarItem(const QStyleOptionMenuItem& option, QPainter& painter);
void paintPushButton(const QStyleOption& option, QPainter& painter, bool primary);
void paintToolButton(const QStyleOption& option, QPainter& painter);
void paintFieldPanel(const QStyleOption& option, QPainter& painter);
void paintComboBox(const QStyleOption& option, const QRect& arrow, bool editable,
                   QPainter& painter);
void paintSpinBox(const QStyleOptionSpinBox& option, const QRect& up, const QRect& down,
                  QPainter& painter);
void paintCheckBox(const QStyleOption& option, QPainter& painter);
void paintRadioMark(const QStyleOption& option, QPainter& painter);
void paintItemCheck(const QStyleOption& option, QPainter& painter);
void paintScrollBar(const QStyleOptionSlider& option, const QRect& handle, QPainter& painter);

}  // namespace zorvel
