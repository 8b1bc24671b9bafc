#include "ui/kit/metric_sheet.h"

#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollArea>
#include <QStringList>
#include <QVBoxLayout>
#include <algorithm>
#include <cstdlib>

#include "ui/kit/look.h"
#include "ui/kit/popover.h"
#include "ui/kit/small_widgets.h"
#include "ui/kit/value_field.h"

namespace zorvel {
namespace {

// "pielouJValueTextField" of a census, "averagePielouValueTextField" of a project.
QString stemOf(const ShownMetric& shown) {
    const MetricDescriptor& row = descriptorOf(shown.metric);
    if (shown.group == MetricGroup::census) return row.key;
    QString stem = row.field;
    if (shown.group != MetricGroup::averages) return stem;
    stem[0] = stem[0].toUpper();
    return "average" + stem;
}

QString labelName(const ShownMetric& shown) {
    if (shown.group == MetricGroup::census) return stemOf(shown) + "LabelTextField";
    return stemOf(shown).replace("Sqs", "SQS") + "Label";
}

// From edge to edge of its card, in the coordinates of the widget, which holds the card.
QRect placeIn(const QWidget& widget, const QWidget& caption, const QWidget& value) {
    const auto rectOf = [&widget](const QWidget& part) {
        return QRect(part.mapTo(&widget, QPoint()), part.size());
    };
    const QRect both = rectOf(caption).united(rectOf(value));
    const QRect card = rectOf(*caption.parentWidget());
    return {card.left(), both.top(), card.width(), both.height()};
}

}  // namespace

MetricSheet::MetricSheet(QWidget& host) : QObject(&host), host_(host) {
    host.installEventFilter(this);
}

MetricSheet::Row& MetricSheet::makeRow(const ShownMetric& shown, Card& card) {
    auto* caption = new QLabel(&card);
    caption->setObjectName(labelName(shown));
    caption->setTextFormat(Qt::PlainText);
    caption->setWordWrap(true);
    auto* value = new ValueField(&card);
    value->setObjectName(stemOf(shown) + "ValueTextField");
    caption->setBuddy(value);
    const QString meaning =
        QString(explanationOf(shown).meaning) + '\n' + "F1 or a click tells how it is computed.";
    value->setExplanation(meaning);
    caption->setToolTip(meaning);
    value->installEventFilter(this);
    caption->installEventFilter(this);
    rows_.push_back({shown, value, caption, State::there, {}, {}});
    setCaption(rows_.back(), captionOf(shown));
    return rows_.back();
}

Card* MetricSheet::makeLargeCard(const ShownMetric& shown, const QString& heading) {
    auto* card = new Card(&host_);
    card->installEventFilter(this);
    auto* inside = new QVBoxLayout(card);
    inside->setSpacing(2);
    inside->setContentsMargins(12, 10, 12, 10);
    Row& row = makeRow(shown, *card);
    row.heading = heading;
    row.value->setScale(1.9);
    row.value->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    inside->addWidget(row.caption);
    inside->addWidget(row.value);
    row.caption->setForegroundRole(secondaryText);
    return card;
}

Card* MetricSheet::makeListCard(const std::vector<ShownMetric>& list) {
    auto* card = new Card(&host_);
    card->installEventFilter(this);
    // A fixed height does not grow when captions take two lines.
    card->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    auto* grid = new QGridLayout(card);
    grid->setContentsMargins(12, 6, 12, 6);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(0);
    grid->setColumnStretch(0, 1);
    int line = 0;
    for (const ShownMetric& shown : list) {
        const Row& row = makeRow(shown, *card);
        row.caption->setMinimumHeight(30);
        row.caption->setContentsMargins(0, 6, 0, 6);
        row.value->setMinimumWidth(72);
        row.value->setMaximumWidth(110);
        grid->addWidget(row.caption, line, 0);
        grid->addWidget(row.value, line++, 1);
    }
    return card;
}

MetricSheet::Row& MetricSheet::rowOf(const ShownMetric& shown) {
    return *std::find_if(rows_.begin(), rows_.end(),
                         [&shown](const Row& row) { return row.shown == shown; });
}

void MetricSheet::setParameters(const MetricParameters& parameters) {
    inputs_.parameters = parameters;
    hasParameters_ = true;
}

QString MetricSheet::captionOf(const ShownMetric& shown) const {
    if (!hasParameters_) return plainCaption(shown);
    ShownMetric named = shown;
    // The heading of its group says that it is sample-based.
    if (shown.metric == Metric::sampleBasedRarefiedRichness)
        named.metric = Metric::rarefiedRichness;
    return QString::fromStdString(metricCaption(named, inputs_.parameters));
}

void MetricSheet::setCaption(Row& row, const QString& caption) {
    row.subjectCaption = caption;
    row.caption->setText(caption);
    row.value->setAccessibleName(caption);
}

void MetricSheet::setState(Row& row, State state, const QString& staleReason) {
    row.state = state;
    row.subjectCaption = captionOf(row.shown);
    row.value->setStale(staleReason);
    row.value->setMark({}, {});
    row.value->setPlaceholderText(state == State::absent ? "none" : QString());
    row.value->setPending(state == State::pending && row.value->text().isEmpty());
}

void MetricSheet::show(const ShownMetric& shown, const MetricValue& value, const QString& reason) {
    Row& row = rowOf(shown);
    if (std::holds_alternative<std::monostate>(value)) {
        setState(row, State::absent, reason);
    } else {
        setState(row, State::there, {});
        row.value->setText(QString::fromStdString(metricText(shown.metric, value)));
        setCaption(row, row.subjectCaption);
    }
    followValues();
}

void MetricSheet::expect(const ShownMetric& shown, const QString& reason) {
    setState(rowOf(shown), State::pending, reason);
    followValues();
}

void MetricSheet::leaveEmpty(const ShownMetric& shown) {
    Row& row = rowOf(shown);
    setState(row, State::there, {});
    row.subjectCaption = row.caption->text();
}

void MetricSheet::mark(const ShownMetric& shown, const QString& mark, const QString& meaning) {
    rowOf(shown).value->setMark(mark, meaning);
}

QList<MetricLine> MetricSheet::lines() const {
    QList<MetricLine> lines;
    if (!subject_) return lines;
    for (const Row& row : rows_) {
        QString text = "-";
        if (row.state == State::there) text = row.value->text();
        if (row.state == State::pending) text.clear();
        lines.append({row.heading, row.subjectCaption, text});
    }
    return lines;
}

void MetricSheet::copyAll() const {
    if (!subject_) return;
    QStringList texts{*subject_};
    for (const MetricLine& line : lines()) {
        if (!line.heading.isEmpty()) texts.append(line.heading);
        texts.append(line.caption + '\t' + line.text);
    }
    QGuiApplication::clipboard()->setText(texts.join('\n'));
}

void MetricSheet::focusRow(std::size_t row) {
    QWidget* value = rows_[row].value;
    value->setFocus(Qt::TabFocusReason);
    for (QWidget* outer = host_.parentWidget(); outer; outer = outer->parentWidget()) {
        if (auto* scroll = qobject_cast<QScrollArea*>(outer)) scroll->ensureWidgetVisible(value);
    }
}

// The row that the widget belongs to, or else the one that is nearest to a place in its card.
std::optional<std::size_t> MetricSheet::rowAt(const QWidget* widget, const QPoint& place) const {
    std::optional<std::size_t> nearest;
    int distance = 0;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const Row& row = rows_[i];
        if (row.value == widget || row.caption == widget) return i;
        if (row.caption->parentWidget() != widget) continue;
        const QRect rect = placeIn(*widget, *row.caption, *row.value);
        const int away = std::abs(rect.center().y() - place.y());
        if (nearest && away >= distance) continue;
        nearest = i;
        distance = away;
    }
    return nearest;
}

