// What a person typed into a name cell as it is stored. Pure.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zorvel {

// Each line break (CR LF is one), tab or other control character (U+0000 to U+001F, U+007F to
// U+009F) becomes a space, and white space at the ends goes. Absent where nothing is left. Spaces
// within stay as they are, so that a name which was imported with two of them is not changed by a
// visit.
std::optional<std::string> typedName(std::string_view typed);

}  // namespace zorvel
