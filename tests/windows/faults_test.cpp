// Faults of the processor, and the control word of the x87 unit, around and within a call.
#include <windows.h>

#include <cmath>
#include <limits>
#include <random>
#include <thread>

#include "efi/faults.h"
#include "frame/dispatch.h"
#include "frame/host_services.h"
#include "support/floating_point.h"
#include "support/function_table.h"
#include "support/pack.h"

namespace {

using ControlWord = unsigned short;

constexpr ControlWord ofThePack = 0x372;
constexpr double largest = std::numeric_limits<double>::max();

ControlWord controlWord() {
    ControlWord word = 0;
    asm volatile("fnstcw %0" : "=m"(word));
    return word;
}

void setControlWord(ControlWord word) {
    asm volatile("fldcw %0" : : "m"(word));
}

// Loads what cannot be loaded. The unit stays empty, and reports the fault when it is used again.
void leaveFault() {
    static const std::uint64_t signallingNaN = 0x7FF4000000000000;
    asm volatile("fldl %0" : : "m"(signallingNaN));
}

using Worker = aComplex*(EfiCallContext*, aComplex*);

ControlWord seen = 0;

aComplex* look(EfiCallContext* context, aComplex* x) {
    seen = controlWord();
    return undula::toHost(context, undula::newScalar(context, x->re));
}

class Faults : public PackTest {
 protected:
    // "message (index)" of what the pack's frame makes of a worker.
    std::string outcome(Worker* worker, double x = 0.0) {
        const Value argument(x);
        efihost::Call call(host);
        return complaintOf(call.finish(dispatch(worker, call, argument)));
    }
    static Anyval* dispatch(Worker* worker, efihost::Call& call, const Value& argument) {
        using undula::form::S;
        return undula::dispatch<S(S)>(worker, call.context(), argument.raw());
    }
    // The same of a user function that is called back from deep within a worker of the pack.
    std::string outcomeOfUser(efihost::RealCallback function) {
        return complaint("lct", column(noise(16)), 2, Value::function(std::move(function)));
    }
};

}  // namespace

TEST_F(Faults, TheWorkerRunsUnderThePacksControlWord) {
    for (int kind = 0; kind < UnusualCaller::kinds; ++kind) {
        const Value one(1.0);
        efihost::Call call(host);
        const UnusualCaller caller(kind);
        dispatch(look, call, one);
        EXPECT_TRUE(caller.undisturbed());
        EXPECT_EQ(seen, ofThePack);
    }
}

TEST_F(Faults, SoDoesAUserFunction) {
    for (int kind = 0; kind < UnusualCaller::kinds; ++kind) {
        const UnusualCaller caller(kind);
        seen = 0;
        const std::string answer = outcomeOfUser([](double x) {
            seen = controlWord();
            return x;
        });
        EXPECT_TRUE(caller.undisturbed());
        EXPECT_EQ(seen, ofThePack);
        EXPECT_EQ(answer, "no error");
    }
}

// What the caller has pending is forgotten, and nothing is pending afterwards.
TEST_F(Faults, OfTheCallerAreNoneOfThePacks) {
    const Value one(1.0);
    efihost::Call call(host);
    const UnusualCaller caller;  // who puts the word back
    setControlWord(ofThePack);
    leaveFault();
    Anyval* result = dispatch(look, call, one);
    unsigned short status = 0;
    asm volatile("fnstsw %0" : "=m"(status));
    EXPECT_EQ(status & 0xFF, 0);
    EXPECT_EQ(complaintOf(call.finish(result)), "no error");
}

