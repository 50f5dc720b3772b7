// Faults of the pack's arithmetic, and the floating-point state around a call.
#include <cfenv>
#include <cmath>
#include <limits>

#include "frame/dispatch.h"
#include "frame/floating_point.h"
#include "frame/host_services.h"
#include "support/failing_new.h"
#include "support/floating_point.h"
#include "support/function_table.h"
#include "support/packets.h"

namespace {

constexpr double largest = std::numeric_limits<double>::max();

// Workers behind the pack's dispatcher. Each computes with its argument. A product that is kept is
// volatile, since a unit of more range than double overflows when it stores.
using Worker = aComplex* (*)(EfiCallContext*, aComplex*);

aComplex* scalar(EfiCallContext* context, double value) {
    return undula::toHost(context, undula::newScalar(context, value));
}

const Worker invert = [](EfiCallContext* context, aComplex* x) { return scalar(context, 1.0 / x->re); };
const Worker multiply = [](EfiCallContext* context, aComplex* x) { return scalar(context, x->re * x->re); };
const Worker cancel = [](EfiCallContext* context, aComplex* x) { return scalar(context, x->re - x->re); };
const Worker add = [](EfiCallContext* context, aComplex* x) { return scalar(context, 1.0 + x->re); };
const Worker squareInvertAndCancel = [](EfiCallContext* context, aComplex* x) {
    const volatile double infinite = 1.0 / (x->re - largest) + x->re * x->re;
    return scalar(context, infinite - infinite);
};
const Worker squareAndCancel = [](EfiCallContext* context, aComplex* x) {
    const volatile double infinite = x->re * x->re;
    return scalar(context, infinite - infinite);
};
const Worker squareAndComplain = [](EfiCallContext* context, aComplex* x) -> aComplex* {
    const volatile double infinite = x->re * x->re;
    return static_cast<aComplex*>(
        undula::makeError(context, std::isinf(infinite) ? "mine" : "no overflow", 1));
};

class FloatingPoint : public PackTest {
 protected:
    std::string outcome(Worker worker, double x) {
        const Value argument(x);
        efihost::Call call(host);
        return complaintOf(call.finish(dispatch(worker, call, argument)));
    }
    static Anyval* dispatch(Worker worker, efihost::Call& call, const Value& argument) {
        using undula::form::S;
        return undula::dispatch<S(S)>(worker, call.context(), argument.raw());
    }
};

}  // namespace

TEST_F(FloatingPoint, ReportsFaultsOfTheWorker) {
    EXPECT_EQ(outcome(invert, 0.0), "singularity (0)");
    EXPECT_EQ(outcome(multiply, largest), "overflow (0)");
    EXPECT_EQ(outcome(cancel, inf), "floating point error (0)");
    EXPECT_EQ(outcome(squareInvertAndCancel, largest), "singularity (0)");
    EXPECT_EQ(outcome(squareAndCancel, largest), "overflow (0)");
    EXPECT_EQ(outcome(squareAndComplain, largest), "overflow (0)");
}

TEST_F(FloatingPoint, ReportsNothingElse) {
    for (const double x : {NaN, inf, -inf, 3.0, 1e-300, 5e-324}) {
        EXPECT_EQ(outcome(add, x), "no error") << x;
        EXPECT_EQ(outcome(multiply, x), "no error") << x;
    }
    EXPECT_EQ(outcome(invert, NaN), "no error");
    EXPECT_EQ(outcome(invert, inf), "no error");
}

TEST_F(FloatingPoint, PrefersWhatTheHostThrew) {
    host.throwAt(Service::makeScalar, 1, messageText("stop"));
    EXPECT_EQ(outcome(multiply, largest), "stop (0)");
    host.throwAt(Service::makeScalar, 1, fault(0xC0000092));
    EXPECT_EQ(outcome(multiply, 1.0), "EXCEPTION_FLT_STACK_CHECK (0)");
}

TEST_F(FloatingPoint, NamesThePlatformsExceptions) {
    struct Named {
        std::uint32_t code;
        std::string name;
    };
    const auto expectName = [&](std::uint32_t code, const std::string& name) {
        host.throwAt(Service::pollInterrupt, 1, fault(code));
        EXPECT_EQ(complaint("create_level", 1, 1), name + " (0)");
    };
    expectName(0xC000008E, "singularity");
    expectName(0xC0000090, "floating point error");
    expectName(0xC0000091, "overflow");
    const Named others[] = {{0xC000008D, "FLT_DENORMAL_OPERAND"}, {0xC000008F, "FLT_INEXACT_RESULT"},
                            {0xC0000092, "FLT_STACK_CHECK"},      {0xC0000093, "FLT_UNDERFLOW"},
                            {0xC0000094, "INT_DIVIDE_BY_ZERO"},   {0xC0000095, "INT_OVERFLOW"},
                            {0xC0000096, "PRIV_INSTRUCTION"},     {0xC00000FD, "STACK_OVERFLOW"},
                            {0x80000001, "GUARD_PAGE"},           {0x80000002, "DATATYPE_MISALIGNMENT"},
                            {0x80000003, "BREAKPOINT"},           {0x80000004, "SINGLE_STEP"},
                            {0xC0000005, "ACCESS_VIOLATION"},     {0xC0000006, "IN_PAGE_ERROR"},
                            {0xC000001D, "ILLEGAL_INSTRUCTION"},  {0xC0000025, "NONCONTINUABLE_EXCEPTION"},
                            {0xC0000026, "INVALID_DISPOSITION"},  {0xC000008C, "ARRAY_BOUNDS_EXCEEDED"},
                            {0xC000008B, "UNKNOWN_EXCEPTION"},    {0, "UNKNOWN_EXCEPTION"}};
    for (const auto& [code, name] : others) expectName(code, "EXCEPTION_" + name);
}

