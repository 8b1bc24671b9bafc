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

// Why the value is "-" or missing, or what is particular about it; mostly empty.
QString metricRemarkText(std::string_view key, const MetricInputs& inputs);

struct ExplainedValue {
    std::string_view key;
    QString census;
    QString text;  // as it is shown; empty where there is none, or another census's
    QString note;  // what the panel says about it, such as that it belongs to another census
    MetricInputs inputs;
};

struct ExplanationText {
    QString rich;
    QString plain;  // the same words
};

// Value, meaning, remarks, formula, variant, inputs and publication. secondary: of what is less
// important.
ExplanationText explanationText(const ExplainedValue& value, const QColor& secondary);

}  // namespace zorvel
