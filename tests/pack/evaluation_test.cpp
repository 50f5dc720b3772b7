// Scaling functions, wavelets and packets at points: against closed forms and the relations that
// define them.
#include <array>
#include <cmath>
#include <limits>

#include "support/function_table.h"
#include "support/robustness.h"
#include "support/spline_pairs.h"
#include "support/wrong_calls.h"

namespace {

constexpr double denormal = std::numeric_limits<double>::denorm_min();
constexpr double rootOfTwo = 1.4142135623730951;

std::size_t at(long i) {
    return static_cast<std::size_t>(i);
}

struct Placed {
    Numbers taps;
    int offset;

    int count() const { return static_cast<int>(taps.size()); }
};

// The high-pass filter that the low-pass filter of the other channel gives.
Placed highPass(const Placed& low) {
    Placed high = {Numbers(low.taps.rbegin(), low.taps.rend()), 2 - low.offset - low.count()};
    const bool negativeFirst = low.taps.size() / 2 % 2 == 0;
    for (std::size_t i = negativeFirst ? 0 : 1; i < high.taps.size(); i += 2) high.taps[i] = -high.taps[i];
    return high;
}

// The functions of a filter set by their definition.
class Functions {
 public:
    Functions(const Placed& low, const Placed& otherLow)
        : low_(low), high_(highPass(otherLow)), table_({1.0}) {
        for (int stage = 0; stage < 5; ++stage) multiply(1 << stage);
    }

    const Placed& low() const { return low_; }

    // Packet n, counted by frequency.
    double packet(unsigned n, double t) const { return filtered(n ^ (n >> 1), t); }
    // Where the tabulated scaling function begins and ends, in grid points.
    long first() const { return 31L * low_.offset; }
    long last() const { return first() + static_cast<long>(table_.size()) - 1; }

 private:
    Placed low_;
    Placed high_;
    Numbers table_;

    // The table's polynomial times that of the low-pass filter, with as many zeros between the taps.
    void multiply(int distance) {
        Numbers product(table_.size() + at(distance * (low_.count() - 1)));
        for (std::size_t i = 0; i < table_.size(); ++i) {
            for (int q = 0; q < low_.count(); ++q)
                product[i + at(q * distance)] += table_[i] * low_.taps[at(q)];
        }
        table_ = product;
    }
    double tabulated(double t) const {
        const long i = static_cast<long>(std::floor(32.0 * t));
        return first() <= i && i <= last() ? std::pow(2.0, 2.5) * table_[at(i - first())] : 0.0;
    }
    double filtered(unsigned w, double t) const {
        if (w == 0) return tabulated(t);
        const Placed& filter = w % 2 == 0 ? low_ : high_;
        double sum = 0.0;
        for (int q = 0; q < filter.count(); ++q)
            sum += filter.taps[at(q)] * filtered(w / 2, 2.0 * t - filter.offset - q);
        return rootOfTwo * sum;
    }
};

struct Named {
    std::string name;
    Value filter;
    Functions analysis;
    Functions synthesis;
};

class Evaluation : public PackTest {
 protected:
    Named orthonormal(const char* letters, const char* family, int taps) {
        const Value filter = call(family, taps);
        const bool coiflet = letters == std::string("coif");
        const Placed low = {filter.reals(), coiflet ? -taps / 3 : 1 - taps / 2};
        return {letters + std::to_string(taps), filter, {low, low}, {low, low}};
    }
    Named spline(int m, int n) {
        const Value filter = call("Bspline", m, n);
        Numbers synthesis(filter.re(1).begin(), filter.re(1).begin() + m + 1);
        const Placed a = {Numbers(filter.re(0).begin(), filter.re(0).end()), 1 - (filter.rows() + 1) / 2};
        const Placed s = {std::move(synthesis), 1 - (m + 2) / 2};
        return {"bs" + std::to_string(m) + std::to_string(n), filter, {a, s}, {s, a}};
    }
    std::vector<Named> families() {
        std::vector<Named> all;
        for (int taps = 2; taps <= 20; taps += 2) all.push_back(orthonormal("daub", "daublet", taps));
        for (int taps = 4; taps <= 20; taps += 2) all.push_back(orthonormal("symm", "symmlet", taps));
        for (int taps = 6; taps <= 30; taps += 6) all.push_back(orthonormal("coif", "coiflet", taps));
        for (const auto& [m, n] : splinePairs) all.push_back(spline(m, n));
        return all;
    }