namespace {

// Where in a function an instruction is at fault tells how much of its frame the unwinder must
// know. The objects on the stack must all be destroyed.

int destroyed = 0;

struct Counted {
    ~Counted() { ++destroyed; }
};

[[gnu::noinline]] double quotient(double x, double y) {
    return x / y;
}

aComplex* divideAtOnce(EfiCallContext* context, aComplex* x) {
    const Counted counted;
    return undula::toHost(context, undula::newScalar(context, 1.0 / x->re));
}

aComplex* divideDeepDown(EfiCallContext* context, aComplex* x) {
    const Counted outer;
    double sum = 0.0;
    for (int i = 3; i >= 0; --i) {
        const Counted inner;
        sum += quotient(i + 1.0, i + x->re);
    }
    return undula::toHost(context, undula::newScalar(context, sum));
}

// Nothing after the division may throw, in the eyes of a compiler, while the object lives.
[[gnu::noinline]] double divideLast(double x) {
    double quotient = 0.0;
    {
        const Counted counted;
        quotient = 1.0 / x;
    }
    return quotient;
}
aComplex* divideAtTheEndOfAScope(EfiCallContext* context, aComplex* x) {
    const double quotient = divideLast(x->re);
    return undula::toHost(context, undula::newScalar(context, quotient));
}

// The first instruction of the protected region.
aComplex* faultAtFirst(EfiCallContext* context, aComplex* x) {
    double answer = 0.0;
    try {
        answer = 1.0 / x->re;
    } catch (const SE_FPE_Exception& fault) {
        answer = fault.exceptionCode;
    }
    return undula::toHost(context, undula::newScalar(context, answer));
}

aComplex* leavePending(EfiCallContext* context, aComplex*) {
    aComplex* result = undula::toHost(context, undula::newScalar(context, 1.0));
    leaveFault();
    return result;
}

aComplex* faultThenCall(EfiCallContext* context, aComplex*) {
    leaveFault();
    undula::interrupted(context);
    return nullptr;
}

// All eight registers are full at the fault.
aComplex* divideWithAFullStack(EfiCallContext* context, aComplex* x) {
    asm volatile("fld1\n fld1\n fld1\n fld1\n fld1\n fld1\n fld1\n fld1\n fdivl %0\n fwait" : : "m"(x->re));
    return undula::toHost(context, undula::newScalar(context, 1.0));
}

template <double (*function)(double)>
aComplex* apply(EfiCallContext* context, aComplex* x) {
    const Counted counted;
    return undula::toHost(context, undula::newScalar(context, function(x->re)));
}

double floorOfSquare(double x) {
    return std::floor(x * x);
}
double ceilOfSquare(double x) {
    return std::ceil(x * x);
}
double exp2OfSquare(double x) {
    return std::exp2(x * x);
}
double cosOfSquare(double x) {
    return std::cos(x * x);
}

aComplex* divideIntegers(EfiCallContext* context, aComplex* x) {
    const Counted counted;
    volatile int zero = static_cast<int>(x->re);
    return undula::toHost(context, undula::newScalar(context, 7 / zero));
}

aComplex* readNowhere(EfiCallContext* context, aComplex* x) {
    const Counted counted;
    const volatile double* volatile nowhere = reinterpret_cast<const double*>(static_cast<int>(x->re) + 16);
    return undula::toHost(context, undula::newScalar(context, *nowhere));
}

}  // namespace

TEST_F(Faults, AreThrownWhereTheyHappen) {
    destroyed = 0;
    EXPECT_EQ(outcome(divideAtOnce), "singularity (0)");
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(outcome(divideDeepDown), "singularity (0)");
    EXPECT_EQ(destroyed, 6);
    EXPECT_EQ(outcome(divideAtTheEndOfAScope), "singularity (0)");
    EXPECT_EQ(destroyed, 7);
    EXPECT_EQ(outcome(divideWithAFullStack), "singularity (0)");
    const Value zero(0.0);
    efihost::Call call(host);
    EXPECT_EQ(call.finish(dispatch(faultAtFirst, call, zero)).real(), 0xC000008E);
}

TEST_F(Faults, StillPendingAtTheEndAreRaised) {
    EXPECT_EQ(outcome(leavePending), "floating point error (0)");
}

// A host, or a user function, that uses the unit does not meet the pack's fault.
TEST_F(Faults, WaitWhileTheHostIsAtWork) {
    int asked = 0;
    host.setInterrupt([&] {
        volatile double one = 1.0;
        one = one / 3.0;
        ++asked;
        return false;
    });
    EXPECT_EQ(outcome(faultThenCall), "floating point error (0)");
    EXPECT_EQ(asked, 1);
}

// The square of the largest number is at fault when it is stored, which nothing waits for.
TEST_F(Faults, ThatServicesLeaveBehindAreReported) {
    volatile double square = 0.0;
    host.setInterrupt([&] {
        square = largest * largest;
        return false;
    });
    EXPECT_EQ(complaint("dwt", column(noise(8)), 1, column({0.6, 0.8})), "overflow (0)");
}

// The bell's complement is the root of a negative number, in the mathematics library.
TEST_F(Faults, ThatCannotBeThrownLetOthersTrap) {
    EXPECT_EQ(outcomeOfUser([](double) {
                  EXPECT_EQ(controlWord(), ofThePack);
                  return 2.0;
              }),
              "floating point error (0)");
}

// The compiler does not expect throws from there: they are reported at the end.
TEST_F(Faults, OfTheMathematicsLibraryAreReported) {
    destroyed = 0;
    EXPECT_EQ(outcome(apply<std::sqrt>, -1.0), "floating point error (0)");
    EXPECT_EQ(outcome(apply<std::exp2>, 1e5), "overflow (0)");
    // Those of the pack's last instruction come to light in the library's first.
    for (Worker* worker :
         {apply<floorOfSquare>, apply<ceilOfSquare>, apply<exp2OfSquare>, apply<cosOfSquare>}) {
        EXPECT_EQ(outcome(worker, largest), "overflow (0)");
    }
    EXPECT_EQ(destroyed, 6);
}

TEST_F(Faults, OfOtherKindsHaveTheirCodes) {
    destroyed = 0;
    EXPECT_EQ(outcome(divideIntegers), "EXCEPTION_INT_DIVIDE_BY_ZERO (0)");
    EXPECT_EQ(outcome(readNowhere), "EXCEPTION_ACCESS_VIOLATION (0)");
    EXPECT_EQ(destroyed, 2);
}

