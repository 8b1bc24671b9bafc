#include "model/diversity_texts.h"

namespace zorvel {

const char* diversityAbsenceText(DiversityAbsence absence, SampleKind kind) {
    const bool abundance = kind == SampleKind::abundance;
    switch (absence) {
        case DiversityAbsence::noTaxa:
            return "There are no species.";
        case DiversityAbsence::sizeOne:
            return abundance ? "A single specimen says nothing about coverage."
                             : "A single census says nothing about coverage.";
        case DiversityAbsence::allSingletons:
            return abundance
                       ? "Every species was found once: Simpson diversity cannot be estimated."
                       : "Every species was found in one census: Simpson diversity cannot be "
                         "estimated.";
        case DiversityAbsence::neverReached:
            return "This coverage would need more than any sample: all of it is never reached.";
    }
    return "";
}

const char* sampleMethodName(SampleMethod method) {
    switch (method) {
        case SampleMethod::rarefied:
            return "rarefied";
        case SampleMethod::observed:
            return "observed";
        case SampleMethod::extrapolated:
            break;
    }
    return "extrapolated";
}

}  // namespace zorvel
