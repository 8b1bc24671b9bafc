// The first bytes of a project file: enough to tell it from any other before SQLite opens it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace zorvel {

inline constexpr std::size_t headerSize = 100;

// start: the first headerSize bytes, or all there are. The version of the file; fails where it is
// no project, or one of a later version than any that is known.
int checkHeader(std::string_view start);

// SQLite's count of the transactions that have changed the file.
std::uint32_t changeCount(std::string_view start);

// A number as SQLite stores it in the headers of its files.
std::uint32_t numberAt(std::string_view bytes, std::size_t place);

}  // namespace zorvel
