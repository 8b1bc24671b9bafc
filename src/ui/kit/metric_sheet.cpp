#include "ui/kit/metric_sheet.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QStringList>
#include <utility>

#include "ui/kit/look.h"
#include "ui/kit/popover.h"
#include "ui/kit/value_field.h"

namespace zorvel {

MetricSheet::MetricSheet(MetricRows::Rows rows, QWidget* host, DetailsOf detailsOf)
    : QObject(host), host_(host), detailsOf_(std::move(detailsOf)) {
    for (const CaptionedValue& row : rows) {
        rows_.push_back({row, Shown::State::there, {}, {}});
        const QString meaning =
            metricMeaning(row.key) + '\n' + tr("F1 or a click tells how it is computed.");
        row.value->setExplanation(meaning);
        row.caption->setToolTip(meaning);
    }
    auto* moves = new MetricRows(std::move(rows), host);
    connect(moves, &MetricRows::explanationRequested, this, &MetricSheet::explain);
    connect(moves, &MetricRows::copyAllRequested, this, &MetricSheet::copyAll);
}

MetricSheet::~MetricSheet() {
    delete popover_;
}

void MetricSheet::setSubject(const QString& subject) {
    subject_ = subject;
}

void MetricSheet::setCaption(int row, const QString& caption) {
    Shown& shown = at(row);
    shown.caption = caption;
    shown.row.caption->setText(caption);
    shown.row.value->setAccessibleName(caption);
}

void MetricSheet::show(int row, const QString& caption, const QString& text) {
    Shown& shown = at(row);
    shown.state = Shown::State::there;
    shown.row.value->setPending(false);
    shown.row.value->setStale({});
    shown.row.value->setMark({}, {});
    shown.row.value->setPlaceholderText({});
    shown.row.value->setText(text);
    setCaption(row, caption);
    followValues();
}

void MetricSheet::mark(int row, const QString& mark, const QString& meaning) {
    at(row).row.value->setMark(mark, meaning);
}

void MetricSheet::expect(int row, const QString& caption, const QString& reason) {
    Shown& shown = at(row);
    shown.state = Shown::State::pending;
    shown.caption = caption;
    shown.row.value->setStale(reason);
    shown.row.value->setMark({}, {});
    shown.row.value->setPlaceholderText({});
    shown.row.value->setPending(shown.row.value->text().isEmpty());
    followValues();
}

void MetricSheet::showAbsent(int row, const QString& caption, const QString& reason) {
    Shown& shown = at(row);
    shown.state = Shown::State::absent;
    shown.caption = caption;
    shown.row.value->setPending(false);
    shown.row.value->setPlaceholderText(tr("none"));
    shown.row.value->setStale(reason);
    followValues();
}

void MetricSheet::setHeading(int row, const QString& heading) {
    at(row).heading = heading;
}

QString MetricSheet::copied(const Shown& shown) {
    switch (shown.state) {
        case Shown::State::there:
            return shown.row.value->text();
        case Shown::State::pending:
            return {};
        case Shown::State::absent:
            break;
    }
    return "-";
}

QList<MetricLine> MetricSheet::lines() const {
    QList<MetricLine> lines;
    if (!subject_) return lines;
    for (const Shown& shown : rows_) lines.append({shown.heading, shown.caption, copied(shown)});
    return lines;
}

QString MetricSheet::text() const {
    if (!subject_) return {};
    QStringList texts{*subject_};
    for (const MetricLine& line : lines()) {
        if (!line.heading.isEmpty()) texts.append(line.heading);
        texts.append(line.caption + '\t' + line.text);
    }
    return texts.join('\n');
}

void MetricSheet::copyAll() const {
    if (const QString all = text(); !all.isEmpty()) QGuiApplication::clipboard()->setText(all);
}

void MetricSheet::explain(int row) {
    if (!subject_) return;
    if (!popover_) popover_ = new Popover(host_->window());
    if (popover_->isVisible() && explained_ == row) return popover_->dismiss();
    explained_ = row;
    updateExplanation();
    popover_->showBeside(MetricRows::placeIn(*host_->window(), at(row).row));
}

void MetricSheet::followValues() {
    if (popover_ && popover_->isVisible()) updateExplanation();
}

void MetricSheet::updateExplanation() {
    const Shown& shown = at(explained_);
    const ValueField& field = *shown.row.value;
    ExplainedValue value;
    value.key = shown.row.key;
    value.subject = *subject_;
    value.details = detailsOf_(explained_);
    if (shown.state == Shown::State::there) value.text = field.text();
    if (field.isStale()) value.note = field.toolTip();
    value.pending = shown.state == Shown::State::pending;
    const ExplanationText text = explanationText(value, lookColors(host_->palette()).secondary);
    popover_->setText(text.rich, text.plain);
}

}  // namespace zorvel
