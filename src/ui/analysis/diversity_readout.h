// The texts of the window of diversity at equal coverage: titles of axes, what is read out of a
// curve, and the explanations of its values and curves. Pure functions; any thread.
#pragma once

#include <QString>
#include <optional>

#include "model/diversity_explanations.h"
#include "ui/analysis/diversity_curves.h"
#include "ui/kit/popover.h"

namespace zorvel {

QString widthTitle(const DiversityView& view);
QString heightTitle(const DiversityView& view);
// "from the sample" or "predicted"; over orders "observed" or "estimated".
QString partText(const DiversityView& view, bool predicted);
// "specimens" or "censuses", with their number.
QString sampleSizeText(double size, SampleKind kind);

// The values of a curve at x, one of its points.
QString readoutText(const PlotCurve& curve, double x, const DiversityView& view,
                    ConfidenceLevel level);
// While no point is marked. drawn, all: the numbers of curves.
QString plotHint(const DiversityView& view, std::size_t drawn, std::size_t all);

// Of the plot; of one of its curves if that is marked or the only one. read: what is read out of
// it.
Explanation plotExplanation(const DiversityView& view, const DiversityCurve* curve,
                            const QString& read);
Explanation commonCoverageExplanation(const CommonCoverage& common, const DiversityCurve& limit);
// Of a value of a row; without a topic, of all of them. diversities: of each order, as shown.
Explanation rowExplanation(const CoverageRow& row, std::optional<DiversityTopic> topic,
                           const QStringList& diversities);

}  // namespace zorvel
