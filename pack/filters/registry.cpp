#include "filters/registry.h"

#include <cmath>

namespace undula {

namespace {

constexpr FindByLength* families[] = {
#define FAMILY(Class, ...) findByLength<Class>,
#include "filters/families.def"
#undef FAMILY
};

constinit const BSpline* splines[BSpline::longest + 1] = {};  // by the length of the analysis filter
constinit const BattleLemarie* battleLemaries = nullptr;
constinit const UserDefinedOrthonormal* userOrthonormals = nullptr;
constinit const UserDefinedBiorthogonal* userBiorthogonals = nullptr;

// Relative difference below 1e-12. Halved, so that no sum of two finite numbers overflows.
bool isClose(double a, double b) {
    const double x = 0.5 * a;
    const double y = 0.5 * b;
    const double mean = std::fabs(x) + std::fabs(y);
    return mean == 0.0 || 2.0 * (std::fabs(x - y) / mean) < 1e-12;
}

bool areClose(const double* stored, std::int32_t count, Taps taps) {
    if (count != taps.count) return false;
    for (std::int32_t i = 0; i < count; ++i) {
        if (!isClose(stored[i], taps.values[i])) return false;
    }
    return true;
}

bool hasLow(const Wavelet* wavelet, Taps low) {
    return wavelet != nullptr && areClose(wavelet->analysisLow(), wavelet->analysisLowLength(), low);
}

bool hasPair(const Wavelet* wavelet, Taps lowA, Taps lowS) {
    return hasLow(wavelet, lowA) && areClose(wavelet->synthesisLow(), wavelet->synthesisLowLength(), lowS);
}

bool hasAnalysis(const Wavelet& wavelet, const ChannelSettings& settings) {
    return wavelet.analysisLowOffset() == settings.offset[0] &&
           wavelet.analysisHighFlipped() == settings.flip[0];
}

bool hasSynthesis(const Wavelet& wavelet, const ChannelSettings& settings) {
    return wavelet.synthesisLowOffset() == settings.offset[1] &&
           wavelet.synthesisHighFlipped() == settings.flip[1];
}

// The first of a list of which the question holds.
template <class Listed, class Question>
const Listed* firstOf(const Listed* list, Question question) {
    while (list != nullptr && !question(*list)) list = list->next;
    return list;
}

template <class Listed>
void link(const Listed*& head, Listed& wavelet) {
    wavelet.next = head;
    head = &wavelet;
}

// The first wavelet of all families that has these taps and passes the test.
template <class Test>
const OrthonormalWavelet* searchFamilies(Taps low, Test test) {
    for (FindByLength* find : families) {
        const OrthonormalWavelet* candidate = find(low.count);
        if (hasLow(candidate, low) && test(*candidate)) return candidate;
    }
    return firstOf(battleLemaries, [&](const BattleLemarie& w) { return hasLow(&w, low) && test(w); });
}

}  // namespace

const BattleLemarie* findBattleLemarie(std::int64_t degree) {
    return firstOf(battleLemaries, [degree](const BattleLemarie& w) { return w.order == degree; });
}

const BSpline* findBSpline(std::int64_t m, std::int64_t n) {
    for (const BSpline* spline : splines) {
        if (spline != nullptr && spline->m == m && spline->n == n) return spline;
    }
    return nullptr;
}

const OrthonormalWavelet* findOrthonormal(Taps low) {
    return searchFamilies(low, [](const Wavelet&) { return true; });
}

const BSpline* findBSpline(Taps lowA, Taps lowS) {
    const BSpline* candidate = lowA.count <= BSpline::longest ? splines[lowA.count] : nullptr;
    return hasPair(candidate, lowA, lowS) ? candidate : nullptr;
}

bool matches(const Wavelet& wavelet, Taps low, const ChannelSettings& settings) {
    return wavelet.kind() == 1 && hasLow(&wavelet, low) && hasAnalysis(wavelet, settings);
}

bool matches(const Wavelet& wavelet, Taps lowA, Taps lowS, const ChannelSettings& settings) {
    return wavelet.kind() == 2 && hasPair(&wavelet, lowA, lowS) && hasAnalysis(wavelet, settings) &&
           hasSynthesis(wavelet, settings);
}

const OrthonormalWavelet* findOrthonormal(Taps low, const ChannelSettings& settings) {
    const auto fits = [&](const Wavelet& w) { return matches(w, low, settings); };
    const OrthonormalWavelet* found = searchFamilies(low, fits);
    return found != nullptr ? found : firstOf(userOrthonormals, fits);
}

const BiorthogonalWavelet* findBiorthogonal(Taps lowA, Taps lowS, const ChannelSettings& settings) {
    const auto fits = [&](const Wavelet& w) { return matches(w, lowA, lowS, settings); };
    const BSpline* spline = findBSpline(lowA, lowS);
    if (spline != nullptr && fits(*spline)) return spline;
    return firstOf(userBiorthogonals, fits);
}

void add(const BSpline& wavelet) {
    splines[wavelet.analysisLowLength()] = &wavelet;
}
void add(BattleLemarie& wavelet) {
    link(battleLemaries, wavelet);
}
void add(UserDefinedOrthonormal& wavelet) {
    link(userOrthonormals, wavelet);
}
void add(UserDefinedBiorthogonal& wavelet) {
    link(userBiorthogonals, wavelet);
}

}  // namespace undula
