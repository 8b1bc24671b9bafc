// Pictures of the window of the project-wide metrics in all its states; not a test.
#pragma once

#include <QString>

namespace zorvel {

// Into files of the folder whose names end with the look's.
void takeProjectWidePictures(const QString& folder, const QString& look);

}  // namespace zorvel
