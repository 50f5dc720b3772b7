// Random sequences of calls of the pack's functions, each drawn from its number.
//
//     table_fuzz FIRST LAST    the sequences FIRST, FIRST + 1, ..., LAST or FIRST, FIRST - 1, ..., LAST
//
// Most calls fit together: data, levels, bases, tables and wavelets of one scene, and results of earlier
// calls. In the others an argument is anything at all, memory fails or the user interrupts. What does not
// hold ends the program. It prints a digest of the results of each sequence, how many calls of each function
// succeeded, and which of the documented errors were met; of a single sequence all calls as well.
#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <numeric>
#include <random>
#include <set>

#include "fuzz/documented.h"
#include "support/failing_new.h"
#include "support/function_table.h"
#include "support/packets.h"
#include "support/spline_pairs.h"

namespace {

constexpr int callsInSequence = 32;
// Nothing that a sequence needs takes more in one piece.
constexpr std::size_t largestPiece = std::size_t{1} << 20;

// A user function that goes wrong.
struct Failed {};

// Which wavelets a function takes.
enum class Class { any, symmetric, interval };

Class classOf(std::string_view function) {
    if (function.ends_with("ti")) return Class::interval;
    return function.ends_with("ts") || function.starts_with("sw") ? Class::symmetric : Class::any;
}

// What a value of another kind is refused with, by the letter of the kind.
const std::map<char, std::string> refusals = {{'S', "non-scalar value"},      {'T', "must be string"},
                                              {'M', "must be array"},         {'V', "must be vector"},
                                              {'F', "must be function"},      {'A', "EfiMustBeScalarOrArray"},
                                              {'O', "EfiMustBeScalarOrArray"}};

// Calls of a function.
struct Tally {
    int calls = 0;
    int successes = 0;
    std::set<std::string> errors;
};
std::map<std::string, Tally> tallies;
int inverses = 0;

bool isFinite(const Value& value) {
    const Numbers numbers = flat(value);
    return std::all_of(numbers.begin(), numbers.end(), [](double number) { return std::isfinite(number); });
}

double largest(const Numbers& numbers) {
    return std::accumulate(numbers.begin(), numbers.end(), 0.0,
                           [](double most, double number) { return std::max(most, std::fabs(number)); });
}

std::uint64_t digestWith(std::uint64_t digest, const Value& value) {
    for (const double number : flat(value))
        digest = (digest ^ std::bit_cast<std::uint64_t>(number)) * 0x100000001B3;
    return digest;
}

std::uint64_t digestOf(const Arguments& values) {
    return std::accumulate(values.begin(), values.end(), std::uint64_t{0}, digestWith);
}

void print(const char* before, const Value& value) {
    std::fprintf(stderr, "%s[", before);
    for (const double number : flat(value)) std::fprintf(stderr, " %.17g", number);
    std::fprintf(stderr, " ]\n");
}

// Shapes and the wavelet that calls in a row agree on.
struct Scene {
    Class wavelets = Class::any;
    int dimensions = 0;
    int depth = 0;  // levels that the shape admits
    int rows = 0;
    int cols = 0;
    Value wavelet;
    double inexact = 0;  // how far there and back may be from the data, relative to it
};

class Draws {
 protected:
    explicit Draws(unsigned long number) : random_(number) {}

    std::size_t pick(std::size_t count) { return random_() % count; }
    int number(int count) { return static_cast<int>(pick(static_cast<std::size_t>(count))); }
    Numbers noise(int count) {
        Numbers numbers(static_cast<std::size_t>(count));
        for (double& each : numbers) each = static_cast<double>(pick(1 << 24)) * 0x1p-23 - 1;
        return numbers;
    }
    unsigned seed() { return static_cast<unsigned>(pick(1000)); }
    bool oneIn(std::size_t count) { return pick(count) == 0; }
    template <class Items>
    auto among(const Items& items) {
        return items[pick(std::size(items))];
    }

 private:
    std::mt19937_64 random_;
};

class Sequence : Draws {
 public:
    Sequence(unsigned long number, bool isPrinted) : Draws(number), isPrinted_(isPrinted) {}

    std::uint64_t run() {
        for (int i = 0; i < callsInSequence; ++i) oneCall();
        results_.clear();
        scene_ = {};
        require(host_.leaks() == TestHost::Leaks{},
                "all values are freed, all roots and services given back");
        return digest_;
    }

