#include "ui/kit/glyphs.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QPolygonF>
#include <algorithm>

namespace zorvel {

namespace {

// Strokes on a square of 16 units.
QPainterPath strokes(Glyph glyph) {
    QPainterPath path;
    const auto lines = [&path](std::initializer_list<QList<QPointF>> all) {
        for (const QList<QPointF>& points : all) path.addPolygon(QPolygonF(points));
        return path;
    };
    switch (glyph) {
        case Glyph::tick:
            return lines({{{3.5, 8.5}, {6.75, 11.75}, {12.5, 4.75}}});
        case Glyph::cross:
            return lines({{{4.5, 4.5}, {11.5, 11.5}}, {{11.5, 4.5}, {4.5, 11.5}}});
        case Glyph::warning:
            return lines({{{8, 1.75}, {15, 14}, {1, 14}, {8, 1.75}},
                          {{8, 6.25}, {8, 9.75}},
                          {{8, 11.7}, {8, 11.9}}});
        case Glyph::information:
            path.addEllipse(QPointF(8, 8), 6.5, 6.5);
            return lines({{{8, 7.75}, {8, 11.25}}, {{8, 4.9}, {8, 5.1}}});
        case Glyph::search:
            path.addEllipse(QPointF(7, 7), 4.25, 4.25);
            return lines({{{10.25, 10.25}, {13.75, 13.75}}});
        case Glyph::chevronUp:
            return lines({{{4.5, 10}, {8, 6.5}, {11.5, 10}}});
        case Glyph::chevronDown:
            return lines({{{4.5, 6.5}, {8, 10}, {11.5, 6.5}}});
        case Glyph::plus:
            return lines({{{3.5, 8}, {12.5, 8}}, {{8, 3.5}, {8, 12.5}}});
        case Glyph::minus:
            return lines({{{3.5, 8}, {12.5, 8}}});
        case Glyph::dots:
            for (const double x : {3.0, 8.0, 13.0}) path.addEllipse(QPointF(x, 8), 0.6, 0.6);
            break;
        case Glyph::rings:
            for (const double x : {5.75, 10.25}) path.addEllipse(QPointF(x, 8), 3.75, 3.75);
    }
    return path;
}

class GlyphEngine : public QIconEngine {
  public:
    GlyphEngine(Glyph glyph, QColor LookColors::*ink) : glyph_(glyph), ink_(ink) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const LookColors& colors = lookColors(QGuiApplication::palette());
        const bool disabled = mode == QIcon::Disabled;
        if (mode == QIcon::Selected && glyph_ == Glyph::rings) paintGround(*painter, rect);
        paintGlyph(*painter, glyph_, rect, disabled ? colors.border : colors.*ink_);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, pixmap.rect(), mode, state);
        return pixmap;
    }
    [[nodiscard]] QIconEngine* clone() const override { return new GlyphEngine(glyph_, ink_); }

  private:
    // A selected row may have any colour.
    static void paintGround(QPainter& painter, const QRect& rect) {
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(lookColors(QGuiApplication::palette()).base);
        painter.drawRoundedRect(rect, 4, 4);
        painter.restore();
    }

    Glyph glyph_;
    QColor LookColors::*ink_;
};

}  // namespace

void paintGlyph(QPainter& painter, Glyph glyph, const QRectF& rect, const QColor& color) {
    const double side = std::min(rect.width(), rect.height());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect.center() - QPointF(side, side) / 2);
    painter.scale(side / 16, side / 16);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color, 1.6, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(strokes(glyph));
    painter.restore();
}

QIcon glyphIcon(Glyph glyph, QColor LookColors::*ink) {
    return QIcon(new GlyphEngine(glyph, ink));
}

}  // namespace zorvel
