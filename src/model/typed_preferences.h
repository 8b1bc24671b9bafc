// Reads what a person types into the two numbers of the preferences. A number has one spelling
// under every locale: a point is the decimal separator, digits are not grouped, and white space is
// not passed over. What is wrong is told as one of a few sentences in English, to be translated
// where it is shown.
#pragma once

#include <cstdint>
#include <string_view>

#include "model/typed_values.h"

namespace zorvel {

// An optional sign and digits that fit in 64 bits; of any value, since whoever stores it limits it.
Typed<std::int64_t> parseTypedSampleSize(std::string_view text);

// One number as strtod reads it in the C locale (".75", "1e-1", "0x1p-1"), of any value. The words
// for infinity and not-a-number that strtod takes too, and what is too large for a double, are
// refused: none of them is a share of specimens.
Typed<double> parseTypedQuota(std::string_view text);

}  // namespace zorvel
