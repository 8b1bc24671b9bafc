// Small signs painted in the text colour of the moment: the program needs no icon files, and they
// are sharp at every scale and right in both schemes. Main thread.
#pragma once

#include <QColor>
#include <QIcon>
#include <QRectF>

#include "ui/kit/look.h"

class QPainter;

namespace zorvel {

enum class Glyph {
    tick,
    cross,
    warning,
    information,
    search,
    chevronUp,
    chevronDown,
    plus,
    minus,
    dots,
    rings
};

// Fits the glyph into the largest square centred in rect.
void paintGlyph(QPainter& painter, Glyph glyph, const QRectF& rect, const QColor& color);

// An icon that takes that colour of the look of the moment whenever it is painted.
QIcon glyphIcon(Glyph glyph, QColor LookColors::*ink = &LookColors::secondary);

}  // namespace zorvel