 private:
    void require(bool holds, const std::string& what) {
        if (holds) return;
        std::fprintf(stderr, "%s: not so: %s\n", function_.c_str(), what.c_str());
        std::abort();
    }

    void oneCall() {
        const ListedFunction& function = among(listedFunctions());
        function_ = function.name;
        const std::size_t form = pick(documented(function_).forms.size());
        const std::string letters = function.forms[form];
        setScene(letters);
        clean_ = true;
        Arguments arguments;
        for (const std::string& name : documented(function_).forms[form])
            arguments.push_back(argument(name, letters[arguments.size()]));
        const bool isWhole = !oneIn(6);
        if (!isWhole) arguments[pick(arguments.size())] = anything();
        if (function.variadic() && oneIn(50)) arguments.resize(pick(12), Value(1));
        ++tallies[function_].calls;
        const Value result = checked(arguments);
        if (!result || result.isError()) return;
        ++tallies[function_].successes;
        if (flat(result).size() < 2000) results_.push_back(result);
        if (isWhole && clean_) invert(arguments, result);
    }

    // The call, in which now and then memory fails or the user interrupts. What lack of memory comes to
    // depends on what the pack has kept before, and is no part of the digest.
    Value checked(const Arguments& arguments) {
        for (const Value& each : arguments) {
            if (isPrinted_) print(&each == arguments.data() ? ("\n" + function_).c_str() : "    ", each);
            clean_ = clean_ && isFinite(each);
        }
        const std::size_t trouble = pick(40);
        const bool isRepeated = trouble > 3 && trouble < 8;
        const std::uint64_t before = isRepeated ? digestOf(arguments) : 0;
        if (trouble == 1) host_.failAllocation(1 + number(6));
        if (trouble == 2) host_.interruptAt(1 + number(12));
        const FailingNew failing(trouble == 3 ? 1 + number(6) : 0);
        Value result = called(arguments);
        const bool happened = host_.happened() || (trouble == 3 && failing.happened());
        host_.clear();
        if (!result) return result;
        if (isPrinted_) print("  = ", result);
        require(!happened || nested_ || result.isError(), "a call in trouble fails");
        check(arguments, result);
        if (trouble == 1 || trouble == 3) return Value();
        digest_ = digestWith(digest_, result);
        if (!isRepeated) return result;
        repeat(arguments, result);
        require(digestOf(arguments) == before, "arguments stay as they are");
        return result;
    }

    // No value when a user function has failed.
    Value called(const Arguments& arguments) {
        const long refused = refusedAllocations();
        evaluations_ = 0;
        nested_ = false;
        Value result;
        try {
            result = host_.callRaw(pack(), function_, arguments);
            require(static_cast<bool>(result), "a call has a result");
            require(refused == refusedAllocations() || nested_ || result.isError(),
                    "a call without memory fails");
        } catch (const Failed&) {
        }
        require(host_.liveRoots() == 0 && host_.heldInterfaces() == 0, "roots and services are given back");
        return result;
    }

    void check(const Arguments& arguments, const Value& result) {
        if (!result.isError()) return require(!clean_ || isFinite(result), "finite data, finite result");
        const auto place = static_cast<std::size_t>(result.argument());
        require(place <= arguments.size(), "an error names an argument");
        const std::string message = result.message();
        if (message == "refused") return;
        std::string error = message + " ()";
        std::string refusal;
        const auto& forms = documented(function_).forms;
        for (std::size_t form = 0; form < forms.size() && place > 0; ++form) {
            if (forms[form].size() != arguments.size()) continue;
            error = message + " (" + forms[form][place - 1] + ")";
            for (const ListedFunction& listed : listedFunctions())
                if (listed.name == function_) refusal = refusals.at(listed.forms[form][place - 1]);
        }
        tallies[function_].errors.insert(error);
        const bool isOfKind = place > 0 && (message == refusal || message == "illegal context");
        require(isOfKind || documented(function_).errors.contains(error), error + " is documented");
    }

    // The pack knows the wavelet by now, so that it keeps nothing.
    void repeat(const Arguments& arguments, const Value& result) {
        const long live = liveAllocations();
        require(same(called(arguments), result), "the same call has the same result");
        const bool isMore = liveAllocations() > live;
        require(!isMore, "a call keeps no memory");
    }

