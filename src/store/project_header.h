// The first bytes of a project file: enough to tell it from any other before SQLite opens it.
#pragma once

#include <cstddef>
#include <string_view>

namespace zorvel {

inline constexpr std::size_t headerSize = 100;

// start: the first headerSize bytes, or all there are. The version of the file; fails where it is
// no project, or one of a later version than any that is known.
int checkHeader(std::string_view start);

}  // namespace zorvel
