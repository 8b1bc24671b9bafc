// Small signs painted in the text colour of the moment: the program needs no icon files, and they
// are sharp at every scale and right in both schemes. Main thread.
#pragma once

#include <QColor>
#include <QIcon>
#include <QRectF>

class QPainter;

namespace zorvel {

enum class Glyph { tick, cross, warning, search, chevronUp, chevronDown, plus, minus, dots };

// Fits the glyph into the largest square centred in rect.
void paintGlyph(QPainter& painter, Glyph glyph, const QRectF& rect, const QColor& color);

// An icon that takes the secondary colour of the application's palette whenever it is painted.
QIcon glyphIcon(Glyph glyph);

}  // namespace zorvel
