#include "ui/main/explanation_text.h"

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
    entries.append({tr("Inputs"), QString::fromStdString(inputsText(value.key, value.inputs))});
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

}  // namespace

QString metricMeaning(std::string_view key) {
    const MetricExplanation* explanation = explanationOf(key);
    return explanation == nullptr ? QString() : tr(explanation->meaning);
}

QString metricRemarkText(std::string_view key, const MetricInputs& inputs) {
    const MetricRemark remark = metricRemark(key, inputs);
    if (remark.text == nullptr) return {};
    QString text = tr(remark.text);
    return text.replace("%1", QString::fromStdString(remark.argument));
}

ExplanationText explanationText(const ExplainedValue& value, const QColor& secondary) {
    const MetricExplanation* explanation = explanationOf(value.key);
    if (explanation == nullptr) return {};
    const QString census = breakable(value.census);
    const QString valueLine = value.text.isEmpty() ? tr("No value for %1").arg(census)
                                                   : tr("%1 for %2").arg(value.text, census);
    QStringList sentences{tr(explanation->meaning)};
    const QString remark = metricRemarkText(value.key, value.inputs);
    if (!value.note.isEmpty()) sentences.append(breakable(value.note));
    if (!remark.isEmpty() && !value.note.contains(remark)) sentences.append(remark);
    const QList<Entry> entries = entriesOf(value, *explanation);

    ExplanationText text;
    text.rich = paragraph(tr(explanation->name), "font-weight:600;font-size:large");
    text.rich += paragraph(valueLine, "font-weight:600");
    for (const QString& sentence : sentences) text.rich += paragraph(sentence);
    text.rich += rows(entries, secondary);
    QStringList lines{tr(explanation->name), valueLine};
    lines += sentences;
    for (const Entry& entry : entries) lines.append(entry.label + ": " + entry.text);
    text.plain = lines.join('\n');
    return text;
}

}  // namespace zorvel
