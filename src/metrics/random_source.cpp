#include "metrics/random_source.h"

#include <cerrno>
#include <cstdlib>

#include <sys/random.h>

namespace zorvel {
namespace {

using State = std::array<std::uint64_t, 4>;

// A request of up to 256 bytes is filled whole, but a signal may interrupt the wait for the
// system's first random numbers. No other failure is possible on a kernel that has the call;
// without it there is no honest way on.
State systemState() {
    State state{};
    while (getrandom(state.data(), sizeof state, 0) != static_cast<ssize_t>(sizeof state)) {
        if (errno != EINTR) std::abort();
    }
    return state;
}

State seededState(std::uint64_t seed) {
    State state{};
    for (std::uint64_t& word : state) {
        seed += 0x9e3779b97f4a7c15U;
        std::uint64_t mixed = seed;
        mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9U;
        mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111ebU;
        word = mixed ^ (mixed >> 31);
    }
    return state;
}

}  // namespace

void RandomSource::refill() {
    fill(buffer_);
    next_ = 0;
}

void GeneratedRandom::fill(Buffer& buffer) {
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

SystemRandom::SystemRandom() : GeneratedRandom(systemState()) {}

SeededRandom::SeededRandom(std::uint64_t seed) : GeneratedRandom(seededState(seed)) {}

}  // namespace zorvel
