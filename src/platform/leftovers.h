// What killed programs have left of files that they had not finished. Any thread.
#pragma once

#include <QString>

namespace zorvel {

// Deletes the unfinished project files of a folder of our own that nobody has touched for a day.
void deleteLeftovers(const QString& folder);

}  // namespace zorvel