    double value(std::string_view function, double x, double level, double shift, double index,
                 const Value& filter) {
        return call(function, x, level, shift, index, filter).real();
    }
};

}  // namespace

TEST_F(Evaluation, HaarIsItsClosedForm) {
    for (int i = -40; i < 80; ++i) {
        const double x = i / 32.0;
        const double phi = 0 <= i && i < 32;
        const double psi = i < 16 ? phi : -phi;
        for (const std::string dl : {"", "dl"}) {
            EXPECT_NEAR(call(dl + "father", x, "haar").real(), phi, 1e-15) << x;
            EXPECT_NEAR(call(dl + "mother", 8.0 * (x + 5.0), 3, 5, "haar").real(), psi / 8.0, 1e-15) << x;
            EXPECT_NEAR(call(dl + "mother", (x - 7.0) / 4.0, -2, -7, "haar").real(), 4.0 * psi, 1e-14) << x;
            EXPECT_NEAR(call(dl + "mother2d", x, 0.75, "haar", "V").real(), -phi, 1e-14);
        }
    }
}

// The packets of the Haar filter are the Walsh functions: 1 at first, and then as many changes of sign
// as the packet's index.
TEST_F(Evaluation, HaarPacketsAreCountedByChangesOfSign) {
    const Value haar = call("daublet", 2);
    for (unsigned n = 0; n < 64; ++n) {
        double last = 1.0;
        unsigned changes = 0;
        for (int i = 0; i < 64; ++i) {
            const double now = value("wavelet", i / 64.0, 0, 0, n, haar);
            ASSERT_NEAR(std::fabs(now), 1.0, 1e-14);
            changes += now * last < 0.0;
            last = now;
        }
        EXPECT_EQ(changes, n);
    }
    constexpr unsigned many = (1U << 20) - 1;
    for (const int i : {0, 1, 2, 77776, 77777, 1048574, 1048575}) {
        const double x = (i + 0.5) / 1048576.0;
        EXPECT_NEAR(value("dlwavelet", x, 0, 0, many, haar), i % 2 == 0 ? 1.0 : -1.0, 1e-12);
    }
}

TEST_F(Evaluation, ValuesAreTheDefinitionWrittenOut) {
    for (const Named& named : families()) {
        SCOPED_TRACE(named.name);
        const Functions& phi = named.analysis;
        const Functions& dual = named.synthesis;
        for (long i = phi.first() - 33; i <= phi.last() + 33; ++i) {
            const double x = (static_cast<double>(i) + 0.75) / 32.0;
            EXPECT_NEAR(call("father", x, named.name).real(), phi.packet(0, x),
                        1e-12 * (1 + std::fabs(phi.packet(0, x))));
            EXPECT_NEAR(call("dlfather", x, named.name).real(), dual.packet(0, x), 1e-12);
            if (i % 5 != 0) continue;
            EXPECT_NEAR(call("mother", x, named.name).real(), phi.packet(1, x), 1e-11);
            EXPECT_NEAR(call("dlmother", x, named.name).real(), dual.packet(1, x), 1e-11);
            EXPECT_EQ(value("wavelet", x, 0, 0, 1, named.filter), call("mother", x, named.name).real());
            EXPECT_EQ(value("dlwavelet", x, 0, 0, 0, named.filter), call("dlfather", x, named.name).real());
        }
        if (named.analysis.low().count() > 9) continue;
        for (unsigned n = 2; n < 12; ++n) {
            for (const double t : {-1.21, -0.4, 0.0, 0.3, 0.5, 0.99, 2.2}) {
                EXPECT_NEAR(value("wavelet", t, 0, 0, n, named.filter), phi.packet(n, t), 1e-10)
                    << n << " " << t;
                EXPECT_NEAR(value("dlwavelet", 4 * (t + 9), 2, 9, n, named.filter), dual.packet(n, t) / 4,
                            1e-10);
            }
        }
        if (HasFailure()) return;
    }
}