// Services may raise flags, or clear them, as somebody else's code may.
TEST_F(FloatingPoint, BlamesNobodyForFlagsOfTheHost) {
    host.doAlways([](Service) { raiseFaults(); });
    EXPECT_EQ(complaint("dwt", column({1, 2}), 1, haar(), 0.5), "filter unimplemented (3)");
    EXPECT_EQ(outcome(add, 1.0), "no error");

    // Nor does a host that clears flags hide a fault.
    host.doAlways([](Service) { std::feclearexcept(FE_ALL_EXCEPT); });
    EXPECT_EQ(complaint("dwt", column({inf, -inf, 1, 1}), 1, haar()), "floating point error (0)");
    EXPECT_EQ(outcome(multiply, largest), "overflow (0)");
}

// Workers are exported, too. Without the frame, the state is that of whoever calls one.
TEST_F(FloatingPoint, OfAWorkerAloneIsTheCallers) {
    using Transform = aMatrix*(EfiCallContext*, aMatrix*, aComplex*, aMatrix*);
    auto* const dwt = reinterpret_cast<Transform*>(pack().symbol(exportedName("dwt", "MSM").c_str()));
    const Value signal = column({1, 2, 3, 4});
    const Value level(1);
    const auto outcome = [&](const Value& filter) {
        efihost::Call call(host);
        raiseFaults();
        const UnusualCaller caller;
        aMatrix* result = dwt(call.context(), static_cast<aMatrix*>(signal.raw()),
                              static_cast<aComplex*>(level.raw()), static_cast<aMatrix*>(filter.raw()));
        const bool undisturbed = caller.undisturbed();
        return std::pair(complaintOf(call.finish(result)), undisturbed);
    };
    EXPECT_EQ(outcome(column({0.1, 0.7, 0.3})), std::pair(std::string("no error"), true));
    EXPECT_EQ(outcome(column({1e200, 1e200, 1e100})).first, "filter unimplemented (3)");
}

TEST_F(FloatingPoint, LeavesTheCallersState) {
    const std::pair<Worker, double> computations[] = {
        {invert, 0.0}, {multiply, largest}, {cancel, inf}, {add, 1.0}};
    for (const auto& [worker, x] : computations) {
        const Value argument(x);
        efihost::Call inProgress(host);
        for (int kind = 0; kind < UnusualCaller::kinds; ++kind) {
            const UnusualCaller caller(kind);
            dispatch(worker, inProgress, argument);
            EXPECT_TRUE(caller.undisturbed());
        }

#if !defined(_WIN32)
        // Not even FE_INEXACT comes through.
        std::feclearexcept(FE_ALL_EXCEPT);
        std::feraiseexcept(FE_DIVBYZERO);
        dispatch(worker, inProgress, argument);
        EXPECT_EQ(std::fetestexcept(FE_ALL_EXCEPT), FE_DIVBYZERO);
        std::feclearexcept(FE_ALL_EXCEPT);
        dispatch(worker, inProgress, argument);
        EXPECT_EQ(std::fetestexcept(FE_ALL_EXCEPT), 0);
#endif
    }
}

// Where the filter meets them, and nowhere else; no fault where a signal meets itself around the end.
TEST_F(FloatingPoint, LetsInfinitiesAndNaNsThroughATransform) {
    for (const double strange : {inf, NaN}) {
        Numbers x(64, 1.0);
        x[20] = strange;
        const Numbers y = numbers("dwt", column(x), 1, call("daublet", 4));  // from 2k - 1 to 2k + 2
        for (std::size_t k = 0; k < 64; ++k)
            EXPECT_EQ(!std::isfinite(y[k]), 9 <= k % 32 && k % 32 <= 10) << k;
    }
    const Numbers image = numbers("dwt", Value::matrix(4, 2, Numbers{1, NaN, 2, 3, 4, 5, 6, 7}), 1, haar());
    EXPECT_TRUE(std::isnan(image[0]));
    EXPECT_TRUE(std::isfinite(image[1]) && std::isfinite(image[3]) && std::isfinite(image[5]));
    EXPECT_TRUE(std::isnan(numbers("idwt", column({NaN, 1, 2, 3}), 1, haar())[1]));
    EXPECT_EQ(complaint("dwt", column(Numbers(6, NaN)), 1, call("coiflet", 30)), "no error");

    for (const char* name : {"dwt", "idwt"}) {
        EXPECT_EQ(complaint(name, column({inf, -inf, inf, inf}), 1, haar()), "floating point error (0)");
        EXPECT_EQ(complaint(name, column(Numbers(4, largest)), 1, haar()), "overflow (0)");
        EXPECT_EQ(complaint(name, column(Numbers(8, 5e-324)), 3, haar()), "no error");
    }
}

// The filter that overflows in the making is not kept: the next call says the same.
TEST_F(FloatingPoint, KeepsNoFilterWhoseConstructionFaults) {
    const Value signal = column({1, 2, 3, 4});
    const Value huge = column({1e200, 1e200, 1e100});
    const Value hugePair = Value::matrix(2, 2, Numbers{0.5, 0.5, 1e200, -1e200});
    for (const Value& filter : {huge, hugePair}) {
        complaint("dwt", signal, 1, filter);
        const long before = liveAllocations();
        for (int i = 0; i < 3; ++i) EXPECT_TRUE(complaint("dwt", signal, 1, filter) == "overflow (0)");
        EXPECT_EQ(liveAllocations(), before);
    }
    EXPECT_EQ(numbers("dwt", signal, 0, haar()), (Numbers{1, 2, 3, 4}));
}
