// Numbers to and from text, the same under every locale: a point is the decimal separator and
// digits are never grouped.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zorvel {

// As printf's "%.<digits>f" in the C locale, for every finite double (the exact value is rounded,
// ties to even); "nan", "-nan", "inf" and "-inf" otherwise. digits: 0 or more.
std::string fixedText(double value, int digits);

// The shortest decimal text that reads back as the same double; "nan", "inf", "-inf" otherwise.
std::string shortestText(double value);

// The same as console lines show a number: with at least one digit after the point ("1.0"), and an
// exponent only from 1e16 on and below 0.0001 ("1.0e+30").
std::string shortestTextWithPoint(double value);

std::string integerText(std::int64_t value);

// The whole text as one number in the syntax of strtod in the C locale (optional sign, decimal or
// hexadecimal, exponent, "inf", "infinity" and "nan" in any case), without space before or after.
// A value out of range reads as strtod reads it: an infinity or the nearest denormal or zero.
std::optional<double> parseWholeDouble(std::string_view text);

}  // namespace zorvel
