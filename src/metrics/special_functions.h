// Functions of the estimates of diversity, accurate to about 1e-15. Pure; any thread.
#pragma once

namespace zorvel {

// The logarithmic derivative of the gamma function; x > 0.
double digamma(double x);

// ln(Gamma(x + 1) / Gamma(x + 1 - q)), which is q ln x for large x; x >= 1, 0 <= q < 2.
double logGammaRatio(double x, double q);

// Gauss's hypergeometric function 2F1(1, q; c; -w) for q in (0, 2], c > q, w >= 0: by its
// continued fraction, whose terms are all positive (Jones & Thron 1980), or, for w > c, by a
// series that needs fewer steps; there it is accurate to about 1e-13, and takes some 1.5 sqrt(w)
// steps if q is within 0.02 of 1 or 2.
double hypergeometricTail(double q, double c, double w);

// The sum over j >= 0 of A^(j + 1) / (n + j), A = 1 - a, which the published form of the entropy
// estimate (Chao, Wang & Jost 2013) writes as A^(1 - n) (-ln a - sum over k < n of A^k / k), a
// difference of large terms. a in (0, 1], n >= 1.
double entropyTail(double n, double a);

}  // namespace zorvel
