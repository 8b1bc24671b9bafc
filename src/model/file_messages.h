// The words for what is wrong with a project file, for the window and the command-line tool alike.
#pragma once

#include "store/file_problem.h"

namespace zorvel {

// A sentence in English without the file's name, which goes before it with a colon; what it means
// for the person, and where there is something to do about it, what.
const char* fileTroubleText(FileTrouble trouble);

// The sentence, and the detail in brackets where there is one.
std::string fileMessage(const FileProblem& problem);

}  // namespace zorvel
