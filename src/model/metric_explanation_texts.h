// The explanations of all metrics, and what marks their words for translation.
#pragma once

#include <vector>

#include "model/metric_explanations.h"

// By this name the words are found where a translation is begun; it belongs to Qt, which this
// folder does without. The context is the one that the windows look them up in.
#ifndef QT_TRANSLATE_NOOP
#define QT_TRANSLATE_NOOP(context, text) text
#endif

namespace zorvel {

std::vector<MetricExplanation> censusExplanations();
std::vector<MetricExplanation> projectExplanations();

}  // namespace zorvel
