#include "metrics/random_source.h"

#include "base/numbers.h"

namespace zorvel {
namespace {

using State = std::array<std::uint64_t, 4>;

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
    for (std::size_t i = 0; i < buffer.size(); i += 2) {
        const std::uint64_t word = rotate(s[1] * 5, 7) * 9;
        buffer[i] = static_cast<std::uint32_t>(word);
        buffer[i + 1] = static_cast<std::uint32_t>(word >> 32);
        const std::uint64_t shifted = s[1] << 17;
        s[2] ^= s[0];
        s[3] ^= s[1];
        s[1] ^= s[2];
        s[0] ^= s[3];
        s[2] ^= shifted;
        s[3] = rotate(s[3], 45);
    }
}

SystemRandom::SystemRandom() : GeneratedRandom(randomValue<State>()) {}

SeededRandom::SeededRandom(std::uint64_t seed) : GeneratedRandom(seededState(seed)) {}

}  // namespace zorvel
