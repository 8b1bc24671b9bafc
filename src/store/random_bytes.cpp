#include "store/random_bytes.h"

#include <sys/random.h>

#include <cerrno>

#include "store/file_failure.h"

namespace zorvel {
namespace {

void fillRandom(void* bytes, std::size_t size) {
    // So few bytes come whole.
    if (getrandom(bytes, size, 0) != static_cast<ssize_t>(size)) {
        failWithErrno(errno, "draw a random number");
    }
}

}  // namespace

std::int64_t randomInteger() {
    std::int64_t number = 0;
    fillRandom(&number, sizeof number);
    return number;
}

std::string randomHexadecimal(std::size_t bytes) {
    std::string raw(bytes, '\0');
    fillRandom(raw.data(), bytes);
    std::string text;
    for (const char byte : raw) {
        text += "0123456789abcdef"[static_cast<unsigned char>(byte) >> 4];
        text += "0123456789abcdef"[static_cast<unsigned char>(byte) & 15];
    }
    return text;
}

}  // namespace zorvel
