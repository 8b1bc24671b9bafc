// Words for diversity at equal size and coverage, the same in window, tool and exports. Any thread.
#pragma once

#include "metrics/diversity.h"

namespace zorvel {

// A sentence.
const char* diversityAbsenceText(DiversityAbsence absence, SampleKind kind);
inline constexpr const char* noCommonCoverage =
    "No census has the two specimens that coverage needs";
// "rarefied", "observed" or "extrapolated".
const char* sampleMethodName(SampleMethod method);

}  // namespace zorvel
