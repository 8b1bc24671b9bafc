#include "ui/kit/explanation_text.h"

#include <QCoreApplication>
#include <QList>
#include <QStringList>

#include "ui/kit/shown_text.h"

namespace zorvel {

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("MetricExplanations", text);
}

struct Entry {
    QString label;
    QString text;
};

QList<Entry> entriesOf(const ExplainedValue& value, const MetricExplanation& explanation) {
    QList<Entry> entries{{tr("Formula"), tr(explanation.formula)}};
    if (*explanation.variant != '\0') entries.append({tr("Variant"), tr(explanation.variant)});
    if (!value.details.inputs.isEmpty()) entries.append({tr("Inputs"), value.details.inputs});
    entries.append({tr("Source"), tr(explanation.source)});
    return entries;
}

QString paragraph(const QString& text, const char* style = "") {
    return QString("<p style=\"margin:0 0 8px 0;%1\">%2</p>").arg(style, text.toHtmlEscaped());
}

QString rows(const QList<Entry>& entries, const QColor& secondary) {
    QString table = "<table cellspacing=\"0\" cellpadding=\"0\">";
    for (const Entry& entry : entries) {
        table +=
            QString(
                "<tr><td style=\"padding:6px 12px 0 0;color:%1\">%2</td>"
                "<td style=\"padding:6px 0 0 0\">%3</td></tr>")
                .arg(secondary.name(), entry.label.toHtmlEscaped(), entry.text.toHtmlEscaped());
    }
    return table + "</table>";
}

QString remarkText(const MetricRemark& remark) {
    if (remark.text == nullptr) return {};
    QString text = tr(remark.text);
    int place = 0;
    for (const std::string& argument : remark.arguments) {
        text.replace('%' + QString::number(++place), QString::fromStdString(argument));
    }
    return text;
}

template <class Inputs>
MetricDetails detailsOf(std::string_view key, const Inputs& inputs) {
    return {QString::fromStdString(inputsText(key, inputs)), remarkText(metricRemark(key, inputs))};
}

QString valueLine(const ExplainedValue& value) {
    const QString& subject = value.subject;
    if (value.pending) return tr("No value for %1 yet").arg(subject);
    return value.text.isEmpty() ? tr("No value for %1").arg(subject)
                                : tr("%1 for %2").arg(value.text, subject);
}

}  // namespace

QString metricMeaning(std::string_view key) {
    const MetricExplanation* explanation = explanationOf(key);
    return explanation == nullptr ? QString() : tr(explanation->meaning);
}

MetricDetails metricDetails(std::string_view key, const MetricInputs& inputs) {
    return detailsOf(key, inputs);
}

MetricDetails metricDetails(std::string_view key, const ProjectMetricInputs& inputs) {
    return detailsOf(key, inputs);
}

ExplanationText explanationText(const ExplainedValue& value, const QColor& secondary) {
    const MetricExplanation* explanation = explanationOf(value.key);
    if (explanation == nullptr) return {};
    const QString line = valueLine(value);
    QStringList sentences{tr(explanation->meaning)};
    const QString& remark = value.details.remark;
    if (!value.note.isEmpty()) sentences.append(value.note);
    if (!remark.isEmpty() && !value.note.contains(remark)) sentences.append(remark);
    const QList<Entry> entries = entriesOf(value, *explanation);

    ExplanationText text;
    text.rich = paragraph(tr(explanation->name), "font-weight:600;font-size:large");
    text.rich += paragraph(line, "font-weight:600");
    for (const QString& sentence : sentences) text.rich += paragraph(sentence);
    text.rich += rows(entries, secondary);
    QStringList lines{tr(explanation->name), line};
    lines += sentences;
    for (const Entry& entry : entries) lines.append(entry.label + ": " + entry.text);
    text.plain = lines.join('\n');
    return text;
}

}  // namespace zorvel