    // From the result of a transform, or of a table of it, back to the data.
    void invert(Arguments arguments, Value result) {
        const std::string forward = function_;
        const bool isCosine = forward == "cpt" || forward == "lct";
        const bool isWavelet = forward.starts_with("dwt") || forward.starts_with("wpt");
        if (!isCosine && !(isWavelet && arguments.size() == 3 && arguments[2].raw() == scene_.wavelet.raw()))
            return;
        const Value data = arguments[0];
        const auto next = [&](const std::string& function, const Arguments& given) {
            function_ = function;
            result = checked(given);
            require(!result || !result.isError() || result.argument() == 0, "what was made can be inverted");
            return result && !result.isError();
        };
        if (result.anyNested()) {
            const int dimensions = data.cols() < 2 ? 1 : 2;
            const int level = static_cast<int>(arguments[1].real());
            const Value basis = isCosine && dimensions == 2
                                    ? basisOfLevel(2, level)
                                    : basisOf(dimensions, randomTiling(dimensions, level, seed()));
            if (!next("extract_basis", {result, basis})) return;
            arguments.insert(arguments.begin() + (isCosine ? 2 : 1), basis);
            if (!isCosine) arguments.erase(arguments.begin() + 2);
        }
        arguments[0] = result;
        if (!next("i" + forward, arguments)) return;
        Numbers difference = result.reals();
        for (std::size_t i = 0; i < difference.size(); ++i) difference[i] -= data.reals()[i];
        const double most = (isCosine ? 1e-12 : scene_.inexact) * largest(data.reals());
        require(largest(difference) <= most + 1e-320, "the inverse restores the data");
        ++inverses;
    }

    void setScene(const std::string& letters) {
        const Class wavelets = classOf(function_);
        const bool isSignal =
            letters.find('V') != std::string::npos && function_.find('_') != std::string::npos;
        const bool isImage = function_.ends_with("2d");
        place_ = {};
        const bool fits = wavelets == scene_.wavelets && scene_.dimensions != (isSignal  ? 2
                                                                               : isImage ? 1
                                                                                         : 0);
        if (fits && scene_.dimensions > 0 && !oneIn(4)) return;
        scene_.wavelets = wavelets;
        scene_.dimensions = isSignal ? 1 : isImage ? 2 : 1 + number(2);
        scene_.depth = number((wavelets == Class::interval ? 3 : 5) / scene_.dimensions + 1);
        drawWavelet(oneIn(8) ? Class::any : wavelets);
        scene_.rows = side();
        scene_.cols = scene_.dimensions == 1 ? 1 : oneIn(40) ? 0 : std::max(2, side());
    }

    int side() {
        if (oneIn(20)) return number(40);
        if (scene_.wavelets == Class::symmetric) return (1 << scene_.depth) + number(20);
        if (scene_.wavelets == Class::interval) return scene_.wavelet.rows() << scene_.depth;
        return (2 << scene_.depth) * (1 + number(3));
    }

    void drawWavelet(Class wavelets) {
        const auto& [m, n] = among(splinePairs);
        const Arguments lengths = {4 + 2 * number(wavelets == Class::any ? 9 : 2), 8 + 2 * number(5), 2,
                                   number(7), 6 * number(5) + 6};
        static constexpr std::array families = {"daublet", "symmlet", "daublet", "bl", "coiflet"};
        const std::size_t first = wavelets == Class::symmetric ? 2 : 0;
        const std::size_t last = wavelets == Class::any ? 6 : wavelets == Class::symmetric ? 4 : 2;
        const std::size_t family = first + pick(last - first);
        scene_.inexact = family == 3 ? 1 : 1e-6;
        const bool isPair = family == 5 || (family == 2 && !oneIn(3));
        scene_.wavelet = isPair ? fromPack("Bspline", {m, n}) : fromPack(families[family], {lengths[family]});
        if (oneIn(5)) disturbWavelet();
    }

    // A filter that almost reconstructs, or not at all. What differs by less than 1e-12 is the same filter,
    // and which of two such filters is kept depends on which came first; but without offsets none is kept.
    void disturbWavelet() {
        const double size = among(std::array{scene_.wavelets == Class::any ? 1e-8 : 1e-14, 1e-8, 1e-2, 1e3});
        int rows = scene_.wavelet.rows();
        const int cols = scene_.wavelet.cols();
        Numbers taps = scene_.wavelet.reals();
        const Numbers changes = noise(rows * cols);
        for (std::size_t i = 0; i < taps.size(); ++i) taps[i] *= 1 + size * changes[i];
        const bool isNoise = oneIn(3);
        if (isNoise) taps = noise((rows = number(105)) * cols);
        scene_.wavelet = Value::matrix(rows, cols, taps);
        scene_.inexact = isNoise || cols == 2 || size > 1e-7 ? 1e300 : std::max(scene_.inexact, 1e5 * size);
    }

