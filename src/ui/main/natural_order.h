// The order of names in tables, as people expect it: letters without regard to case, and runs of
// digits by their value, so that "Core 2" stands before "Core 10". Pure; any thread.
#pragma once

#include <string>
#include <string_view>

namespace zorvel {

// A key whose byte order is that order. Names that differ in case or leading zeros alone share a
// key. ASCII is taken on a fast path; other text is folded as Unicode says.
std::string naturalKey(std::string_view name);

}  // namespace zorvel
