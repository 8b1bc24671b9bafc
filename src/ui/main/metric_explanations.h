// What each metric of the panel means, in a sentence or two, for tooltips and screen readers.
#pragma once

#include <QString>
#include <string_view>

#include "metrics/sqs.h"

namespace zorvel {

// key: of a row of metricsPanelRows. Empty for any other.
QString metricExplanation(std::string_view key);

// Why there is no SQS estimate, as the end of a sentence. Empty where there is one.
QString sqsAbsenceReason(const SqsResult& result);

}  // namespace zorvel