    Value fromPack(const char* function, const Arguments& arguments) {
        return host_.callRaw(pack(), function, arguments);
    }

    Value argument(const std::string& name, char letter) {
        if (letter == 'T') return name == "type" ? Value(among(std::array{"H", "V", "D"})) : waveletName();
        if (letter == 'F') return userFunction();
        if (name == "wavelet") return scene_.wavelet;
        if (name == "offsets" || name == "flips") return settings(name[0] == 'o' ? 5 : 2);
        if (name == "table") return table();
        if (name == "basis" || (letter == 'A' && oneIn(2))) return basis();
        if (name == "data") return data(scene_.rows, letter == 'V' ? 1 : scene_.cols);
        if (name == "subband") {
            if (function_.starts_with("put_detail")) place_ = {place_.level, 1, 1};
            const auto [rows, cols] = placeOf(scene_.rows, letter == 'V' ? 1 : scene_.cols, place_);
            return data(rows.length, cols.length);
        }
        return scalar(usualNumber(name));
    }

    double usualNumber(const std::string& name) {
        if (name.starts_with("level"))
            return place_.level = oneIn(3) ? number(scene_.depth + 1) : scene_.depth;
        if (name == "row" || name == "col" || name.starts_with("index")) {
            place_.row = std::exchange(place_.col, number(1 << place_.level));
            if (name != "row" && name != "index_x") std::swap(place_.row, place_.col);
            return name == "col" || name == "index_y" ? place_.col : place_.row;
        }
        if (name == "dimension") return scene_.dimensions;
        if (name == "length") return oneIn(2) ? 6 + 6 * number(5) : 2 + 2 * number(11);
        if (name == "x" || name == "y") return number(100) / 8.0 - 2;
        return name == "m"   ? 1 + number(3)
               : name == "n" ? 1 + number(9)
                             : number(7) - (name == "degree" ? 0 : 3);
    }

    // The number, or now and then one that few places take.
    Value scalar(double usual) {
        static constexpr std::array remarkable = {
            NaN, inf, -inf, -1.0, -0.5,   0.5,        5e-324,  -0.0,   1e-310, 1e300,     -1100.,
            13., 40., 1e19, 1e4,  0x1p31, 0x1p31 - 1, -0x1p31, 0x1p53, 0x1p32, 0x1p32 - 1};
        if (oneIn(100)) return std::complex(usual, among(std::array{0.0, 1.0, NaN}));
        return oneIn(25) ? among(remarkable) : usual;
    }

    Value settings(int count) {
        Numbers numbers(static_cast<std::size_t>(scene_.wavelet.cols()));
        for (double& each : numbers) each = scalar(number(count) - (count > 2 ? 2 : 0)).real();
        return oneIn(2) && numbers.size() == 1 ? Value(numbers[0]) : row(numbers);
    }

    Value data(int rows, int cols) {
        if (!results_.empty() && oneIn(8)) return among(results_);
        const double scale = oneIn(10) ? among(std::array{1e-310, 1e-300, 1e150, 1.7e308}) : 1.0;
        Numbers numbers = noise(rows * cols);
        for (double& each : numbers) each *= scale;
        if (!numbers.empty() && oneIn(10)) numbers[pick(numbers.size())] = scalar(oneIn(2) ? 0 : inf).real();
        if (oneIn(8)) return strided(rows, cols, numbers);
        return Value::matrix(rows, cols, numbers, oneIn(40) ? numbers : Numbers());
    }

    // Packets that tile, or almost.
    Value basis() {
        const int dimensions = oneIn(30) ? 3 - scene_.dimensions : scene_.dimensions;
        const int depth = place_.level > 0 ? place_.level : scene_.depth;
        Tiling packets = randomTiling(dimensions, depth, seed());
        TestPacket& one = packets[pick(packets.size())];
        const std::size_t fault = pick(24);
        if (fault == 0) one.level += oneIn(2) ? 1 : -1;
        if (fault == 1) one.row += oneIn(2) ? 1 : -1;
        if (fault == 2) one = packets.back();
        if (fault == 3) packets.push_back(one);
        Value rows = basisOf(dimensions, packets);
        if (fault != 4) return rows;
        Numbers numbers = rows.reals();
        numbers[pick(numbers.size())] = scalar(0.5).real();
        return Value::matrix(rows.rows(), rows.cols(), numbers);
    }