bool MetricSheet::eventFilter(QObject* watched, QEvent* event) {
    if (watched == &host_) {
        if (event->type() == QEvent::PaletteChange) followValues();
        return false;
    }
    const auto* widget = static_cast<const QWidget*>(watched);
    const bool isValue = qobject_cast<const ValueField*>(watched) != nullptr;
    switch (event->type()) {
        case QEvent::ShortcutOverride:
            // Explaining a value comes before what else the key does in the window.
            if (isValue && static_cast<QKeyEvent*>(event)->key() == Qt::Key_F1) event->accept();
            return false;
        case QEvent::KeyPress:
            return isValue && keyDidPress(*rowAt(widget, {}), *static_cast<QKeyEvent*>(event));
        case QEvent::MouseButtonPress:
            pressed_ = static_cast<QMouseEvent*>(event)->globalPosition().toPoint();
            return false;
        case QEvent::MouseButtonRelease:
            mouseDidRelease(widget, *static_cast<QMouseEvent*>(event));
            return !isValue;  // or else the card would hear of a caption's click as well
        case QEvent::ContextMenu: {
            const auto* menu = static_cast<QContextMenuEvent*>(event);
            if (const auto row = rowAt(widget, menu->pos())) showMenu(*row, menu->globalPos());
            return true;
        }
        default:
            return false;
    }
}

