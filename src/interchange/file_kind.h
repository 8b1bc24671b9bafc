// Guessing which format a file holds from its first bytes and lines. Pure functions, any thread.
#pragma once

#include <string_view>

namespace zorvel {

enum class FileKind { list, census, matrix, ios };

// The kind that a text seems to be: ios by its quoted header cells and the shape of the next line,
// list if there are only whole numbers and separators, census if the first line is a name and a
// whole number; otherwise matrix.
FileKind guessFileKind(std::string_view text);

// True if the text can be of no other kind. A guess of list or phone export is always certain; a
// matrix is if it has two species or more, none of them a number, and its first row fits. A name
// and a number per line may be a census or a matrix of one species, so a census is never certain.
bool isCertain(FileKind guess, std::string_view text);

// Which character separates the cells of a text in which a parser for commas finds nothing, for
// messages: "semicolons" or "tabs" where every line has that separator outside quotes, a cell after
// one is a number, and the commas do not separate numbers as well; otherwise empty. Stops at the
// first line without either.
std::string_view foreignSeparator(std::string_view text);

}  // namespace zorvel
