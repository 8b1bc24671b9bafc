// Pictures of the analysis windows in all their states, and of the files that they save. Main
// thread.
#pragma once

#include <QString>

#include "ui/kit/panels.h"

namespace zorvel {

class JobQueue;

// As FOLDER/rarefaction-STATE-LOOK.png; the saved files once, whatever the look.
void takeRarefactionPictures(const QString& folder, const QString& look, JobQueue& jobs,
                             const Panels& panels);

// As FOLDER/project-wide-STATE-LOOK.png.
void takeProjectWidePictures(const QString& folder, const QString& look);

}  // namespace zorvel
