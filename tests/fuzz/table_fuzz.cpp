// Random calls of every function of the pack, a few in a row, in which results become arguments.
//
// Whatever a call is given, it answers a result, or an error that names one of its arguments or
// the call as a whole; it leaves nothing behind, and asks for no memory that its data does not
// need. What else can go wrong is for the sanitizers to see.
#include <fuzzer/FuzzedDataProvider.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <new>
#include <random>
#include <stdexcept>
#include <vector>

#include "efihost/host.h"
#include "support/function_table.h"

using efihost::Value;

namespace {

// A pack asks for its memory in this way; what calls so small can need is far less.
constexpr std::size_t memoryLimit = std::size_t{1} << 28;

// A user function that goes wrong.
struct Failed : std::runtime_error {
    using std::runtime_error::runtime_error;
};

void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "not so: %s\n", what);
    std::abort();
}

const efihost::Pack& pack() {
    static const efihost::Pack loaded(UNDULA_PACK_PATH);
    return loaded;
}

class Session {
 public:
    explicit Session(FuzzedDataProvider& data) : data_(data) {
        host_.setInterrupt([this, polls = 0]() mutable { return ++polls > patience_; });
    }

    void run() {
        for (int calls = 0; calls < 12 && data_.remaining_bytes() > 0; ++calls) call();
    }

 private:
    void call() {
        const auto& functions = documentedFunctions();
        const auto& function = functions[pick(functions.size())];
        std::vector<Value> arguments;
        for (const char letter : function.forms[pick(function.forms.size())])
            arguments.push_back(argument(letter));
        patience_ = data_.ConsumeBool() ? 10000 : static_cast<int>(pick(20));
        try {
            const Value result = host_.callRaw(pack(), function.name, arguments);
            check(result, static_cast<int>(arguments.size()));
            if (!result.isError()) results_.push_back(result);
        } catch (const Failed&) {  // comes back as it was thrown
        }
        require(host_.liveRoots() == 0, "all roots are given back");
        require(host_.heldInterfaces() == 0, "all services are released");
    }

    static void check(const Value& result, int arguments) {
        require(static_cast<bool>(result), "a call answers");
        if (!result.isError()) return;
        require(!result.message().empty(), "an error has a message");
        require(0 <= result.argument() && result.argument() <= arguments, "an error names an argument");
    }

    // Mostly what the function asks for.
    Value argument(char letter) {
        if (pick(16) == 0) letter = "STMVF"[pick(5)];
        if (letter == 'A' || letter == 'O') letter = "SM"[pick(2)];
        switch (letter) {
            case 'S':
                return number();
            case 'T':
                return std::array{"s", "d", "h", "v", "father", "daublet4", "bl"}[pick(7)];
            case 'F':
                return Value::function([this](const std::vector<Value>&) { return answer(); });
            default:
                return earlier(letter == 'V' ? 1 : sizes[pick(sizes.size())]);
        }
    }

    Value answer() {
        const std::size_t kind = pick(16);
        if (kind == 0) throw Failed("a user function fails");
        if (kind == 1) return Value::error("refused", 1);
        if (kind == 2) return block(sizes[pick(sizes.size())], 1);
        return number();
    }

    double number() {
        static constexpr double limit = std::numeric_limits<double>::infinity();
        static constexpr std::array remarkable = {std::numeric_limits<double>::quiet_NaN(),
                                                  limit,
                                                  -limit,
                                                  -1.0,
                                                  -0.5,
                                                  0.5,
                                                  1e-300,
                                                  1e300,
                                                  2147483647.0,
                                                  2147483648.0,
                                                  4294967295.0,
                                                  4294967296.0,
                                                  9007199254740992.0,
                                                  1e19};
        if (pick(8) == 0) return remarkable[pick(remarkable.size())];
        return static_cast<double>(pick(12));
    }

    // An array: a result, a wavelet, a table of arrays, or numbers.
    Value earlier(int cols) {
        const std::size_t kind = pick(8);
        if (kind < 3 && !results_.empty()) return results_[pick(results_.size())];
        if (kind == 3)
            return host_.callRaw(pack(), "daublet", {Value(2.0 * static_cast<double>(1 + pick(4)))});
        if (kind == 4) return host_.callRaw(pack(), "Bspline", {Value(2), Value(4)});
        if (kind == 5) return Value::table({block(8, 1), block(8, 1), block(8, 1)});
        return block(sizes[pick(sizes.size())], cols);
    }

    // Few different numbers, as a pack keeps every wavelet that it meets.
    Value block(int rows, int cols) {
        std::minstd_rand random(static_cast<unsigned>(1 + pick(3)));
        std::vector<double> numbers(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols));
        for (double& cell : numbers) cell = static_cast<double>(random() % 200) / 100 - 1;
        if (!numbers.empty() && pick(4) == 0) numbers[pick(numbers.size())] = number();
        const bool complex = pick(16) == 0;
        return Value::matrix(rows, cols, numbers, complex ? std::span(numbers) : std::span<double>());
    }

    std::size_t pick(std::size_t count) { return data_.ConsumeIntegralInRange<std::size_t>(0, count - 1); }

    static constexpr std::array sizes = {1, 2, 3, 4, 8, 12, 16, 32, 64, 0};

    FuzzedDataProvider& data_;
    efihost::Host host_;
    int patience_ = 0;
    std::vector<Value> results_;
};

}  // namespace

void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    require(bytes < memoryLimit, "no call needs so much memory");
    try {
        return ::operator new(bytes);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    const std::size_t before = efihost::liveValues();
    FuzzedDataProvider data(bytes, count);
    Session(data).run();
    require(efihost::liveValues() == before, "all values are freed");
    return 0;
}
