#include "ui/main/census_details.h"

#include "base/numbers.h"
#include "model/typed_values.h"

namespace zorvel {

QString latitudeText(const Census& census) {
    return QString::fromStdString(shortestText(census.latitude()));
}

QString longitudeText(const Census& census) {
    return QString::fromStdString(shortestText(census.longitude()));
}

QString dateText(const Census& census) {
    const std::optional<TimeStamp> time = census.timeStamp();
    return time ? QString::fromStdString(typedTimeText(*time)) : QString();
}

}  // namespace zorvel
