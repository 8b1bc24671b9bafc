#include "ui/analysis/diversity_readout.h"

#include <QLocale>
#include <QStringList>

#include "base/numbers.h"
#include "model/diversity_table.h"
#include "ui/kit/shown_text.h"

namespace zorvel {

namespace {

constexpr qsizetype longestShownName = 120;  // characters

QString withDigits(double value, int digits) {
    return QString::fromStdString(fixedText(value, digits));
}

QString shownNameOf(const QString& name) {
    return shortened(oneLine(name), longestShownName);
}

QString placeText(double x, const DiversityView& view) {
    switch (view.across) {
        case DiversityAcross::sizes:
            return sampleSizeText(x, view.kind);
        case DiversityAcross::coverage:
            return "coverage " + withDigits(x, 3);
        default:
            return "order " + withDigits(x, 1);
    }
}

DiversityExplanation wordsOf(const DiversityView& view) {
    constexpr DiversityTopic topics[] = {DiversityTopic::overSizes, DiversityTopic::overCoverage,
                                         DiversityTopic::overOrders};
    return explanationOf(topics[static_cast<std::size_t>(view.across)], view.kind);
}

Explanation explained(const DiversityExplanation& words, const QString& value) {
    return {words.name, value, {words.meaning}, {}};
}

QString methodText(const DiversityPoint& at) {
    switch (at.method) {
        case SampleMethod::observed:
            return "This is the coverage of the sample itself.";
        case SampleMethod::rarefied:
            return "A smaller sample is enough: its value is exact, drawn from the sample.";
        case SampleMethod::extrapolated:
            break;
    }
    return "A larger sample would be needed: its value is predicted.";
}

// The order of a topic; absent for the others.
std::optional<std::size_t> orderOf(DiversityTopic topic) {
    for (std::size_t order = 0; order < kHillOrders; ++order) {
        if (topicOfOrder(order) == topic) return order;
    }
    return std::nullopt;
}

QString valueOf(const CoverageRow& row, DiversityTopic topic, const QStringList& diversities) {
    if (const std::optional<std::size_t> order = orderOf(topic)) {
        return diversities[static_cast<qsizetype>(*order)];
    }
    switch (topic) {
        case DiversityTopic::coverage:
            return row.coverage ? withDigits(*row.coverage, 4) : QString();
        case DiversityTopic::neededSize:
            return row.at ? withDigits(row.at->size, 3) : QString();
        default:
            return withDigits(row.sample.size, 0);
    }
}

QString limitsOf(const CoverageRow& row, std::size_t order) {
    if (!row.at) return {};
    if (!row.errors) {
        return row.sample.size < 0x1p63 ? "None yet: they are being computed."
                                        : "None: the sample is too large to be simulated.";
    }
    const std::optional<double> error = (*row.errors)[order];
    if (!error) return "None: fewer than half of the simulated samples have this value.";
    return QString::fromStdString(diversityLimitsText(row.at->diversity[order], *error));
}

}  // namespace

QString widthTitle(const DiversityView& view) {
    switch (view.across) {
        case DiversityAcross::sizes:
            return view.kind == SampleKind::incidence ? "Number of censuses"
                                                      : "Number of specimens";
        case DiversityAcross::coverage:
            return "Sample coverage";
        default:
            return "Order q";
    }
}

QString heightTitle(const DiversityView& view) {
    if (view.across == DiversityAcross::orders) return "Diversity of order q";
    return explanationOf(topicOfOrder(view.order), view.kind).name;
}

QString partText(const DiversityView& view, bool predicted) {
    if (view.across == DiversityAcross::orders) return predicted ? "estimated" : "observed";
    return predicted ? "predicted" : "from the sample";
}

QString sampleSizeText(double size, SampleKind kind) {
    const bool isOne = size == 1;
    const QString unit = kind == SampleKind::incidence ? (isOne ? "census" : "censuses")
                                                       : (isOne ? "specimen" : "specimens");
    return QLocale().toString(size, 'f', 0) + ' ' + unit;
}

QString readoutText(const PlotCurve& curve, double x, const DiversityView& view,
                    ConfidenceLevel level) {
    const std::optional<double> known = valueAt(curve.known, x);
    const std::optional<double> predicted = valueAt(curve.predicted, x);
    const bool isProfile = view.across == DiversityAcross::orders;
    const std::optional<double> first = known ? known : predicted;
    QString text =
        QString("%1: %2 at %3")
            .arg(shownNameOf(curve.label), first ? withDigits(*first, 2) : "-", placeText(x, view));
    if (isProfile) text += ", " + partText(view, !known);
    if (isProfile && known && predicted) {
        text += "; " + withDigits(*predicted, 2) + ", " + partText(view, true);
    }
    const std::optional<double> lower = valueAt(curve.lower, x);
    const std::optional<double> upper = valueAt(curve.upper, x);
    if (lower && upper) {
        text += QString(", %1 limits %2 to %3")
                    .arg(confidenceLevelText(level), withDigits(*lower, 2), withDigits(*upper, 2));
    }
    if (!isProfile && !known) text += ", " + partText(view, true);
    return text;
}

QString plotHint(const DiversityView& view, std::size_t drawn, std::size_t all) {
    if (drawn == 0) {
        return view.kind == SampleKind::incidence
                   ? "Nothing can be drawn: a curve needs at least two censuses."
                   : "Nothing can be drawn: a curve needs at least two specimens.";
    }
    QString text =
        view.across == DiversityAcross::orders
            ? "Solid: observed. Dashed: estimated for the whole community."
            : "Solid: from the sample itself. Dashed: predicted, up to twice the sample.";
    text += " Point at a curve, or press an arrow key, to read out its values.";
    if (all > drawn) text += QString(" %1 of %2 censuses are drawn.").arg(drawn).arg(all);
    return text;
}

Explanation plotExplanation(const DiversityView& view, const DiversityCurve* curve,
                            const QString& read) {
    const DiversityExplanation words = wordsOf(view);
    Explanation all = explained(words, read);
    QString inputs;
    QString estimates;
    if (curve != nullptr) {
        const DiversityEstimator& estimator = curve->estimator;
        inputs = shownNameOf(curve->name) + ": " +
                 QString::fromStdString(diversityInputs(estimator.sample()));
        if (view.across == DiversityAcross::orders) {
            estimates = QString::fromStdString(estimatesText(estimator));
            if (const auto absence = estimator.estimateAbsence(2)) {
                all.paragraphs.append(diversityAbsenceText(*absence, view.kind));
            }
        }
    }
    QString order;
    if (view.across != DiversityAcross::orders) {
        order = explanationOf(topicOfOrder(view.order), view.kind).meaning;
    }
    all.entries = {{"Vertical", order},     {"Formula", words.formula}, {"Variant", words.variant},
                   {"Inputs", inputs},      {"Estimates", estimates},   {"Bands", words.bands},
                   {"Source", words.source}};
    return all;
}

Explanation commonCoverageExplanation(const CommonCoverage& common, const DiversityCurve& limit) {
    const FrequencyCounts& sample = limit.estimator.sample();
    const DiversityExplanation words = explanationOf(DiversityTopic::commonCoverage, sample.kind);
    Explanation all = explained(words, withDigits(common.coverage, 4));
    all.entries = {{"Formula", words.formula},
                   {"Variant", words.variant},
                   {"Limited by", shownNameOf(limit.name) + ": " +
                                      QString::fromStdString(diversityInputs(sample))},
                   {"Source", words.source}};
    return all;
}

Explanation rowExplanation(const CoverageRow& row, std::optional<DiversityTopic> topic,
                           const QStringList& diversities) {
    const QString name = shownNameOf(row.name);
    QString inputs = QString::fromStdString(diversityInputs(row.sample));
    if (row.at) {
        inputs += QString(", C = %1, m = %2")
                      .arg(withDigits(row.at->coverage, 4), withDigits(row.at->size, 3));
    }
    const DiversityExplanation words =
        explanationOf(topic.value_or(DiversityTopic::overCoverage), row.sample.kind);
    Explanation all{topic ? words.name : "Diversity at equal coverage", name, {}, {}};
    std::optional<std::size_t> order;
    if (topic) {
        order = orderOf(*topic);
        const QString value = valueOf(row, *topic, diversities);
        const bool isThere = !value.isEmpty() && value != "-";
        all.value = isThere ? QString("%1 for %2").arg(value, name) : "No value for " + name;
        all.paragraphs.append(words.meaning);
    } else {
        for (std::size_t q = 0; q < kHillOrders; ++q) {
            all.entries.append({explanationOf(topicOfOrder(q), row.sample.kind).name,
                                diversities[static_cast<qsizetype>(q)]});
        }
        all.entries.append({"Sample coverage", row.coverage ? withDigits(*row.coverage, 4) : "-"});
    }
    const bool isOfSample = topic == DiversityTopic::size || topic == DiversityTopic::coverage;
    if (row.at && !isOfSample) all.paragraphs.append(methodText(*row.at));
    if (!isOfSample || !row.coverage) all.paragraphs.append(row.remark);
    all.entries +=
        {{"Formula", words.formula}, {"Variant", words.variant},
         {"Inputs", inputs},         {"Limits", order ? limitsOf(row, *order) : QString()},
         {"Bands", words.bands},     {"Source", words.source}};
    return all;
}

}  // namespace zorvel
