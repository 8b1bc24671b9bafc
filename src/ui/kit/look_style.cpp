#include <QAbstractItemView>
#include <QApplication>
#include <QFileDialog>
#include <QHash>
#include <QHelpEvent>
#include <QLabel>
#include <QPainter>
#include <QPlainTextEdit>
#include <QProxyStyle>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QStyleOptionHeader>
#include <QStyleOptionMenuItem>
#include <QStyleOptionSlider>
#include <QStyleOptionSpinBox>
#include <QToolTip>
#include <algorithm>

#include "ui/kit/glyphs.h"
#include "ui/kit/look.h"
#include "ui/kit/look_painting.h"
#include "ui/kit/shown_text.h"

namespace zorvel {

namespace {

bool isPrimary(const QWidget* widget) {
    return widget != nullptr && widget->property(primaryButtonProperty).toBool();
}

// Between the text of a line and the frame's own margin, in pixels.
constexpr int fieldPadding = 4;

constexpr qsizetype longestTipLine = 80;  // characters

// Its columns are as wide as their texts with narrow margins.
bool isOfFileDialog(const QWidget* widget) {
    return widget != nullptr && qobject_cast<const QFileDialog*>(widget->window()) != nullptr;
}

// Texts of several lines look like the lines.
bool isTextField(const QWidget* widget) {
    return qobject_cast<const QPlainTextEdit*>(widget) != nullptr;
}

// The widget style: Fusion, with flat headers, hairlines instead of frames, thin scroll bars,
// rounded fields and buttons, in light and dark. Owned by the application.
//
// It is also the one place that makes labels show plain text, those of tooltips and message boxes
// too: what looks like markup may come from a file. A label of ours with markup says so itself, by
// setTextFormat(Qt::RichText).
class LookStyle : public QProxyStyle {
  public:
    LookStyle() : QProxyStyle("fusion") {}

    using QProxyStyle::polish;
    void polish(QWidget* widget) override {
        QProxyStyle::polish(widget);
        auto* label = qobject_cast<QLabel*>(widget);
        if (label != nullptr && label->textFormat() == Qt::AutoText) {
            label->setTextFormat(Qt::PlainText);
        }
    }

    void polish(QApplication* application) override {
        QProxyStyle::polish(application);
        application->installEventFilter(this);
    }

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override {
        static const QHash<PixelMetric, int> own = {
            {PM_SplitterWidth, 1},       {PM_ScrollBarExtent, 12},  {PM_ScrollBarSliderMin, 32},
            {PM_IndicatorWidth, 16},     {PM_IndicatorHeight, 16},  {PM_MessageBoxIconSize, 32},
            {PM_MenuBarHMargin, 4},      {PM_MenuVMargin, 4},       {PM_MenuPanelWidth, 1},
            {PM_MenuBarItemSpacing, 0},  {PM_MenuBarPanelWidth, 0}, {PM_ButtonShiftHorizontal, 0},
            {PM_ButtonShiftVertical, 0},
        };
        switch (metric) {
            case PM_FocusFrameHMargin:  // the style adds 1: cells and headers begin 12 pixels in
                return isOfFileDialog(widget) ? 3 : 11;
            case PM_HeaderMargin:
                return isOfFileDialog(widget) ? 4 : 12;
            case PM_DefaultFrameWidth:  // the text's own square stays within the round corners
                if (isTextField(widget)) return 3;
                break;
            default:
                if (own.contains(metric)) return own[metric];
        }
        return QProxyStyle::pixelMetric(metric, option, widget);
    }

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returned) const override {
        switch (hint) {
            case SH_EtchDisabledText:
            case SH_DitherDisabledText:
            case SH_MessageBox_CenterButtons:
            case SH_DialogButtonBox_ButtonsHaveIcons:
                return 0;
            case SH_ItemView_ShowDecorationSelected:
                return 1;
            default:
                return QProxyStyle::styleHint(hint, option, widget, returned);
        }
    }