TEST_F(Faults, OfUserFunctionsAreThrown) {
    volatile double zero = 0.0;
    EXPECT_EQ(outcomeOfUser([&](double) { return 1.0 / zero; }), "singularity (0)");
    EXPECT_EQ(outcomeOfUser([&](double) { return zero / zero; }), "floating point error (0)");
    EXPECT_EQ(outcomeOfUser([&](double) { return largest * (2.0 + zero); }), "overflow (0)");
    // Thrown, so that the function itself may catch it.
    EXPECT_EQ(outcomeOfUser([&](double x) {
                  try {
                      volatile double quotient = 1.0 / zero;
                      return quotient + x;
                  } catch (const SE_FPE_Exception&) {
                      return x;
                  }
              }),
              "no error");
}

namespace {

int handled = 0;

LONG CALLBACK countAndSkip(EXCEPTION_POINTERS* exception) {
    if (exception->ExceptionRecord->ExceptionCode != EXCEPTION_ILLEGAL_INSTRUCTION)
        return EXCEPTION_CONTINUE_SEARCH;
    ++handled;
    exception->ContextRecord->Eip += 2;  // ud2
    return EXCEPTION_CONTINUE_EXECUTION;
}

aComplex* makeAnotherThreadFault(EfiCallContext* context, aComplex* x) {
    std::thread([] { asm volatile("ud2"); }).join();
    return undula::toHost(context, undula::newScalar(context, x->re));
}

}  // namespace

// Outside a call, and on other threads, faults go to whom they belong.
TEST_F(Faults, OfOthersAreLeftAlone) {
    void* handler = AddVectoredExceptionHandler(0, &countAndSkip);
    handled = 0;
    asm volatile("ud2");
    EXPECT_EQ(handled, 1);
    EXPECT_EQ(outcome(makeAnotherThreadFault), "no error");
    EXPECT_EQ(handled, 2);
    asm volatile("ud2");
    EXPECT_EQ(handled, 3);
    RemoveVectoredExceptionHandler(handler);
}

namespace {

// Arguments among which every operation finds something to be at fault for.
class Extremes {
 public:
    explicit Extremes(unsigned seed) : random_(seed) {}

    Value argument(char letter) {
        switch (letter) {
            case 'S':
                return number();
            case 'T':
                return name();
            case 'F':
                return function();
            case 'V':
                return matrix(1);
            case 'A':
            case 'O':
                return below(3) == 0 ? Value(number()) : matrix(1 + below(4));
            default:
                return matrix(below(3) == 0 ? 1 + below(4) : 1);
        }
    }

 private:
    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

    double number() {
        constexpr double inf = std::numeric_limits<double>::infinity();
        constexpr double extremes[] = {largest, -largest, 1e200, 1e155, 1e-308, 5e-324, inf, -inf, NAN};
        return below(6) == 0 ? extremes[below(9)] : below(2) == 0 ? below(5) : below(64) / 8.0 - 2.0;
    }
    Value matrix(int cols) {
        constexpr int lengths[] = {1, 2, 3, 4, 8, 16};
        const int rows = lengths[below(6)];
        const bool tame = below(2) == 0;
        Numbers numbers(static_cast<std::size_t>(rows * cols));
        for (double& each : numbers) each = tame ? below(4) : number();
        return Value::matrix(rows, cols, numbers);
    }
    Value name() {
        constexpr const char* names[] = {"d4", "haar", "s8", "c6", "bl2", "bs13", "d999", "", "v"};
        return names[below(9)];
    }
    Value function() {
        const double value = number();
        if (below(2) == 0) return Value::function([value](double x) { return x * value; });
        const Value result = matrix(1);
        return Value::function(efihost::Callback(
            [result](const std::vector<Value>& given) { return given[0].isMatrix() ? given[0] : result; }));
    }

    std::mt19937 random_;
};

}  // namespace

// A fault that cannot be thrown ends the program.
TEST_F(Faults, AreSurvivedWhereverTheyHappen) {
    int faults = 0;
    for (const ListedFunction& function : listedFunctions()) {
        for (const auto& form : function.forms) {
            Extremes extremes(static_cast<unsigned>(form.size()));
            for (int i = 0; i < 2000; ++i) {
                std::vector<Value> arguments;
                for (const char letter : form) arguments.push_back(extremes.argument(letter));
                const std::string answer = complaintOf(host.callRaw(pack(), function.name, arguments));
                if (answer == "overflow (0)" || answer == "floating point error (0)" ||
                    answer == "singularity (0)")
                    ++faults;
                ASSERT_FALSE(answer.starts_with("EXCEPTION")) << function.name << ": " << answer;
            }
        }
        ASSERT_EQ(host.leaks().roots, 0) << function.name;
    }
    EXPECT_GT(faults, 1000);
}
