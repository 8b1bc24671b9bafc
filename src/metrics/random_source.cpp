#include "metrics/random_source.h"

#include <array>
#include <cmath>

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

constexpr double fewSuccesses = 10;

std::int64_t byGaps(RandomSource& random, double trials, double chance) {
    const double logMiss = std::log1p(-chance);
    std::int64_t successes = 0;
    double at = 0;
    for (;;) {
        at += std::floor(std::log(uniform(random)) / logMiss) + 1;
        if (!(at <= trials)) return successes;
        ++successes;
    }
}

// ln k! less Stirling's approximation in k + 1.
double stirlingTail(double k) {
    constexpr std::array<double, 10> first{
        0.0810614667953272, 0.0413406959554092, 0.0276779256849983, 0.0207906721037650,
        0.0166446911898211, 0.0138761288230707, 0.0118967099458917, 0.0104112652619720,
        0.0092554621827127, 0.0083305634333628};
    if (k < 10) return first[static_cast<std::size_t>(k)];
    const double next = k + 1;
    const double square = next * next;
    return (1.0 / 12 - (1.0 / 360 - 1.0 / 1260 / square) / square) / next;
}

// chance <= 1/2, at least fewSuccesses expected.
std::int64_t byRejection(RandomSource& random, double trials, double chance) {
    const double deviation = std::sqrt(trials * chance * (1 - chance));
    const double b = 1.15 + 2.53 * deviation;
    const double a = -0.0873 + 0.0248 * b + 0.01 * chance;
    const double c = trials * chance + 0.5;
    const double sure = 0.92 - 4.2 / b;
    const double odds = chance / (1 - chance);
    const double alpha = (2.83 + 5.1 / b) * deviation;
    const double mode = std::floor((trials + 1) * chance);
    for (;;) {
        const double u = uniform(random) - 0.5;
        const double v = uniform(random);
        const double inner = 0.5 - std::fabs(u);
        const double k = std::floor((2 * a / inner + b) * u + c);
        if (k < 0 || k > trials) continue;
        if (inner >= 0.07 && v <= sure) return static_cast<std::int64_t>(k);
        const double height = std::log(v * alpha / (a / (inner * inner) + b));
        const double density = (mode + 0.5) * std::log((mode + 1) / (odds * (trials - mode + 1))) +
                               (trials + 1) * std::log((trials - mode + 1) / (trials - k + 1)) +
                               (k + 0.5) * std::log(odds * (trials - k + 1) / (k + 1)) +
                               stirlingTail(mode) + stirlingTail(trials - mode) - stirlingTail(k) -
                               stirlingTail(trials - k);
        if (height <= density) return static_cast<std::int64_t>(k);
    }
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

double uniform(RandomSource& random) {
    return (static_cast<double>(random.bits64() >> 11) + 0.5) * 0x1p-53;
}

std::int64_t binomial(RandomSource& random, std::int64_t trials, double chance) {
    if (trials <= 0 || !(chance > 0)) return 0;
    if (chance >= 1) return trials;
    if (chance > 0.5) return trials - binomial(random, trials, 1 - chance);
    const auto count = static_cast<double>(trials);
    return count * chance < fewSuccesses ? byGaps(random, count, chance)
                                         : byRejection(random, count, chance);
}

}  // namespace zorvel