TEST_F(Evaluation, ProductsInThePlane) {
    const Value filter = call("Bspline", 2, 4);
    struct Kind {
        const char* type;
        int row;
        int col;
    };
    for (const std::string dl : {"", "dl"}) {
        for (const auto& [x, y] : {std::pair(0.3, 1.7), {-2.0, 0.1}, {3.9, -1.4}}) {
            const auto product = [&, x = x, y = y](int nx, int ny) {
                return value(dl + "wavelet", x, 1, -1, nx, filter) *
                       value(dl + "wavelet", y, 1, 2, ny, filter);
            };
            EXPECT_EQ(call(dl + "wavelet2d", x, y, 1, -1, 2, 5, 3, filter).real(), product(5, 3));
            EXPECT_EQ(call(dl + "father2d", x, y, 1, -1, 2, "bs24").real(), product(0, 0));
            for (const auto& [type, row, col] : {Kind{"H", 1, 0}, {"V", 0, 1}, {"D", 1, 1}})
                EXPECT_EQ(call(dl + "mother2d", x, y, 1, -1, 2, "bs24", type).real(), product(row, col));
        }
    }
}

TEST_F(Evaluation, OmittedArgumentsAreZeros) {
    const Value pair = Value::matrix(3, 2, Numbers{0.5, 0.6, 0.7, 0.3, 0.4, 0.0});
    const Value own = column({0.5, 0.6, 0.7});
    const auto expectSame = [&](const std::string& function, const Arguments& few, const Arguments& all) {
        EXPECT_TRUE(same(host.call(pack(), function, few), host.call(pack(), function, all))) << function;
    };
    for (const std::string dl : {"", "dl"}) {
        expectSame(dl + "father", {0.3, "s6"}, {0.3, 0, 0, "s6"});
        expectSame(dl + "mother", {0.3, "s6"}, {0.3, 0, 0, "s6"});
        expectSame(dl + "father2d", {0.3, 0.8, "bs31"}, {0.3, 0.8, 0, 0, 0, "bs31"});
        expectSame(dl + "mother2d", {0.3, 0.8, "bs31", "V"}, {0.3, 0.8, 0, 0, 0, "bs31", "V"});
        const Arguments point = {0.3, 1, -1, 3};
        const Arguments planePoint = {0.3, 0.8, 1, -1, 0, 3, 1};
        for (const auto& [function, scalars] :
             {std::pair(dl + "wavelet", point), {dl + "wavelet2d", planePoint}}) {
            expectSame(function, joined(scalars, {own}), joined(scalars, {own, 0}));
            expectSame(function, joined(scalars, {own, 1}), joined(scalars, {own, 1, 0}));
            expectSame(function, joined(scalars, {pair, row({1, -1})}),
                       joined(scalars, {pair, row({1, -1}), row({0, 0})}));
        }
        const std::string function = dl + "wavelet";
        EXPECT_EQ(value(function, 0.3, 0, 0, 1, own), -call(function, 0.3, 0, 0, 1, own, 0, 1).real());
    }
}

TEST_F(Evaluation, OffsetsOfAnySizeMoveTheTable) {
    const Numbers taps = {rootOfTwo / 2, rootOfTwo / 2};
    for (const int offset : {-16777216, -65536, 65536, 16777216}) {
        const Functions set({taps, offset}, {taps, offset});
        const auto actual = [&](double t, unsigned n) {
            return call("wavelet", t, 0, 0, n, column(taps), offset).real();
        };
        for (const unsigned n : {0U, 1U, 2U, 5U, 21U}) {
            // Where the first digit's function begins, walked through the two-scale relations.
            double begin = 31.0 / 32.0 * offset;
            for (unsigned g = n ^ (n >> 1), bit = 32; bit-- > 0;) {
                if (g >> bit == 0) continue;
                begin = (begin + (g >> bit & 1 ? -offset : offset)) / 2.0;
            }
            for (const double t : {begin - 0.25, begin, begin + 0.3125, begin + 0.9375, begin + 1.0, 0.0})
                EXPECT_NEAR(actual(t, n), set.packet(n, t), 1e-13) << offset << " " << n;
            EXPECT_NEAR(std::fabs(actual(begin, n)), 1.0, 1e-13);
        }
        EXPECT_EQ(complaint("wavelet", 0, 0, 0, 4294967295.0, column(taps), offset), "out of memory (0)");
    }
}

