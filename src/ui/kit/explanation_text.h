// The words of the explanation tables, put together for one value that is shown. Main thread, for
// the translations and colours.
#pragma once

#include <QColor>
#include <QString>
#include <string_view>

#include "model/metric_explanations.h"

namespace zorvel {

// What the value means, in a sentence; empty for an unknown key.
QString metricMeaning(std::string_view key);

// What went into a value, and why it is "-" or missing, or what is particular about it; the latter
// is mostly empty.
struct MetricDetails {
    QString inputs;
    QString remark;
};
MetricDetails metricDetails(std::string_view key, const MetricInputs& inputs);
MetricDetails metricDetails(std::string_view key, const ProjectMetricInputs& inputs);

struct ExplainedValue {
    std::string_view key;
    QString subject;       // the census, or the project
    QString text;          // as it is shown; empty where there is none, or another subject's
    bool pending = false;  // it is still to come
    QString note;  // what the panel says about it, such as that it belongs to another subject
    MetricDetails details;
};

struct ExplanationText {
    QString rich;
    QString plain;  // the same words
};

// Value, meaning, remarks, formula, variant, inputs and publication. secondary: of what is less
// important.
ExplanationText explanationText(const ExplainedValue& value, const QColor& secondary);

}  // namespace zorvel