    Value table() {
        Arguments levels;
        while (static_cast<int>(levels.size()) <= scene_.depth)
            levels.push_back(data(scene_.rows, scene_.cols));
        if (oneIn(12)) levels[pick(levels.size())] = anything();
        return Value::table(levels);
    }

    Value waveletName() {
        static constexpr std::array names = {"haar", "daub4", "d20", "symm8", "s20",  "coif6", "coif30",
                                             "bl0",  "bl3",   "bl6", "bs11",  "bs28", "bs39",  "Bspline24"};
        static constexpr std::array none = {"", "x9", "daub", "coif7", "daub0", "bl4294967296", "bs12", "HV"};
        return oneIn(10) ? among(none) : among(names);
    }

    // Of packets and of numbers. What it does is drawn here, so that it does the same each time.
    Value userFunction() {
        const std::size_t failing = oneIn(12) ? 1 + pick(10) : 0;
        const std::size_t manner = pick(6);
        const auto ofNumber = [=](double x) {
            return manner < 3 ? std::sqrt(std::fabs(x)) : manner < 5 ? x * x : 2 * x;
        };
        const bool isOfPackets = function_.starts_with("apply") || function_.starts_with("eval");
        if (failing == 0 && manner < 3 && !isOfPackets) return Value::function(ofNumber);
        const Value trouble = failing == 0 || oneIn(4) ? Value() : refused();
        const bool isApplied = function_.starts_with("apply");
        return Value::function([=, this](const Arguments& given) -> Value {
            if (++evaluations_ == failing) {
                clean_ = clean_ && isFinite(trouble);
                return trouble ? Value(trouble) : throw Failed();
            }
            if (given[0].isScalar()) return ofNumber(given[0].real());
            nested_ = manner == 1;
            if (nested_) fromPack("dwt", {row({1, 2}), 0, row({0.5})});
            return isApplied || manner < 3 ? given[0] : Value(given[0].rows());
        });
    }

    Value refused() { return oneIn(3) ? Value::error("refused", 1) : anything(); }

    Value anything() {
        const std::size_t kind = pick(14);
        if (kind == 0) return scalar(among(std::array{2.5, 1e9, -3.0}));
        if (kind == 1) return std::complex(2.0, oneIn(2) ? 0.0 : 1.0);
        if (kind == 2) return waveletName();
        if (kind == 3) return data(0, number(2));
        if (kind == 4) return data(number(3), number(5));
        if (kind == 5) return row(noise(number(6)));
        if (kind == 6) return nestedColumn();
        if (kind == 7) return unrealColumn();
        if (kind == 8) return userFunction();
        if (kind == 9) return oneIn(2) ? Value::error("refused", 1) : Value::ofTag(TagUnsupported);
        if (kind == 10) return basis();
        if (kind == 11) return Value::table({data(2, 2), Value::table({data(2, 1)})});
        return results_.empty() ? scene_.wavelet : among(results_);
    }

    bool isPrinted_;
    TestHost host_;
    std::string function_;
    Scene scene_;
    TestPacket place_ = {};  // the subband that a call is about
    Arguments results_;
    bool clean_ = false;           // nothing but finite numbers so far in this call
    std::size_t evaluations_ = 0;  // of user functions, in this call
    bool nested_ = false;          // one of them has called the pack
    std::uint64_t digest_ = 0;
};

}  // namespace

int main(int count, char** words) {
    if (count != 3) {
        std::fprintf(stderr, "usage: table_fuzz FIRST LAST\n");
        return 2;
    }
    limitAllocations(largestPiece);
    const long first = std::strtol(words[1], nullptr, 10);
    const long last = std::strtol(words[2], nullptr, 10);
    for (long number = first;; number += first < last ? 1 : -1) {
        const std::uint64_t digest = Sequence(static_cast<unsigned long>(number), first == last).run();
        std::printf("sequence %ld %llx\n", number, static_cast<unsigned long long>(digest));
        if (number == last) break;
    }
    for (const ListedFunction& function : listedFunctions()) {
        const auto& [calls, successes, errors] = tallies[std::string(function.name)];
        std::printf("calls %s %d %d\n", function.name.data(), calls, successes);
        for (const std::string& error : documented(function.name).errors)
            std::printf("%s %s: %s\n", errors.contains(error) ? "met" : "unmet", function.name.data(),
                        error.c_str());
    }
    std::printf("inverses %d\n", inverses);
    return 0;
}