TEST_F(Evaluation, FarPointsAreZero) {
    const Value pair = call("Bspline", 3, 9);
    for (const double x : {1e4, -1e4, 1e9, -1e9, 1e15, -1e15, 1e18, 1e300, -1e300, inf, -inf, NaN}) {
        for (const double level : {-twoTo31, -1000.0, 0.0, 3.0}) {
            EXPECT_EQ(call("father", x, level, 0, "daub20").real(), 0.0) << x << " " << level;
            EXPECT_EQ(value("wavelet", x, level, twoTo31 - 1, 1000, pair), 0.0) << x << " " << level;
            EXPECT_EQ(value("dlwavelet", x, level, -twoTo31, 7, pair), 0.0) << x << " " << level;
        }
    }
    EXPECT_EQ(call("wavelet2d", NaN, inf, 0, 0, 0, 9, 9, pair).real(), 0.0);
    EXPECT_NEAR(call("father", denormal, "haar").real(), 1.0, 1e-15);
    EXPECT_EQ(call("father", -denormal, "haar").real(), 0.0);
    EXPECT_EQ(call("father", denormal, -twoTo31, 0, "haar").real(), 0.0);
}

TEST_F(Evaluation, LevelsAndShiftsOfTheirWholeRange) {
    using Point = std::array<double, 4>;
    for (const auto& [x, level, shift, expected] : {Point{twoTo31 - 1, 0, twoTo31 - 1, 1},
                                                    {-twoTo31 + 0.5, 0, -twoTo31, 1},
                                                    {-twoTo31 - 0.5, 0, -twoTo31, 0},
                                                    {1e300, 2000, 0, 0},
                                                    {1e300, twoTo31 - 1, 0, 0},
                                                    {1e300, 1000, 0, 0x1p-1000},
                                                    {-1e300, 1000, 0, 0},
                                                    {0, -1000, 0, 0x1p1000}})
        EXPECT_NEAR(call("father", x, level, shift, "haar").real(), expected, 0x1p-48 * expected) << x;
    for (const double level : {-1030.0, -5000.0, -twoTo31}) {
        EXPECT_EQ(complaint("father", 0, level, 0, "haar"), "overflow (0)");
        EXPECT_EQ(complaint("father", 1, level, 0, "haar"), "no error");
    }
    EXPECT_EQ(complaint("father2d", 0, 0, -600, 0, 0, "haar"), "overflow (0)");
}

// The workers without a wavelet use the one selected, and name their own arguments.
class UnreachedWorkers : public Evaluation {
 protected:
    Value worker(const std::string& name, const Arguments& v) {
        using S = aComplex*;
        using OfPoint = S(EfiCallContext*, S, S, S, S);
        using OfPlane = S(EfiCallContext*, S, S, S, S, S, S, S);
        efihost::Call call(host);
        auto* const c = call.context();
        auto* symbol = pack().symbol(exportedName(name, std::string(v.size(), 'S')).c_str());
        const auto s = [&](std::size_t i) { return static_cast<S>(v[i].raw()); };
        if (v.size() == 4) return call.finish(reinterpret_cast<OfPoint*>(symbol)(c, s(0), s(1), s(2), s(3)));
        return call.finish(reinterpret_cast<OfPlane*>(symbol)(c, s(0), s(1), s(2), s(3), s(4), s(5), s(6)));
    }
};

TEST_F(UnreachedWorkers, EvaluateTheSelectedWavelet) {
    const Value pair = call("Bspline", 2, 4);
    for (const std::string name : {"wavelet", "dlwavelet"}) {
        const Value expected = call(name, 0.3, 1, -1, 6, pair);
        EXPECT_TRUE(same(worker(name, {0.3, 1, -1, 6}), expected));
        const Value expected2d = call(name + "2d", 0.3, 0.4, 1, -1, 0, 6, 1, pair);
        EXPECT_TRUE(same(worker(name + "2d", {0.3, 0.4, 1, -1, 0, 6, 1}), expected2d));
        call("mother", 0.0, "daub6");
        EXPECT_EQ(complaint(name, 0, 0, 0, 0, column({})), "filter unimplemented (5)");
        EXPECT_TRUE(same(worker(name, {0.3, 0, 0, 1}), call("mother", 0.3, "daub6")));
        EXPECT_EQ(complaintOf(worker(name, {0, 0.5, 0.5, -1})), "invalid level (4)");
        EXPECT_EQ(complaintOf(worker(name + "2d", {0, 0, 0, 0, twoTo31, 0, 0})), "invalid level (5)");
    }
}