    QIcon standardIcon(StandardPixmap sign, const QStyleOption* option,
                       const QWidget* widget) const override {
        switch (sign) {
            case SP_LineEditClearButton:
                return glyphIcon(Glyph::cross);
            case SP_MessageBoxInformation:
                return glyphIcon(Glyph::information, &LookColors::accent);
            case SP_MessageBoxWarning:
            case SP_MessageBoxCritical:
            case SP_MessageBoxQuestion:
                return glyphIcon(Glyph::warning, &LookColors::warningMark);
            default:
                return QProxyStyle::standardIcon(sign, option, widget);
        }
    }

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override {
        QSize whole = QProxyStyle::sizeFromContents(type, option, size, widget);
        if (type == CT_PushButton) {
            whole = QSize(std::max(whole.width() + 12, 88), option->fontMetrics.height() + 14);
        }
        if (type == CT_LineEdit || type == CT_ComboBox || type == CT_SpinBox)
            whole.setHeight(option->fontMetrics.height() + 12);
        if (type == CT_MenuBarItem) {
            whole = QSize(size.width() + 16, option->fontMetrics.height() + 12);
        }
        if (type == CT_MenuItem) whole.rheight() += 4;
        if (const auto* header = qstyleoption_cast<const QStyleOptionHeader*>(option);
            header != nullptr && type == CT_HeaderSection) {
            whole = QSize(option->fontMetrics.horizontalAdvance(header->text) + headerMarkRoom +
                              2 * pixelMetric(PM_HeaderMargin, option, widget),
                          option->fontMetrics.height() + 14);
        }
        return whole;
    }

