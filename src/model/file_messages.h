// The messages about a project file that cannot be used, for both programs. Any thread.
#pragma once

#include <string>

#include "store/file_problem.h"

namespace zorvel {

// Sentences to follow the file's name and a colon: what is wrong, what it means for the data, and
// what to do.
const char* fileTroubleText(FileTrouble trouble);

// The sentences, then in brackets the detail and the system's words for its error, if any.
std::string fileMessage(const FileProblem& problem);

}  // namespace zorvel
