#include "ui/kit/wrapped_label.h"

#include <QTextDocument>
#include <QTextOption>
#include <QtMath>
#include <algorithm>

namespace zorvel {

namespace {
constexpr int narrowestLine = 12;  // characters
constexpr int widestLine = 100;

bool breaksAnywhere(const QTextDocument& document) {
    return document.defaultTextOption().wrapMode() == QTextOption::WrapAtWordBoundaryOrAnywhere;
}
}  // namespace

WrappedLabel::WrappedLabel(QWidget* parent) : QLabel(parent) {
    setWordWrap(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse);
}

// A label lays its text out anew before it is measured or painted, breaking between words alone; it
// does so no more once it has. Its document, which it has while its text can be selected, takes the
// other way of breaking then.
QTextDocument* WrappedLabel::laidOut() const {
    static_cast<void>(QLabel::heightForWidth(width()));
    auto* document = findChild<QTextDocument*>();
    if (document == nullptr) return nullptr;
    if (breaksAnywhere(*document)) return document;
    QTextOption option = document->defaultTextOption();
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    document->setDefaultTextOption(option);
    return document;
}

int WrappedLabel::heightForWidth(int width) const {
    QTextDocument* document = laidOut();
    if (document == nullptr) return QLabel::heightForWidth(width);
    const QMargins margins = contentsMargins();
    const double before = document->textWidth();
    document->setTextWidth(std::max(width - margins.left() - margins.right() - 2 * margin(), 1));
    const int height = qCeil(document->size().height());
    document->setTextWidth(before);
    return height + margins.top() + margins.bottom() + 2 * margin();
}

QSize WrappedLabel::minimumSizeHint() const {
    const QSize size = QLabel::minimumSizeHint();
    return {std::min(size.width(), narrowestLine * fontMetrics().averageCharWidth()),
            std::min(size.height(), fontMetrics().height())};
}

QSize WrappedLabel::sizeHint() const {
    const QSize size = QLabel::sizeHint();
    const int limit = widestLine * fontMetrics().averageCharWidth();
    return size.width() <= limit ? size : QSize(limit, heightForWidth(limit));
}

// To lay it out once more would make it paint again, and so on.
void WrappedLabel::paintEvent(QPaintEvent* event) {
    const auto* document = findChild<QTextDocument*>();
    if (document == nullptr || !breaksAnywhere(*document)) laidOut();
    QLabel::paintEvent(event);
}

}  // namespace zorvel