    QRect subElementRect(SubElement element, const QStyleOption* option,
                         const QWidget* widget) const override {
        const QRect rect = QProxyStyle::subElementRect(element, option, widget);
        const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
        if (element != SE_LineEditContents || frame == nullptr || frame->lineWidth <= 0)
            return rect;
        return rect.adjusted(fieldPadding, 0, -fieldPadding, 0);
    }

    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                         const QWidget* widget) const override {
        const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (control != CC_ScrollBar || bar == nullptr) {
            return QProxyStyle::subControlRect(control, option, part, widget);
        }
        if (part == SC_ScrollBarAddLine || part == SC_ScrollBarSubLine) return {};
        if (part == SC_ScrollBarGroove) return bar->rect;
        // Without buttons the handle has the whole bar to move in.
        const bool horizontal = bar->orientation == Qt::Horizontal;
        const int length = horizontal ? bar->rect.width() : bar->rect.height();
        const qint64 range = qint64(bar->maximum) - bar->minimum + bar->pageStep;
        const int least = pixelMetric(PM_ScrollBarSliderMin, option, widget);
        const int share =
            range > 0 ? static_cast<int>(qint64(bar->pageStep) * length / range) : length;
        const int handle = std::min(length, std::max(share, least));
        const int start = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition,
                                                  length - handle, bar->upsideDown);
        const auto along = [&](int from, int size) {
            return horizontal ? QRect(bar->rect.x() + from, bar->rect.y(), size, bar->rect.height())
                              : QRect(bar->rect.x(), bar->rect.y() + from, bar->rect.width(), size);
        };
        if (part == SC_ScrollBarSlider) return along(start, handle);
        if (part == SC_ScrollBarSubPage) return along(0, start);
        if (part == SC_ScrollBarAddPage) return along(start + handle, length - start - handle);
        return QProxyStyle::subControlRect(control, option, part, widget);
    }

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        const LookColors& colors = lookColors(option->palette);
        switch (element) {
            case PE_FrameStatusBarItem:
            case PE_FrameLineEdit:
            case PE_PanelMenuBar:
            case PE_FrameMenu:  // the panel has painted it
                return;
            case PE_FrameFocusRect:
                if (qobject_cast<const QAbstractItemView*>(widget) != nullptr) return;
                break;
            case PE_PanelLineEdit:
                if (const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
                    frame != nullptr && frame->lineWidth > 0) {
                    paintFieldPanel(*option, *painter);
                }
                return;
            case PE_PanelButtonCommand:
                return paintPushButton(*option, *painter, isPrimary(widget));
            case PE_PanelButtonTool:
                return paintToolButton(*option, *painter);
            case PE_IndicatorCheckBox:
                return paintCheckBox(*option, *painter);
            case PE_IndicatorRadioButton:
                return paintRadioMark(*option, *painter);
            case PE_IndicatorItemViewItemCheck:
                return paintItemCheck(*option, *painter);
            case PE_PanelMenu:
            case PE_PanelTipLabel:
                painter->save();  // the items of a menu are painted with this painter too
                painter->setPen(colors.border);
                painter->setBrush(colors.raised);
                painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
                painter->restore();
                return;
            default:
                break;
        }
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
        const LookColors& colors = lookColors(option->palette);
        switch (element) {
            case CE_Header:
                paintHeaderSection(*option, *painter);
                if (const auto* header = qstyleoption_cast<const QStyleOptionHeader*>(option)) {
                    const int margin = proxy()->pixelMetric(PM_HeaderMargin, option, widget);
                    paintHeaderLabel(*header, option->rect.adjusted(margin, 0, -margin, 0),
                                     *painter);
                }
                return;
            case CE_HeaderEmptyArea:
                return paintHeaderSection(*option, *painter);
            case CE_Splitter:
                return painter->fillRect(option->rect, colors.hairline);
            case CE_MenuBarItem:
                if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
                    paintMenuBarItem(*item, *painter);
                }
                return;
            case CE_MenuBarEmptyArea:
                return painter->fillRect(option->rect, colors.window);
            case CE_PushButtonLabel:
                if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
                    button != nullptr && isPrimary(widget) &&
                    (option->state & State_Enabled) != 0) {
                    QStyleOptionButton light = *button;
                    light.palette.setColor(QPalette::ButtonText, colors.selectionText);
                    return QProxyStyle::drawControl(element, &light, painter, widget);
                }
                return QProxyStyle::drawControl(element, option, painter, widget);
            case CE_ShapedFrame:
                if (isTextField(widget)) return paintFieldPanel(*option, *painter);
                return QProxyStyle::drawControl(element, option, painter, widget);
            case CE_PushButtonBevel:
                return drawPrimitive(PE_PanelButtonCommand, option, painter, widget);
            default:
                QProxyStyle::drawControl(element, option, painter, widget);
        }
    }

    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override {
        const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (control == CC_ScrollBar && bar != nullptr) {
            return paintScrollBar(*bar, subControlRect(control, option, SC_ScrollBarSlider, widget),
                                  *painter);
        }
        if (control == CC_ComboBox) {
            const QRect arrow = subControlRect(control, option, SC_ComboBoxArrow, widget);
            const auto* box = qstyleoption_cast<const QStyleOptionComboBox*>(option);
            return paintComboBox(*option, arrow, box != nullptr && box->editable, *painter);
        }
        if (const auto* box = qstyleoption_cast<const QStyleOptionSpinBox*>(option)) {
            return paintSpinBox(*box, subControlRect(control, option, SC_SpinBoxUp, widget),
                                subControlRect(control, option, SC_SpinBoxDown, widget), *painter);
        }
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }

  protected:
    // Shows the long tooltips of widgets and cells in lines that can be read.
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::ToolTip || !watched->isWidgetType()) return false;
        auto* widget = static_cast<QWidget*>(watched);
        const auto* help = static_cast<QHelpEvent*>(event);
        const auto* view = qobject_cast<QAbstractItemView*>(widget->parentWidget());
        const bool isCell = view != nullptr && view->viewport() == widget;
        const QString tip = isCell ? view->indexAt(help->pos()).data(Qt::ToolTipRole).toString()
                                   : widget->toolTip();
        const QString lines = inLinesOf(longestTipLine, tip);
        if (lines == tip) return false;
        QToolTip::showText(help->globalPos(), lines, widget);
        return true;
    }
};

}  // namespace

void applyLook(QApplication& application, ColorScheme scheme) {
    if (dynamic_cast<LookStyle*>(QApplication::style()) == nullptr) {
        QApplication::setStyle(new LookStyle);
    }
    const QPalette palette = lookPalette(scheme);
    application.setPalette(palette);
    QToolTip::setPalette(palette);
}

}  // namespace zorvel
