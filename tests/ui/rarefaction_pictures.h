// Pictures of the rarefaction window's states, and of the files that it saves, for looking at.
#pragma once

#include <QString>

#include "ui/kit/panels.h"

namespace zorvel {

class JobQueue;

// As FOLDER/rarefaction-STATE-NAME.png; the saved files once, whatever the scheme.
void takeRarefactionPictures(const QString& folder, const QString& name, JobQueue& jobs,
                             const Panels& panels);

}  // namespace zorvel
