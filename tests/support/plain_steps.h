// The steps of a filter bank as plain loops over one signal: slow, obvious, and the measure of the
// pack's own.
#pragma once

#include <algorithm>
#include <vector>

#include "filters/filter_bank.h"

namespace plain {

using Signal = std::vector<double>;
using undula::FilterBank;

inline long mod(long p, long n) {
    return ((p % n) + n) % n;
}

// A signal with room on both sides, zeros at first.
class Extended {
 public:
    Extended(long first, long last) : offset(first), values(static_cast<std::size_t>(last - first + 1)) {}
    double& operator[](long p) { return values.at(static_cast<std::size_t>(p - offset)); }

 private:
    long offset;
    Signal values;
};

inline long lowPlace(long k, long n, bool swap) {
    return swap ? n / 2 + k : k;
}
inline long highPlace(long k, long n, bool swap) {
    return swap ? k : (n + 1) / 2 + k;
}

// extension(p) is the position within the signal that stands for p.
template <class Extension>
Signal analyse(const FilterBank& bank, const Signal& x, bool swap, Extension extension) {
    const long n = static_cast<long>(x.size());
    Signal out(x.size());
    const auto correlate = [&](const double* f, long taps, long start) {
        double sum = 0.0;
        for (long j = 0; j < taps; ++j) sum += f[j] * x[static_cast<std::size_t>(extension(start + j))];
        return sum;
    };
    for (long k = 0; k < (n + 1) / 2; ++k) {
        out[static_cast<std::size_t>(lowPlace(k, n, swap))] = correlate(bank.ha, bank.La, bank.oa + 2 * k);
    }
    for (long k = 0; k < n / 2; ++k) {
        out[static_cast<std::size_t>(highPlace(k, n, swap))] = correlate(bank.ga, bank.Lb, bank.ob + 2 * k);
    }
    return out;
}

inline Signal periodicAnalysis(const FilterBank& bank, const Signal& x, bool swap) {
    const long n = static_cast<long>(x.size());
    return analyse(bank, x, swap, [n](long p) { return mod(p, n); });
}

inline Signal symmetricAnalysis(const FilterBank& bank, const Signal& x, bool swap) {
    const long n = static_cast<long>(x.size());
    return analyse(bank, x, swap, [&bank, n](long p) {
        if (bank.La % 2 != 0) {
            p = mod(p, 2 * n - 2);
            return p < n ? p : 2 * n - 2 - p;
        }
        p = mod(p, 2 * n);
        return p < n ? p : 2 * n - 1 - p;
    });
}

inline Signal periodicSynthesis(const FilterBank& bank, const Signal& y, bool swap) {
    const long n = static_cast<long>(y.size());
    const long first = std::min({0L, static_cast<long>(bank.os), static_cast<long>(bank.og)});
    const long most =
        std::max({0L, static_cast<long>(bank.og + bank.La), static_cast<long>(bank.os + bank.Lb)});
    Extended ext(first, n + most);
    for (long k = 0; k < (n + 1) / 2; ++k) {
        const double s = y[static_cast<std::size_t>(lowPlace(k, n, swap))];
        for (long j = 0; j < bank.Lb; ++j) ext[bank.os + 2 * k + j] += s * bank.hs[j];
        if (k >= n / 2) break;
        const double d = y[static_cast<std::size_t>(highPlace(k, n, swap))];
        for (long j = 0; j < bank.La; ++j) ext[bank.og + 2 * k + j] += d * bank.gs[j];
    }
    for (long p = first; p < 0; ++p) ext[mod(p, n)] += ext[p];
    for (long i = most; i >= 0; --i) ext[mod(i, n)] += ext[n + i];
    Signal out(y.size());
    for (long p = 0; p < n; ++p) out[static_cast<std::size_t>(p)] = ext[p];
    return out;
}

// Continues both parts to one period and merges that periodically.
inline Signal symmetricSynthesis(const FilterBank& bank, const Signal& y, bool swap) {
    const long n = static_cast<long>(y.size());
    const auto part = [&](long start, long count) {
        return Signal(y.begin() + start, y.begin() + start + count);
    };
    const Signal s = part(lowPlace(0, n, swap), (n + 1) / 2);
    const Signal d = part(highPlace(0, n, swap), n / 2);
    const auto append = [](Signal& to, const Signal& from, long count, double sign) {
        for (long i = count - 1; i >= 0; --i) to.push_back(sign * from[static_cast<std::size_t>(i)]);
    };
    Signal low = s;
    Signal high = d;
    const long c = static_cast<long>(s.size());
    const long f = static_cast<long>(d.size());
    if (bank.Lb % 2 != 0 && n % 2 == 0) {
        for (long i = c - 1; i >= 1; --i) low.push_back(s[static_cast<std::size_t>(i)]);
        append(high, d, f - 1, 1.0);
    } else if (bank.Lb % 2 != 0) {
        for (long i = c - 2; i >= 1; --i) low.push_back(s[static_cast<std::size_t>(i)]);
        append(high, d, f, 1.0);
    } else if (n % 2 == 0) {
        append(low, s, c, 1.0);
        append(high, d, f, -1.0);
    } else {
        append(low, s, c - 1, 1.0);
        high.push_back(0.0);
        append(high, d, f, -1.0);
    }
    Signal period = swap ? high : low;
    const Signal& second = swap ? low : high;
    period.insert(period.end(), second.begin(), second.end());
    Signal out = periodicSynthesis(bank, period, swap);
    out.resize(y.size());
    return out;
}

inline Signal intervalAnalysis(const FilterBank& bank, const Signal& x, bool swap) {
    const long n = static_cast<long>(x.size());
    const long rows = bank.La / 2;
    Signal out(x.size());
    const auto at = [&](long p) { return x[static_cast<std::size_t>(p)]; };
    const auto low = [&](long k) -> double& { return out[static_cast<std::size_t>(lowPlace(k, n, swap))]; };
    const auto high = [&](long k) -> double& { return out[static_cast<std::size_t>(highPlace(k, n, swap))]; };
    for (long i = 0; i < rows; ++i) {
        for (long t = 0; t <= rows + 2 * i; ++t) {
            low(i) += bank.BLlo[i][t] * at(t);
            high(i) += bank.BLhi[i][t] * at(t);
            low(n / 2 - 1 - i) += bank.BRlo[i][t] * at(n - 1 - t);
            high(n / 2 - 1 - i) += bank.BRhi[i][t] * at(n - 1 - t);
        }
    }
    for (long k = 0; k < n / 2 - bank.La; ++k) {
        for (long j = 0; j < bank.La; ++j) low(rows + k) += bank.ha[j] * at(bank.oa + bank.La + 2 * k + j);
        for (long j = 0; j < bank.La; ++j) high(rows + k) += bank.ga[j] * at(bank.ob + bank.La + 2 * k + j);
    }
    return out;
}

inline Signal intervalSynthesis(const FilterBank& bank, const Signal& y, bool swap) {
    const long n = static_cast<long>(y.size());
    const long rows = bank.La / 2;
    Signal out(y.size());
    const auto x = [&](long p) -> double& { return out[static_cast<std::size_t>(p)]; };
    const auto low = [&](long k) { return y[static_cast<std::size_t>(lowPlace(k, n, swap))]; };
    const auto high = [&](long k) { return y[static_cast<std::size_t>(highPlace(k, n, swap))]; };
    for (long i = 0; i < rows; ++i) {
        for (long t = 0; t <= rows + 2 * i; ++t) x(t) += low(i) * bank.BLlo[i][t] + high(i) * bank.BLhi[i][t];
    }
    for (long k = 0; k < n / 2 - bank.La; ++k) {
        const long at = rows + k;
        for (long j = 0; j < bank.Lb; ++j) x(bank.os + bank.La + 2 * k + j) += low(at) * bank.hs[j];
        for (long j = 0; j < bank.La; ++j) x(bank.og + bank.La + 2 * k + j) += high(at) * bank.gs[j];
    }
    for (long e = 0; e < rows; ++e) {
        const long at = n / 2 - 1 - e;
        for (long t = 0; t <= rows + 2 * e; ++t) {
            x(n - 1 - t) += low(at) * bank.BRlo[e][t] + high(at) * bank.BRhi[e][t];
        }
    }
    return out;
}

}  // namespace plain
