// The program's widget style: Fusion, with flat headers, hairlines instead of frames, thin scroll
// bars, rounded fields and buttons, in light and dark. Owned by the application.
//
// It is also the one place that makes labels show plain text, those of tooltips and message boxes
// too: what looks like markup may come from a file. A label of ours with markup says so itself, by
// setTextFormat(Qt::RichText).
#pragma once

#include <QProxyStyle>

class QStyleOptionHeader;

namespace zorvel {

class LookStyle : public QProxyStyle {
    Q_OBJECT
  public:
    LookStyle();

    using QProxyStyle::polish;
    void polish(QWidget* widget) override;
    void polish(QApplication* application) override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override;
    QIcon standardIcon(StandardPixmap sign, const QStyleOption* option,
                       const QWidget* widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override;
    QRect subElementRect(SubElement element, const QStyleOption* option,
                         const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override;

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;

  protected:
    // Shows the long tooltips of widgets and cells in lines that can be read.
    bool eventFilter(QObject* watched, QEvent* event) override;
};

// Property of the one push button of a page that does what the page is for.
inline constexpr const char* primaryButtonProperty = "primary";

}  // namespace zorvel
