#include "metrics/random_source.h"

#include <cerrno>
#include <cstdlib>

#include <sys/random.h>

namespace zorvel {

void RandomSource::refill() {
    fill(buffer_);
    next_ = 0;
}

// Requests of more than 256 bytes may be cut short or interrupted by a signal. No other failure is
// possible on a kernel that has the call; without it there is no honest way on.
void SystemRandom::fill(Buffer& buffer) {
    auto* bytes = reinterpret_cast<unsigned char*>(buffer.data());
    std::size_t left = sizeof buffer;
    while (left > 0) {
        const ssize_t got = getrandom(bytes, left, 0);
        if (got < 0) {
            if (errno == EINTR) continue;
            std::abort();
        }
        bytes += got;
        left -= static_cast<std::size_t>(got);
    }
}

SeededRandom::SeededRandom(std::uint64_t seed) {
    for (std::uint64_t& word : state_) {
        seed += 0x9e3779b97f4a7c15U;
        std::uint64_t mixed = seed;
        mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9U;
        mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111ebU;
        word = mixed ^ (mixed >> 31);
    }
}

void SeededRandom::fill(Buffer& buffer) {
    auto& s = state_;
    const auto rotate = [](std::uint64_t x, int k) { return (x << k) | (x >> (64 - k)); };
    for (std::uint64_t& word : buffer) {
        word = rotate(s[1] * 5, 7) * 9;
        const std::uint64_t shifted = s[1] << 17;
        s[2] ^= s[0];
        s[3] ^= s[1];
        s[1] ^= s[2];
        s[0] ^= s[3];
        s[2] ^= shifted;
        s[3] = rotate(s[3], 45);
    }
}

}  // namespace zorvel