TEST(EvaluationRobustness, SurvivesEveryTrouble) {
    // Filters of the user's that the pack does not know yet.
    const auto fresh = [](int variant) { return column({0.5, 0.5 + 1e-3 * variant, 0.25}); };
    const auto expect = [&](const char* name, const Arguments& scalars, int polls,
                            const Arguments& settings) {
        const auto arguments = [=](int v) { return joined(joined(scalars, {fresh(v)}), settings); };
        expectRobust(
            {name, arguments, polls, "filter unimplemented (" + std::to_string(scalars.size() + 1) + ")"});
    };
    const auto expectNamed = [](const char* name, const Arguments& arguments, int polls) {
        expectRobust({name, [=](int) { return arguments; }, polls});
    };
    expectNamed("father", {0.5, "bl2"}, 0);
    expectNamed("dlmother", {0.5, -1, 0, "bs24"}, 1);
    expectNamed("dlfather2d", {0.5, 0.5, "symm8"}, 0);
    expectNamed("mother2d", {0.5, 0.5, 1, 0, 0, "coif6", "D"}, 2);
    expect("wavelet", {0.5, 0, 0, 9}, 4, {});
    expect("dlwavelet", {0.5, 0, 0, 1}, 1, {1, 1});
    expect("wavelet2d", {0.5, 0.2, 0, 0, 0, 5, 2}, 5, {});
    expect("dlwavelet2d", {0.5, 0.2, 0, 0, 0, 1, 0}, 1, {1});
}

