#include "accuracy/measures.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <random>

#include "cosine/bell.h"
#include "filters/edges.h"
#include "support/spline_pairs.h"

namespace accuracy {

namespace {

__extension__ using Quad = __float128;

constexpr Wide pi = std::numbers::pi_v<Wide>;
constexpr Wide rootOfTwo = std::numbers::sqrt2_v<Wide>;

// Deviates of the normal distribution, the same ones each time.
Signal noise(long count, unsigned seed = 1) {
    std::mt19937 random(seed);
    std::normal_distribution<double> value;
    Signal x(static_cast<std::size_t>(count));
    for (double& v : x) v = value(random);
    return x;
}

template <class Number>
plain::SignalOf<Number> widened(const Signal& x) {
    return {x.begin(), x.end()};
}

template <class Actual, class Number>
double errorOf(const plain::SignalOf<Actual>& actual, const plain::SignalOf<Number>& expected) {
    Number difference = 0.0;
    Number norm = 0.0;
    for (std::size_t i = 0; i < expected.size(); ++i) {
        difference += (actual[i] - expected[i]) * (actual[i] - expected[i]);
        norm += expected[i] * expected[i];
    }
    return std::sqrt(static_cast<double>(difference / norm)) / unit;
}

// The bank of a wavelet with its boundary filters.
class WaveletBank : public PairBank {
 public:
    explicit WaveletBank(const Wavelet& wavelet) : PairBank(wavelet.pair) {
        if (!wavelet.hasInterval) return;
        const undula::EdgeFilters edges = undula::edgeFilters(La);
        BLlo = edges.leftLow;
        BLhi = edges.leftHigh;
        BRlo = edges.rightLow;
        BRhi = edges.rightHigh;
    }
};

// All packets of a level, split or merged level by level; below an odd position the parts change places.
template <class Number>
plain::SignalOf<Number> splitPackets(plain::StepOf<Number>* step, Direction direction,
                                     const undula::FilterBank& bank, plain::SignalOf<Number> values,
                                     const Shape& shape) {
    for (int i = 0; i < shape.levels; ++i) {
        const int depth = direction == Direction::analysis ? i : shape.levels - 1 - i;
        const long height = shape.rows >> depth;
        const long width = shape.cols == 1 ? 1 : shape.cols >> depth;
        for (long c = 0; c * width < shape.cols; ++c) {
            for (long r = 0; r * height < shape.rows; ++r)
                plain::stepImage(step, bank, values.data() + c * width * shape.rows + r * height,
                                 long{shape.rows}, height, width, {r % 2 != 0, c % 2 != 0});
        }
    }
    return values;
}

// Rows of level and positions for all packets of a level.
Value basisOfLevel(const Shape& shape) {
    const int side = 1 << shape.levels;
    const int across = shape.cols == 1 ? 1 : side;
    const int count = side * across;
    Signal rows;
    rows.insert(rows.end(), static_cast<std::size_t>(count), shape.levels);
    for (int i = 0; i < count; ++i) {
        const int row = i / across;
        rows.push_back(row);
    }
    for (int i = 0; i < count && shape.cols > 1; ++i) rows.push_back(i % across);
    return Value::matrix(count, shape.cols == 1 ? 2 : 3, rows);
}

Value matrixOf(const Shape& shape, const Signal& values) {
    return Value::matrix(shape.rows, shape.cols, values);
}

// The product of the filter's polynomial in z, z^2, z^4, z^8 and z^16, times sqrt(2)^5.
WideSignal cascadeOf(const Signal& taps) {
    WideSignal table = {4 * rootOfTwo};
    for (std::size_t distance = 1; distance < 32; distance *= 2) {
        WideSignal product(table.size() + distance * (taps.size() - 1));
        for (std::size_t i = 0; i < table.size(); ++i) {
            for (std::size_t q = 0; q < taps.size(); ++q) product[i + q * distance] += table[i] * taps[q];
        }
        table = product;
    }
    return table;
}

// The packet functions of the filters of one direction, by the relations that define them.
struct PacketFunctions {
    undula::Channels channels;
    WideSignal table;

