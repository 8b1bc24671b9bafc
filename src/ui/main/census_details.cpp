#include "ui/main/census_details.h"

#include <QDateTime>
#include <QLocale>
#include <chrono>

#include "base/numbers.h"

namespace zorvel {

CensusDetails censusDetails(const Census& census) {
    CensusDetails details;
    details.latitude = QString::fromStdString(shortestText(census.latitude()));
    details.longitude = QString::fromStdString(shortestText(census.longitude()));
    if (const std::optional<TimeStamp> time = census.timeStamp()) {
        const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(*time);
        const auto since = milliseconds.time_since_epoch().count();
        details.date = QLocale().toString(QDateTime::fromMSecsSinceEpoch(since),
                                          QStringLiteral("d MMM yyyy, HH:mm"));
    }
    if (const auto notes = census.notes()) details.notes = QString::fromStdString(notes->str());
    return details;
}

}  // namespace zorvel
