#include "metrics/special_functions.h"

#include <array>
#include <cmath>
#include <limits>

namespace zorvel {

namespace {

constexpr double eulerGamma = 0.57721566490153286061;
constexpr int mostSteps = 10'000'000;
constexpr double epsilon = std::numeric_limits<double>::epsilon() / 2;

// ln Gamma(y + 1) - (y + 1/2) ln y + y - ln sqrt(2 pi) for large y (Stirling).
double stirlingCorrection(double y) {
    const double square = 1 / (y * y);
    return (1.0 / 12 - square * (1.0 / 360 - square * (1.0 / 1260 - square * (1.0 / 1680)))) / y;
}

double logGamma(double x) {
    int sign = 0;
    return lgamma_r(x, &sign);  // std::lgamma writes a variable that threads share
}

}  // namespace

double digamma(double x) {
    double below = 0;
    while (x < 12) {
        below += 1 / x;
        ++x;
    }
    constexpr std::array<double, 7> terms{1.0 / 12,  -1.0 / 120,     1.0 / 252, -1.0 / 240,
                                          1.0 / 132, -691.0 / 32760, 1.0 / 12};
    const double square = 1 / (x * x);
    double sum = 0;
    for (std::size_t i = terms.size(); i > 0; --i) sum = (sum + terms[i - 1]) * square;
    return std::log(x) - 0.5 / x - sum - below;
}

double logGammaRatio(double x, double q) {
    if (x < 20) return logGamma(x + 1) - logGamma(x + 1 - q);
    const double y = x - q;
    return q * std::log(y) + (x + 0.5) * std::log1p(q / y) - q + stirlingCorrection(x) -
           stirlingCorrection(y);
}

namespace {

// Lentz's method for 1 / (1 + d1 w / (1 + d2 w / (1 + ...))).
double byContinuedFraction(double q, double c, double w) {
    double value = 1;
    double numerator = 1;
    double denominator = 0;
    double term = 1;
    for (int step = 0; step < mostSteps; ++step) {
        const double j = step;
        for (const bool odd : {true, false}) {
            // The partial numerators d_(2j+1) w and d_(2j+2) w.
            if (j > 0 || !odd) {
                const double i = odd ? j : j + 1;
                term = odd ? (q + i) * (c - 1 + i) / ((c + 2 * i - 1) * (c + 2 * i))
                           : i * (c - q + i - 1) / ((c + 2 * i - 2) * (c + 2 * i - 1));
            } else {
                term = q / c;
            }
            denominator = 1 / (1 + term * w * denominator);
            numerator = 1 + term * w / numerator;
            const double change = numerator * denominator;
            value *= change;
            if (std::fabs(change - 1) <= epsilon) return 1 / value;
        }
    }
    return 1 / value;
}

// By the series in y = 1 / (1 + w) (Abramowitz & Stegun 1964, 15.3.6 after 15.3.4), for c y of at
// most about 1: its terms fall as 1 / k!. Its two parts cancel as q nears 1 or 2.
double byConnection(double q, double c, double w) {
    const double y = 1 / (1 + w);
    double series = 1;
    double term = 1;
    for (int k = 0; term > epsilon * series && k < mostSteps; ++k) {
        term *= (c - q + k) / (2 - q + k) * y;
        series += term;
    }
    const double power =
        std::exp(q * std::log(y) + logGammaRatio(c - 1, q) - (c - 1) * std::log1p(-y));
    return y * (c - 1) / (q - 1) * series + std::tgamma(1 - q) * power;
}

}  // namespace

double hypergeometricTail(double q, double c, double w) {
    const bool cancels = std::fabs(q - 1) < 0.02 || q > 1.98;
    return w > c && !cancels ? byConnection(q, c, w) : byContinuedFraction(q, c, w);
}

double entropyTail(double n, double a) {
    const double found = 1 - a;
    if (found <= 0) return 0;
    if (n * a > 1) return found / a / n * hypergeometricTail(1, n + 1, found / a);
    // The sum over k >= 1 of C(n - 1, k) (-a)^k / k; its terms fall at least as 1 / k!.
    double power = 1;
    double sum = 0;
    double k = 1;
    while (k < n) {
        power *= -a * (n - k) / k;
        sum += power / k;
        if (std::fabs(power) < epsilon * std::fabs(sum)) break;
        ++k;
    }
    return std::exp((1 - n) * std::log1p(-a)) * (-std::log(a) - digamma(n) - eulerGamma - sum);
}

}  // namespace zorvel
