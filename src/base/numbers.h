// Numbers to and from text, the same under every locale: a point is the decimal separator and
// digits are never grouped. Random numbers of the system. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zorvel {

// 128-bit integers, a language extension of both compilers the program is built with.
__extension__ typedef __int128 Int128;
__extension__ typedef unsigned __int128 UInt128;

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

// The whole text as one decimal integer, as all comma-separated formats write it: an optional
// single "+" or "-", then ASCII digits and nothing else. Absent for an empty text, a lone sign, any
// other character (spaces, a decimal point, an exponent), or a value that does not fit in 64 bits.
std::optional<std::int64_t> parseWholeInteger(std::string_view text);

// Random bytes that no other process draws too (getrandom); at most 256.
void fillRandom(void* bytes, std::size_t size);

template <class T>
T randomValue() {
    T value{};
    fillRandom(&value, sizeof value);
    return value;
}

// Two random digits per byte.
std::string randomHexadecimal(std::size_t bytes);

}  // namespace zorvel
