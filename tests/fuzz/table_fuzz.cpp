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
#include <span>
#include <stdexcept>
#include <utility>
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
        host_.setInterrupt([this] { return --patience_ < 0; });
    }

    void run() {
        for (int calls = 0; calls < 12 && data_.remaining_bytes() > 0; ++calls) call();
    }

 private:
    void call() {
        const auto& function = among(listedFunctions());
        std::vector<Value> arguments;
        for (const char letter : among(function.forms)) {
            arguments.push_back(argument(rarely() ? "STMVF"[pick(5)] : letter, arguments.empty()));
        }
        patience_ = rarely() ? static_cast<int>(pick(20)) : 10000;
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

    Value argument(char letter, bool first) {
        switch (letter) {
            case 'S':
                return number();
            case 'T':
                return among(
                    std::array{"H", "V", "D", "haar", "daub4", "symm8", "coif6", "bl3", "bs24", "", "x9"});
            case 'F':
                return Value::function([this](const std::vector<Value>&) { return answer(); });
            case 'A':  // a number of levels, or a basis
            case 'O':  // the offsets or flips of a wavelet
                return pick(2) == 0 ? number() : array(false);
            default:
                return array(first);
        }
    }

    Value answer() {
        if (!rarely()) return number();
        switch (pick(3)) {
            case 0:
                throw Failed("a user function fails");
            case 1:
                return Value::error("refused", 1);
            default:
                return block();
        }
    }

    double number() {
        constexpr double inf = std::numeric_limits<double>::infinity();
        constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
        static constexpr std::array remarkable = {NaN,        inf,    -inf,   -1.0,       -0.5,
                                                  0.5,        1e-300, 1e300,  0x1p31 - 1, 0x1p31,
                                                  0x1p32 - 1, 0x1p32, 0x1p53, 1e19};
        return rarely() ? among(remarkable) : among(std::array{1.0, 0.0, 2.0, 3.0, 4.0, 6.0, 8.0});
    }

    // What comes first is mostly data; what follows, a wavelet.
    Value array(bool first) {
        switch (first ? pick(5) : pick(8)) {
            case 0:
                return results_.empty() ? block() : among(results_);
            case 1:
                return Value::table({block(), block(), block()});
            case 2:
                return fromPack("wavebs", {among(std::array{1, 2, 3}), among(std::array{1, 2})});
            case 3:
            case 4:
                return block();
            case 5:
                return fromPack("Bspline", {2, 4});
            default:
                return fromPack("daublet", {among(std::array{4, 2, 6, 8})});
        }
    }

    Value fromPack(const char* function, const std::vector<Value>& arguments) {
        patience_ = 10000;
        return host_.callRaw(pack(), function, arguments);
    }

    // Few different numbers, as a pack keeps every wavelet that it meets.
    Value block() {
        const int rows = rarely() ? among(std::array{0, 1, 2, 3, 12, 64}) : among(std::array{8, 4, 16});
        const int cols = rarely() ? among(std::array{0, 2, 3}) : among(std::array{1, rows});
        std::minstd_rand random(static_cast<unsigned>(1 + pick(3)));
        std::vector<double> numbers(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols));
        for (double& cell : numbers) cell = static_cast<double>(random() % 200) / 100 - 1;
        if (!numbers.empty() && rarely()) numbers[pick(numbers.size())] = number();
        return Value::matrix(rows, cols, numbers, rarely() ? std::span(numbers) : std::span<double>());
    }

    // When the input is used up, the first of several and never the rare: the plain cases.
    std::size_t pick(std::size_t count) { return data_.ConsumeIntegralInRange<std::size_t>(0, count - 1); }
    template <class Items>
    auto among(const Items& items) -> decltype(items[0]) {
        return items[pick(items.size())];
    }
    bool rarely() { return pick(32) == 31; }

    FuzzedDataProvider& data_;
    efihost::Host host_;
    int patience_ = 0;  // polls before the user interrupts
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
