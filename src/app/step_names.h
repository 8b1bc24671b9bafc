// The names of undo steps in the language of the person at the screen.
#pragma once

#include <QString>
#include <string>

namespace zorvel {

// name: as the edits of the model give it; one that is not known stays as it is.
QString translatedStepName(const std::string& name);

}  // namespace zorvel
