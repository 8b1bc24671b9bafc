// The texts of a census's details: where, when, and what was noted.
#pragma once

#include <QString>

#include "model/diversity_document.h"

namespace zorvel {

struct CensusDetails {
    QString latitude;  // degrees, the shortest text that reads back as the same number
    QString longitude;
    QString date;  // in the computer's time zone; empty where there is none
    QString notes;
};

CensusDetails censusDetails(const Census& census);

}  // namespace zorvel