namespace {

constexpr const char* notPositive = "must be positive integer";
constexpr const char* noName = "invalid filter wavelet string";
constexpr const char* noType = "invalid 2d wavelet string";
constexpr const char* noMemory = "out of memory";

Value haar() {
    return column({rootOfTwo / 2, rootOfTwo / 2});
}

// Where several arguments are wrong, the message shows which is looked at first.
void addNamed(std::vector<ErrorCase>& table) {
    const WrongCalls father(table, "father");
    father.give(notReal, 1, {{unreal, "no"}, {unreal, unreal, unreal, "no"}});
    father.give(notReal, 2, {{0, unreal, unreal, "no"}});
    father.give(notReal, 3, {{0, 0.5, unreal, "no"}});
    father.give(noName, 2, {{0, "no"}});
    father.give(noName, 4, {{0, 0.5, 0.5, "no"}});
    father.give(noFilter, 4, {{0, 0.5, 0.5, "daub22"}});
    father.give(notWhole, 3, {{0, 0.5, 0.5, "haar"}});
    father.give(noLevel, 3, {{0, 0.5, twoTo31, "haar"}});
    father.give(notWhole, 2, {{0, NaN, 0, "haar"}});
    father.give(noLevel, 2, {{0, -twoTo31 - 1, 0, "haar"}});
    father.give("non-scalar value", 2, {{0, column({1}), 0, 4}});
    father.give("must be string", 4, {{0, 0, 0, 4}});
}

// `type` is empty for the scaling function.
void addNamedInThePlane(std::vector<ErrorCase>& table, const char* f, const Arguments& type,
                        const Arguments& wrongType) {
    const WrongCalls early(table, f, wrongType);
    early.give(notReal, 1, {{unreal, unreal, "no"}});
    early.give(notReal, 2, {{0, unreal, unreal, unreal, unreal, "no"}});
    early.give(notReal, 3, {{0, 0, unreal, unreal, unreal, "no"}});
    early.give(notReal, 4, {{0, 0, 0.5, unreal, unreal, "no"}});
    early.give(notReal, 5, {{0, 0, 0.5, 0.5, unreal, "no"}});
    early.give(noName, 3, {{0, 0, "no"}});
    early.give(noFilter, 6, {{0, 0, 0.5, 0.5, 0.5, "daub22"}});
    const WrongCalls late(table, f, type);
    late.give(notWhole, 3, {{0, 0, 0.5, 0.5, 0.5, "haar"}, {0, 0, twoTo31, 0.5, 0.5, "haar"}});
    late.give(notWhole, 4, {{0, 0, 0, 0.5, twoTo31, "haar"}});
    late.give(noLevel, 5, {{0, 0, 0, 0, -twoTo31 - 1, "haar"}});
}

// The wavelet as arrays after so many scalars.
void addArrays(std::vector<ErrorCase>& table, const char* f, int scalars) {
    const WrongCalls wrong(table, f);
    const auto after = [=](const Arguments& wavelet) {
        return joined(Arguments(static_cast<std::size_t>(scalars), unreal), wavelet);
    };
    const Value bad = unrealColumn();
    wrong.give(notArray, scalars + 1, {after({bad, bad, bad})});
    wrong.give(notArray, scalars + 2, {after({haar(), unreal, unreal})});
    wrong.give(notArray, scalars + 3, {after({column({}), 0, bad})});
    wrong.give(noFilter, scalars + 1, {after({haar(), 0.5}), after({haar(), 0, 2})});
    for (const Arguments& wavelet : {Arguments{haar()}, {haar(), 0}, {haar(), 0, 1}}) {
        Arguments arguments = after(wavelet);
        for (int i = 0; i < scalars; ++i) {
            wrong.give(notReal, i + 1, {arguments});
            arguments[at(i)] = 0.5;
        }
    }
}

std::vector<ErrorCase> evaluationErrors() {
    std::vector<ErrorCase> table;
    addNamed(table);
    addNamedInThePlane(table, "father2d", {}, {});
    addNamedInThePlane(table, "mother2d", {"D"}, {"x"});
    const WrongCalls mother2d(table, "mother2d");
    for (const char* type : {"", "h", "HV", "A"})
        mother2d.give(noType, 7, {{0, 0, 0.5, 0.5, 0.5, "haar", type}});
    mother2d.give(noType, 4, {{0, 0, "haar", "X"}});
    for (const char* f : {"wavelet", "dlwavelet"}) addArrays(table, f, 4);
    for (const char* f : {"wavelet2d", "dlwavelet2d"}) addArrays(table, f, 7);

    const WrongCalls wavelet(table, "wavelet", {haar()});
    for (const double packet : {0.5, NaN, twoTo32 + 0.5}) wavelet.give(notWhole, 4, {{0, 0.5, 0.5, packet}});
    for (const double packet : {-1.0, twoTo32, inf}) wavelet.give(noLevel, 4, {{0, 0.5, 0.5, packet}});
    wavelet.give(notWhole, 3, {{0, 0.5, NaN, 0}});
    for (const double shift : {twoTo31, -twoTo31 - 1}) wavelet.give(noLevel, 3, {{0, 0.5, shift, 0}});
    wavelet.give(notWhole, 2, {{0, 0.5, 0, twoTo32 - 1}});
    wavelet.give(noLevel, 2, {{0, -inf, 0, 0}});
    wavelet.give(noMemory, 0, {{0, 0, 0, twoTo32 - 1}, {0, 0, 0, 0x1p27}});

    const WrongCalls plane(table, "wavelet2d", {haar()});
    for (const double packet : {0.5, -1.0, NaN}) {
        plane.give(notPositive, 6, {{0, 0, 0.5, 0.5, 0.5, packet, -1}});
        plane.give(notPositive, 7, {{0, 0, 0.5, 0.5, 0.5, twoTo32, packet}});
    }
    for (const double level : {0.5, -twoTo31 - 1})
        plane.give(notWhole, 3, {{0, 0, level, 0.5, 0.5, twoTo32, twoTo32}});
    plane.give(noLevel, 6, {{0, 0, 0, 0.5, 0.5, twoTo32, twoTo32}});
    plane.give(noLevel, 7, {{0, 0, 0, 0, 0.5, 0, inf}});
    plane.give(notWhole, 4, {{0, 0, 0, 0.5, 0.5, 0, twoTo32}});
    plane.give(noLevel, 4, {{0, 0, 0, twoTo31, 0.5, 0, 0}});
    plane.give(notWhole, 5, {{0, 0, 0, 0, NaN, 0, 0}});
    plane.give(noMemory, 0, {{0, 0, 0, 0, 0.5, twoTo32 - 1, 0}, {0, 0, 0, 0, 0, 0, twoTo32 - 1}});
    return cases(table);
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Evaluation, Errors, testing::ValuesIn(evaluationErrors()), nameOfError);