    PacketFunctions(const PairBank& bank, bool dual)
        : channels(dual ? synthesisChannels(bank) : analysisChannels(bank)),
          table(cascadeOf({channels.low.taps, channels.low.taps + channels.low.count})) {}

    Wide at(unsigned packet, double t) const {
        if (packet == 0) {
            const long place = static_cast<long>(std::floor(32 * t)) - 31L * channels.low.offset;
            return 0 <= place && place < plain::lengthOf(table) ? plain::at(table, place) : 0.0L;
        }
        const undula::Filter& filter = channels[(packet ^ packet >> 1) % 2];
        Wide sum = 0.0;
        for (int q = 0; q < filter.count; ++q)
            sum += filter.taps[q] * at(packet / 2, 2 * t - filter.offset - q);
        return rootOfTwo * sum;
    }

    // All packets are 0 beyond.
    double first() const { return channels.first() - 1; }
    double last() const { return channels.last() + 1; }
};

// The cosines that a DCT-IV of a length is made of: cos(pi m / 4 l) for the odd m.
class Cosines {
 public:
    explicit Cosines(long length) : length_(length), values_(static_cast<std::size_t>(4 * length)) {
        for (long i = 0; i < 4 * length; ++i)
            plain::at(values_, i) =
                std::cos(pi * static_cast<Wide>(2 * i + 1) / static_cast<Wide>(4 * length));
    }

    // One coefficient, of the samples x(0), x(1) ...
    template <class Sample>
    Wide coefficient(long k, Sample x) const {
        Wide sum = 0.0;
        for (long i = 0; i < length_; ++i)
            sum += x(i) * plain::at(values_, (2 * i + 1) * (2 * k + 1) % (8 * length_) / 2);
        return std::sqrt(2.0L / static_cast<Wide>(length_)) * sum;
    }

 private:
    long length_;
    WideSignal values_;
};

double builtInBell(double x) {
    return std::sin(std::numbers::pi / 4 * (1.0 - std::cos(std::numbers::pi * x)));
}

// The bell at the midpoints of N steps, and its complement.
struct Bell {
    long halfLength;
    WideSignal rising;
    WideSignal falling;

    Bell(BellOf bell, long N) : halfLength(N) {
        for (long k = 0; k < N; ++k) {
            if (bell == BellOf::User) {
                const auto n = static_cast<double>(N);
                const Wide b = builtInBell(0.5 + (static_cast<double>(k) + 0.5) / (2.0 * n));
                rising.push_back(b);
                falling.push_back(std::sqrt((1 - b) * (1 + b)));
            } else {
                // With the distance from the end, of which the complement keeps all digits.
                const Wide distance = (static_cast<Wide>(N - k) - 0.5L) / static_cast<Wide>(2 * N);
                const Wide sine = std::sin(pi / 2 * distance);
                rising.push_back(std::cos(pi / 2 * sine * sine));
                falling.push_back(std::sin(pi / 2 * sine * sine));
            }
        }
    }
};

// Local cosines along one line, in segments of one length: single coefficients or samples.
struct CosineLine {
    const Cosines& cosines;
    const Bell& bell;
    const WideSignal& x;
    long length;

    // At most one period beyond either end.
    Wide sample(long p) const {
        const long n = plain::lengthOf(x);
        return plain::at(x, p < 0 ? p + n : p < n ? p : p - n);
    }

    Wide folded(long start, long k) const {
        const long fromEnd = length - 1 - k;
        if (k < bell.halfLength)
            return plain::at(bell.rising, k) * sample(start + k) +
                   plain::at(bell.falling, k) * sample(start - 1 - k);
        if (fromEnd < bell.halfLength)
            return plain::at(bell.rising, fromEnd) * sample(start + k) -
                   plain::at(bell.falling, fromEnd) * sample(start + length + fromEnd);
        return sample(start + k);
    }
    Wide forward(long p) const {
        const long start = p / length * length;
        return cosines.coefficient(p - start, [&](long i) { return folded(start, i); });
    }

