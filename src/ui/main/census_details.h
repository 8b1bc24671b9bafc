// The texts of a census's details, each the shortest that reads back as the value that is stored.
#pragma once

#include <QString>

#include "store/object_context.h"

namespace zorvel {

QString latitudeText(const Census& census);   // degrees
QString longitudeText(const Census& census);  // degrees
// In the computer's time zone; empty where there is none.
QString dateText(const Census& census);

}  // namespace zorvel
