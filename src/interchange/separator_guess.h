// Which character separates the cells of a text that a parser for commas makes nothing of. Only for
// messages: nothing is converted. Pure.
#pragma once

#include <string_view>

namespace zorvel {

// "semicolons" or "tabs" where every line has that separator outside quotes, a cell after one is a
// number, and the commas do not separate numbers as well; otherwise empty. Stops at the first line
// without either.
std::string_view foreignSeparator(std::string_view text);

}  // namespace zorvel