bool MetricSheet::keyDidPress(std::size_t row, const QKeyEvent& event) {
    switch (event.key()) {
        case Qt::Key_Up:
            focusRow(row == 0 ? 0 : row - 1);
            return true;
        case Qt::Key_Down:
            focusRow(std::min(row + 1, rows_.size() - 1));
            return true;
        case Qt::Key_F1:
            explain(row);
            return true;
        default:
            return false;
    }
}

// A drag selects digits and explains nothing.
void MetricSheet::mouseDidRelease(const QWidget* widget, const QMouseEvent& event) {
    const QPoint way = event.globalPosition().toPoint() - pressed_;
    const std::optional<std::size_t> row = rowAt(widget, event.position().toPoint());
    if (!row || event.button() != Qt::LeftButton ||
        way.manhattanLength() >= QApplication::startDragDistance()) {
        return;
    }
    ValueField* value = rows_[*row].value;
    if (value->hasSelectedText() && value == widget) return;
    value->setFocus(Qt::MouseFocusReason);
    explain(*row);
}

void MetricSheet::showMenu(std::size_t row, const QPoint& place) {
    auto* menu = new QMenu(&host_);
    menu->setObjectName("metricsMenu");
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const ValueField* value = rows_[row].value;
    menu->addAction("&Explain", this, [this, row] { explain(row); })->setShortcut(Qt::Key_F1);
    QAction* copy = menu->addAction("&Copy", value, [=] { value->copyValue(); });
    copy->setShortcut(QKeySequence::Copy);
    copy->setEnabled(!value->text().isEmpty());
    menu->addAction("Copy &All Metrics", this, &MetricSheet::copyAll);
    menu->popup(place);
}

// Beside the row; closes the explanation where it is that row's.
void MetricSheet::explain(std::size_t row) {
    if (!subject_) return;
    popover_ = &Popover::of(*host_.window());
    if (popover_->isVisible() && explained_ == row) return popover_->dismiss();
    explained_ = row;
    updateExplanation();
    popover_->showBeside(placeIn(*host_.window(), *rows_[row].caption, *rows_[row].value));
}

void MetricSheet::followValues() {
    if (popover_ && popover_->isVisible()) updateExplanation();
}

void MetricSheet::updateExplanation() {
    const Row& row = rows_[explained_];
    const ValueField& field = *row.value;
    const MetricExplanation words = explanationOf(row.shown);
    // Before the first value, its inputs are unknown.
    const bool isKnown = !field.text().isEmpty() || field.isStale();
    const QString note = field.isStale() ? field.toolTip() : QString();
    QString remark;
    QString inputs;
    QString limits;
    if (isKnown) {
        remark = QString::fromStdString(metricRemark(row.shown, inputs_));
        inputs = QString::fromStdString(inputsText(row.shown, inputs_));
        limits = QString::fromStdString(limitsText(row.shown, inputs_));
    }
    QString line = QString("No value for %1").arg(*subject_);
    if (row.state == State::pending) line = QString("No value for %1 yet").arg(*subject_);
    if (row.state == State::there && !field.text().isEmpty())
        line = QString("%1 for %2").arg(field.text(), *subject_);

    Explanation explanation{words.name, line, {words.meaning, note}, {}};
    if (!note.contains(remark)) explanation.paragraphs.append(remark);
    explanation.entries = {{"Formula", words.formula},
                           {"Variant", words.variant},
                           {"Inputs", inputs},
                           {"Limits", limits},
                           {"Source", words.source}};
    popover_->setExplanation(explanation);
}

}  // namespace zorvel