    // Sample k of the segment that starts at a place, before it is unfolded.
    Wide segment(long start, long k) const {
        return cosines.coefficient(k, [&](long i) { return sample(start + i); });
    }
    Wide inverse(long p) const {
        const long start = p / length * length;
        const long k = p - start;
        const long fromEnd = length - 1 - k;
        if (k < bell.halfLength)
            return plain::at(bell.rising, k) * segment(start, k) -
                   plain::at(bell.falling, k) * segment(start - length, length - 1 - k);
        if (fromEnd < bell.halfLength)
            return plain::at(bell.rising, fromEnd) * segment(start, k) +
                   plain::at(bell.falling, fromEnd) * segment(start + length, fromEnd);
        return segment(start, k);
    }
    Wide at(Direction direction, long p) const {
        return direction == Direction::analysis ? forward(p) : inverse(p);
    }
};

// All positions of a short line, some of a long one.
std::vector<long> positionsOf(long n) {
    constexpr long most = 100;
    std::vector<long> positions(static_cast<std::size_t>(n));
    std::iota(positions.begin(), positions.end(), 0L);
    if (n <= 2048) return positions;
    std::shuffle(positions.begin() + 2, positions.end() - 2, std::mt19937(1));
    positions.resize(most);
    return positions;
}

Signal picked(const Signal& values, const std::vector<long>& positions) {
    Signal some;
    for (const long p : positions) some.push_back(plain::at(values, p));
    return some;
}

// Of an image the columns and then the rows, whole.
WideSignal cosinesOf(Direction direction, const Bell& bell, const Shape& shape, const Signal& values,
                     const std::vector<long>& positions) {
    WideSignal image = widened<Wide>(values);
    const auto line = [&](const Cosines& cosines, const WideSignal& x, const std::vector<long>& at) {
        WideSignal out;
        const CosineLine along = {cosines, bell, x, plain::lengthOf(x) >> shape.levels};
        for (const long p : at) out.push_back(along.at(direction, p));
        return out;
    };
    const Cosines down(shape.rows >> shape.levels);
    if (shape.cols == 1) return line(down, image, positions);
    const long rows = shape.rows;
    const auto whole = [](long n) {
        std::vector<long> all(static_cast<std::size_t>(n));
        std::iota(all.begin(), all.end(), 0L);
        return all;
    };
    for (long c = 0; c < shape.cols; ++c) {
        const auto start = image.begin() + c * rows;
        const WideSignal column = line(down, {start, start + rows}, whole(rows));
        std::copy(column.begin(), column.end(), start);
    }
    const Cosines across(shape.cols >> shape.levels);
    for (long r = 0; r < rows; ++r) {
        WideSignal row;
        for (long c = 0; c < shape.cols; ++c) row.push_back(plain::at(image, c * rows + r));
        row = line(across, row, whole(shape.cols));
        for (long c = 0; c < shape.cols; ++c) plain::at(image, c * rows + r) = plain::at(row, c);
    }
    return image;
}

// The two-scale relation of a filter, scaled to the sum sqrt(2), which filters that are cut off miss: from
// values at oldSteps points a unit to those at `steps` points, once or twice as many.
WideSignal refined(const Signal& taps, const WideSignal& old, long oldSteps, long steps) {
    const Wide sum = std::accumulate(taps.begin(), taps.end(), Wide{0});
    const long L = plain::lengthOf(taps);
    WideSignal out(static_cast<std::size_t>((L - 1) * steps + 1));
    for (long i = 0; i < plain::lengthOf(out); ++i) {
        for (long q = 0; q < L; ++q) {
            const long from = i * (2 * oldSteps / steps) - q * oldSteps;
            if (0 <= from && from < plain::lengthOf(old))
                plain::at(out, i) += 2 / sum * plain::at(taps, q) * plain::at(old, from);
        }
    }
    return out;
}

// The scaling function at the integers, an eigenvector of the two-scale relation; empty where that does not
// settle.
WideSignal valuesAtIntegers(const Signal& taps) {
    // From the first coefficient that is more than a rounding, where a jump belongs to what comes after it.
    WideSignal values(taps.size());
    const auto counts = [](double tap) { return std::fabs(tap) > 1e-15; };
    const auto first = std::find_if(taps.begin(), taps.end(), counts);
    values[static_cast<std::size_t>(first - taps.begin())] = 1.0;
    Wide change = 0.0;
    for (int i = 0; i < 2000; ++i) {
        WideSignal next = refined(taps, values, 1, 1);
        const Wide total = std::accumulate(next.begin(), next.end(), Wide{0});
        change = 0.0;
        for (std::size_t k = 0; k < values.size(); ++k) {
            next[k] /= total;
            // NaN, where the values have grown beyond all numbers, stays.
            const Wide moved = std::fabs(next[k] - values[k]);
            if (!(moved <= change)) change = moved;
        }
        values = next;
    }
    return change < 1e-9L ? values : WideSignal();
}

}  // namespace

const Treatment treatments[3] = {{"", plain::periodicAnalysis, plain::periodicSynthesis},
                                 {"s", plain::symmetricAnalysis, plain::symmetricSynthesis},
                                 {"i", plain::intervalAnalysis, plain::intervalSynthesis}};

bool Treatment::takes(const Wavelet& wavelet) const {
    return letter.empty() || (letter == "s" ? wavelet.isSymmetric : wavelet.hasInterval);
}

int Treatment::deepest(const Wavelet& wavelet, int side) const {
    const int least = letter == "i" ? 2 * wavelet.taps() : 2;
    int levels = 0;
    while (side >> levels >= least) ++levels;
    return levels;
}

Measures::Measures(const char* packPath) : pack_(packPath) {}

Value Measures::call(const std::string& name, const std::vector<Value>& arguments) {
    return host_.call(pack_, name, arguments);
}

Wavelet Measures::orthonormalWavelet(const char* family, const char* letter, int number) {
    const std::string kind = family;
    const Value filter = call(kind, {number});
    const int taps = filter.rows();
    const int offset = kind == "coiflet" ? -taps / 3 : 1 - (taps + 1) / 2;
    const bool isSymmetric = kind == "bl" || taps == 2;
    const bool hasInterval =
        (kind == "symmlet" && taps <= 16) || (kind == "daublet" && (taps == 4 || taps == 6));
    return {kind,        letter + std::to_string(number),
            filter,      orthonormal(filter.reals(), offset),
            isSymmetric, hasInterval};
}

Wavelet Measures::spline(int m, int n) {
    const Value filter = call("Bspline", {m, n});
    const auto column = [&](int c) {
        Signal taps(filter.re(c).begin(), filter.re(c).end());
        while (taps.back() == 0.0) taps.pop_back();
        return taps;
    };
    const auto offset = [](const Signal& taps) { return 1 - (static_cast<int>(taps.size()) + 1) / 2; };
    const Signal analysis = column(0);
    const Signal synthesis = column(1);
    return {"Bspline",
            "bs" + std::to_string(m) + std::to_string(n),
            filter,
            {analysis, synthesis, offset(analysis), offset(synthesis)},
            true};
}

std::vector<Wavelet> Measures::wavelets() {
    std::vector<Wavelet> all;
    for (int taps = 2; taps <= 20; taps += 2) all.push_back(orthonormalWavelet("daublet", "d", taps));
    for (int taps = 4; taps <= 20; taps += 2) all.push_back(orthonormalWavelet("symmlet", "s", taps));
    for (int taps = 6; taps <= 30; taps += 6) all.push_back(orthonormalWavelet("coiflet", "c", taps));
    for (int degree = 0; degree <= 6; ++degree) all.push_back(orthonormalWavelet("bl", "bl", degree));
    for (const auto& [m, n] : splinePairs) all.push_back(spline(m, n));
    return all;
}

Errors Measures::transform(const Treatment& treatment, const Wavelet& wavelet, const Shape& shape) {
    const WaveletBank bank(wavelet);
    const Signal x = noise(long{shape.rows} * shape.cols);
    const auto applied = [&](const char* direction, const Signal& data) {
        return call(direction + treatment.letter, {matrixOf(shape, data), shape.levels, wavelet.filter})
            .reals();
    };
    const auto expected = [&](plain::StepOf<Wide>* step, Direction direction) {
        return transformed(step, direction, bank, widened<Wide>(x), shape.rows, shape.cols, shape.levels);
    };
    const Signal y = applied("dwt", x);
    return {errorOf(y, expected(treatment.analysis, Direction::analysis)),
            errorOf(applied("idwt", x), expected(treatment.synthesis, Direction::synthesis)),
            errorOf(applied("idwt", y), x)};
}

Errors Measures::packets(const Treatment& treatment, const Wavelet& wavelet, const Shape& shape) {
    const WaveletBank bank(wavelet);
    const Signal x = noise(long{shape.rows} * shape.cols);
    const auto expected = [&](plain::StepOf<Wide>* step, Direction direction) {
        return splitPackets(step, direction, bank, widened<Wide>(x), shape);
    };
    const auto merged = [&](const Signal& data) {
        return call("iwpt" + treatment.letter, {matrixOf(shape, data), basisOfLevel(shape), wavelet.filter})
            .reals();
    };
    const Value table = call("wpt" + treatment.letter, {matrixOf(shape, x), shape.levels, wavelet.filter});
    const Signal y = table.nested(shape.levels, 0).reals();
    return {errorOf(y, expected(treatment.analysis, Direction::analysis)),
            errorOf(merged(x), expected(treatment.synthesis, Direction::synthesis)), errorOf(merged(y), x)};
}

double Measures::function(const Wavelet& wavelet, bool dual, unsigned packet, int points) {
    const PairBank bank(wavelet.pair);
    const PacketFunctions functions(bank, dual);
    const char* name = dual ? "dlwavelet" : "wavelet";
    Signal actual;
    WideSignal expected;
    std::mt19937 random(1);
    std::uniform_real_distribution<double> place(functions.first(), functions.last());
    for (int i = 0; i < points; ++i) {
        // In the middle of a cell of the packet, so that no rounding leads to another one.
        const double x = std::floor(place(random) * 4096) / 4096 + 0x1p-13;
        actual.push_back(call(name, {x, 0, 0, packet, wavelet.filter}).real());
        expected.push_back(functions.at(packet, x));
    }
    return errorOf(actual, expected);
}

Errors Measures::cosines(BellOf bellOf, const Shape& shape) {
    const bool user = bellOf == BellOf::User;
    const Bell bell(bellOf, shape.rows >> (shape.levels + 1));
    const Signal x = noise(long{shape.rows} * shape.cols);
    const std::vector<long> positions = positionsOf(plain::lengthOf(x));
    const auto with = [&](std::vector<Value> arguments) {
        if (user) arguments.push_back(Value::function(efihost::RealCallback(builtInBell)));
        return arguments;
    };
    const auto merged = [&](const Signal& data) {
        return call(user ? "ilct" : "icpt", with({matrixOf(shape, data), shape.levels, basisOfLevel(shape)}))
            .reals();
    };
    const Value table = call(user ? "lct" : "cpt", with({matrixOf(shape, x), shape.levels}));
    const Signal y = table.nested(shape.levels, 0).reals();
    const bool whole = shape.cols > 1;
    const auto some = [&](const Signal& values) { return whole ? values : picked(values, positions); };
    return {errorOf(some(y), cosinesOf(Direction::analysis, bell, shape, x, positions)),
            errorOf(some(merged(x)), cosinesOf(Direction::synthesis, bell, shape, x, positions)),
            errorOf(merged(y), x)};
}

// A bell of 1 leaves the only segment to itself.
double Measures::dct(int length) {
    const Signal x = noise(length);
    const Value one = Value::function(efihost::RealCallback([](double) { return 1.0; }));
    const Signal y = call("ilct", {Value::column(x), 0, Value::matrix(1, 2, Signal{0, 0}), one}).reals();
    const Cosines cosines(length);
    const std::vector<long> positions = positionsOf(length);
    WideSignal expected;
    for (const long k : positions)
        expected.push_back(cosines.coefficient(k, [&](long i) { return Wide{plain::at(x, i)}; }));
    return errorOf(picked(y, positions), expected);
}

double bellError(int halfLength) {
    const Bell expected(BellOf::Pack, halfLength);
    undula::BellSamples samples;
    if (!undula::sampleBell(static_cast<std::uint64_t>(halfLength), nullptr, samples)) throw std::bad_alloc();
    double largest = 0.0;
    const auto compare = [&](double actual, Wide value) {
        largest = std::max(largest, static_cast<double>(std::fabs((actual - value) / value)) / unit);
    };
    for (std::size_t k = 0; k < expected.rising.size(); ++k) {
        compare(samples.rising[k], expected.rising[k]);
        compare(samples.falling[k], expected.falling[k]);
    }
    return largest;
}

LimitDistance limitDistance(const Wavelet& wavelet, bool dual) {
    constexpr int stages = 12;
    const Signal& taps = dual ? wavelet.pair.synthesis : wavelet.pair.analysis;
    const long offset = dual ? wavelet.pair.synthesisOffset : wavelet.pair.analysisOffset;
    const long L = plain::lengthOf(taps);
    const Wide sum = std::accumulate(taps.begin(), taps.end(), Wide{0});
    WideSignal values = valuesAtIntegers(taps);
    if (values.empty()) return {};
    for (int j = 0; j < stages; ++j) values = refined(taps, values, 1L << j, 2L << j);

    Wide moment = 0.0;
    for (long q = 0; q < L; ++q) moment += static_cast<Wide>(offset + q) * plain::at(taps, q) / sum;
    const auto limitAt = [&](Wide t) {
        const Wide place = (t - static_cast<Wide>(offset)) * (1L << stages);
        const auto below = static_cast<long>(std::floor(place));
        const Wide share = place - static_cast<Wide>(below);
        const auto value = [&](long i) {
            return 0 <= i && i < plain::lengthOf(values) ? plain::at(values, i) : 0.0L;
        };
        return (1 - share) * value(below) + share * value(below + 1);
    };
    const WideSignal table = cascadeOf(taps);
    LimitDistance largest = {0.0, 0.0};
    for (long i = 0; i < plain::lengthOf(table); ++i) {
        const auto grid = static_cast<Wide>(31 * offset + i);
        const auto distance = [&](Wide t) {
            return std::fabs(static_cast<double>(plain::at(table, i) - limitAt(t)));
        };
        largest.where = std::max(largest.where, distance(grid / 32));
        largest.shifted = std::max(largest.shifted, distance((grid + moment) / 32));
    }
    return largest;
}

double errorOfWide(const Treatment& treatment, const Wavelet& wavelet, const Shape& shape) {
    const WaveletBank bank(wavelet);
    const Signal x = noise(long{shape.rows} * shape.cols);
    const auto loops = [&]<class Number>(plain::StepOf<Number>* step) {
        return splitPackets(step, Direction::analysis, bank, widened<Number>(x), shape);
    };
    plain::StepOf<Quad>* exact = treatment.letter.empty()  ? plain::periodicAnalysis<Quad>
                                 : treatment.letter == "s" ? plain::symmetricAnalysis<Quad>
                                                           : plain::intervalAnalysis<Quad>;
    return errorOf(loops(treatment.analysis), loops(exact));
}

}  // namespace accuracy
