// The words for what is wrong with a project file, for the window and the command-line tool alike.
#pragma once

#include <string>

#include "store/file_problem.h"

namespace zorvel {

// Sentences in English without the file's name, which goes before them with a colon: what is wrong,
// what it means for the data, and what to do about it.
const char* fileTroubleText(FileTrouble trouble);

// The sentence, and in brackets the detail and the system's own words for its error where they say
// more.
std::string fileMessage(const FileProblem& problem);

}  // namespace zorvel
