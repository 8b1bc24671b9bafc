// The last thing before the program ends: waits for what is still being written, and says so, and
// says what could not be. Main thread.
#pragma once

#include "ui/kit/panels.h"

namespace zorvel {

class Document;
class DocumentController;
class JobQueue;

// Waits at most ten seconds for projects and for the files that jobs write, with a word on the
// screen after half a second. Then asks about each document whose last changes are not on the disk:
// save it elsewhere, quit all the same, or not. discarded, if not null, is left out of it. False
// where the person wants to stay.
bool settleBeforeQuitting(DocumentController& documents, JobQueue& jobs, const Panels& panels,
                          const Document* discarded = nullptr);

// The same wait, without a question.
void settleAtOnce(DocumentController& documents, JobQueue& jobs);

}  // namespace zorvel
