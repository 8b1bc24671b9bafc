// Random numbers that no other process draws too, for tokens and names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace zorvel {

std::int64_t randomInteger();

// Two digits a byte.
std::string randomHexadecimal(std::size_t bytes);

}  // namespace zorvel
