// The steps of a filter bank as plain loops over one signal: slow, obvious, and the measure of the
// pack's own. In double they have its very bits; in a wider type they show how far it rounds.
#pragma once

#include <algorithm>
#include <vector>

#include "dwt/image_steps.h"
#include "filters/filter_bank.h"

namespace plain {

template <class Number>
using SignalOf = std::vector<Number>;
using Signal = SignalOf<double>;
using undula::FilterBank;
template <class Number>
using StepOf = SignalOf<Number>(const FilterBank& bank, const SignalOf<Number>& x, bool swap);
using Step = StepOf<double>;

inline long mod(long p, long n) {
    if (0 <= p && p < n) return p;
    return ((p % n) + n) % n;
}
template <class Number>
long lengthOf(const SignalOf<Number>& x) {
    return static_cast<long>(x.size());
}
template <class Number>
Number& at(SignalOf<Number>& x, long p) {
    return x[static_cast<std::size_t>(p)];
}
template <class Number>
Number at(const SignalOf<Number>& x, long p) {
    return x[static_cast<std::size_t>(p)];
}

inline long lowPlace(long k, long n, bool swap) {
    return swap ? n / 2 + k : k;
}
inline long highPlace(long k, long n, bool swap) {
    return swap ? k : (n + 1) / 2 + k;
}

// extension(p) is the position within the signal that stands for p.
template <class Number, class Extension>
SignalOf<Number> analyse(const FilterBank& bank, const SignalOf<Number>& x, bool swap, Extension extension) {
    const long n = lengthOf(x);
    SignalOf<Number> out(x.size());
    const auto correlate = [&](const double* f, long taps, long start) {
        Number sum = 0.0;
        for (long j = 0; j < taps; ++j) sum += f[j] * at(x, extension(start + j));
        return sum;
    };
    for (long k = 0; k < (n + 1) / 2; ++k)
        at(out, lowPlace(k, n, swap)) = correlate(bank.ha, bank.La, bank.oa + 2 * k);
    for (long k = 0; k < n / 2; ++k)
        at(out, highPlace(k, n, swap)) = correlate(bank.ga, bank.Lb, bank.ob + 2 * k);
    return out;
}

template <class Number>
SignalOf<Number> periodicAnalysis(const FilterBank& bank, const SignalOf<Number>& x, bool swap) {
    return analyse(bank, x, swap, [n = lengthOf(x)](long p) { return mod(p, n); });
}

// The mirror images, one after the other: about the end samples for a filter with a middle tap,
// beside them for one without.
template <class Number>
SignalOf<Number> symmetricAnalysis(const FilterBank& bank, const SignalOf<Number>& x, bool swap) {
    const long n = lengthOf(x);
    const long period = bank.La % 2 != 0 ? std::max(2 * n - 2, 1L) : 2 * n;
    return analyse(bank, x, swap, [=](long p) {
        p = mod(p, period);
        return p < n ? p : period - p - (period == 2 * n ? 1 : 0);
    });
}

template <class Number>
SignalOf<Number> periodicSynthesis(const FilterBank& bank, const SignalOf<Number>& y, bool swap) {
    const long n = lengthOf(y);
    const long first = std::min({0L, long{bank.os}, long{bank.og}});
    const long most = std::max({0L, long{bank.og} + bank.La, long{bank.os} + bank.Lb});
    SignalOf<Number> room(static_cast<std::size_t>(n + most - first + 1));  // on both sides of the signal
    const auto ext = [&](long p) -> Number& { return room.at(static_cast<std::size_t>(p - first)); };
    for (long k = 0; k < (n + 1) / 2; ++k) {
        const Number s = at(y, lowPlace(k, n, swap));
        for (long j = 0; j < bank.Lb; ++j) ext(bank.os + 2 * k + j) += s * bank.hs[j];
        if (k >= n / 2) break;
        const Number d = at(y, highPlace(k, n, swap));
        for (long j = 0; j < bank.La; ++j) ext(bank.og + 2 * k + j) += d * bank.gs[j];
    }
    for (long p = first; p < 0; ++p) ext(mod(p, n)) += ext(p);
    for (long i = most; i >= 0; --i) ext(mod(i, n)) += ext(n + i);
    return SignalOf<Number>(room.begin() - first, room.begin() - first + n);
}

// Continues both parts to one period and merges that periodically.
template <class Number>
SignalOf<Number> symmetricSynthesis(const FilterBank& bank, const SignalOf<Number>& y, bool swap) {
    const long n = lengthOf(y);
    const bool odd = n % 2 != 0;
    const bool wholeSample = bank.Lb % 2 != 0;
    const auto part = [&](long start, long count) {
        return SignalOf<Number>(y.begin() + start, y.begin() + start + count);
    };
    const auto mirror = [](SignalOf<Number>& half, long last, long first, double sign) {
        for (long i = last; i >= first; --i) half.push_back(sign * at(half, i));
    };
    SignalOf<Number> low = part(lowPlace(0, n, swap), (n + 1) / 2);
    SignalOf<Number> high = part(highPlace(0, n, swap), n / 2);
    const long lastHigh = lengthOf(high) - 1;
    mirror(low, lengthOf(low) - (odd ? 2 : 1), wholeSample ? 1 : 0, 1.0);
    if (odd && !wholeSample) high.push_back(0.0);
    mirror(high, lastHigh - (!odd && wholeSample ? 1 : 0), 0, wholeSample ? 1.0 : -1.0);

    SignalOf<Number> period = swap ? high : low;
    const SignalOf<Number>& second = swap ? low : high;
    period.insert(period.end(), second.begin(), second.end());
    SignalOf<Number> out = periodicSynthesis(bank, period, swap);
    out.resize(y.size());
    return out;
}

template <class Number>
SignalOf<Number> intervalAnalysis(const FilterBank& bank, const SignalOf<Number>& x, bool swap) {
    const long n = lengthOf(x);
    const long rows = bank.La / 2;
    SignalOf<Number> out(x.size());
    const auto low = [&](long k) -> Number& { return at(out, lowPlace(k, n, swap)); };
    const auto high = [&](long k) -> Number& { return at(out, highPlace(k, n, swap)); };
    for (long i = 0; i < rows; ++i) {
        for (long t = 0; t <= rows + 2 * i; ++t) {
            low(i) += bank.BLlo[i][t] * at(x, t);
            high(i) += bank.BLhi[i][t] * at(x, t);
            low(n / 2 - 1 - i) += bank.BRlo[i][t] * at(x, n - 1 - t);
            high(n / 2 - 1 - i) += bank.BRhi[i][t] * at(x, n - 1 - t);
        }
    }
    for (long k = 0; k < n / 2 - bank.La; ++k) {
        const long start = bank.La + 2 * k;
        for (long j = 0; j < bank.La; ++j) low(rows + k) += bank.ha[j] * at(x, bank.oa + start + j);
        for (long j = 0; j < bank.La; ++j) high(rows + k) += bank.ga[j] * at(x, bank.ob + start + j);
    }
    return out;
}

template <class Number>
SignalOf<Number> intervalSynthesis(const FilterBank& bank, const SignalOf<Number>& y, bool swap) {
    const long n = lengthOf(y);
    const long rows = bank.La / 2;
    SignalOf<Number> x(y.size());
    const auto low = [&](long k) { return at(y, lowPlace(k, n, swap)); };
    const auto high = [&](long k) { return at(y, highPlace(k, n, swap)); };
    for (long i = 0; i < rows; ++i) {
        for (long t = 0; t <= rows + 2 * i; ++t)
            at(x, t) += low(i) * bank.BLlo[i][t] + high(i) * bank.BLhi[i][t];
    }
    for (long k = 0; k < n / 2 - bank.La; ++k) {
        const long start = bank.La + 2 * k;
        for (long j = 0; j < bank.Lb; ++j) at(x, bank.os + start + j) += low(rows + k) * bank.hs[j];
        for (long j = 0; j < bank.La; ++j) at(x, bank.og + start + j) += high(rows + k) * bank.gs[j];
    }
    for (long i = 0; i < rows; ++i) {
        const long k = n / 2 - 1 - i;
        for (long t = 0; t <= rows + 2 * i; ++t)
            at(x, n - 1 - t) += low(k) * bank.BRlo[i][t] + high(k) * bank.BRhi[i][t];
    }
    return x;
}

// The step along every column of a part of an image and then along every row; of a signal along its one
// column.
template <class Number>
void stepImage(StepOf<Number>* step, const FilterBank& bank, Number* origin, long stride, long rows,
               long cols, const undula::Swaps& swaps) {
    const auto replace = [&](Number* first, long distance, long count, bool swap) {
        SignalOf<Number> line(static_cast<std::size_t>(count));
        for (long i = 0; i < count; ++i) at(line, i) = first[i * distance];
        line = step(bank, line, swap);
        for (long i = 0; i < count; ++i) first[i * distance] = at(line, i);
    };
    for (long c = 0; c < cols; ++c) replace(origin + c * stride, 1, rows, swaps.inColumns);
    for (long r = 0; cols > 1 && r < rows; ++r) replace(origin + r, stride, cols, swaps.inRows);
}

}  // namespace plain
