#include "support/robustness.h"

#include <cfenv>
#include <ostream>

#include "support/failing_new.h"

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

#if defined(_WIN32)

namespace {

// Rounds up, to 53 bits.
constexpr unsigned unusualWord = 0xA7F;

unsigned controlWord() {
    unsigned short word = 0;
    asm volatile("fnstcw %0" : "=m"(word));
    return word;
}

void setControlWord(unsigned wanted) {
    const auto word = static_cast<unsigned short>(wanted);
    asm volatile("fldcw %0" : : "m"(word));
}

}  // namespace

UnusualCaller::UnusualCaller() : state_(controlWord()) {
    setControlWord(unusualWord);
}

UnusualCaller::~UnusualCaller() {
    setControlWord(state_);
}

bool UnusualCaller::undisturbed() const {
    return controlWord() == unusualWord;
}

#else

namespace {

// The host's own work may raise FE_INEXACT, so that is raised from the start.
constexpr int raised = FE_INVALID | FE_INEXACT;

unsigned vectorState() {
#if defined(__SSE2__)
    return _mm_getcsr();
#else
    return 0;
#endif
}

void flushDenormals() {
#if defined(__SSE2__)
    _mm_setcsr(_mm_getcsr() | 0x8040);
#endif
}

}  // namespace

UnusualCaller::UnusualCaller() {
    std::fesetround(FE_UPWARD);
    std::feclearexcept(FE_ALL_EXCEPT);
    std::feraiseexcept(raised);
    volatile double third = 3.0;
    third = 1.0 / third;  // inexact for the vector unit, too
    flushDenormals();
    state_ = vectorState();
}

UnusualCaller::~UnusualCaller() {
    std::fesetenv(FE_DFL_ENV);
}

bool UnusualCaller::undisturbed() const {
    return std::fegetround() == FE_UPWARD && std::fetestexcept(FE_ALL_EXCEPT) == raised &&
           vectorState() == state_;
}

#endif

namespace {

// What a service may throw, and what is said then.
const std::vector<std::pair<TestHost::Thrower, const char*>>& throwables() {
    static const std::vector<std::pair<TestHost::Thrower, const char*>> all = {
        {messageText("stop"), "stop (0)"},
        {errorValue("no", 2), "no (2)"},
        {fault(0xC0000094), "EXCEPTION_INT_DIVIDE_BY_ZERO (0)"},
    };
    return all;
}

// What is alive: values, roots and interfaces of the host, and memory.
struct Holdings {
    TestHost::Leaks host;
    long memory;

    bool operator==(const Holdings&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Holdings& holdings) {
    return out << holdings.host << ", " << holdings.memory << " allocations";
}

int newVariant() {
    static int last = 0;
    return ++last;
}

class Trial {
 public:
    explicit Trial(const RobustCall& subject)
        : subject_(subject),
          usual_(subject.arguments(newVariant())),
          reference_(host_.call(pack(), subject.function, usual_)),
          kept_(keptByNewVariant()) {
        throwables();  // made before memory is counted
    }

    // The trials go on until the call does not come as far as the k-th allocation.
    void lackOfOwnMemory() {
        bool happened = true;
        for (int k = 1; happened; ++k) {
            SCOPED_TRACE("allocation " + std::to_string(k));
            const std::vector<Value> arguments = subject_.arguments(newVariant());
            const Holdings before = holdings();
            happened = refuseAllocation(k, arguments);
            EXPECT_TRUE(same(call(arguments), call(arguments)));
            Holdings after = holdings();
            after.memory -= kept_;
            EXPECT_EQ(after, before);
        }
    }

    void lackOfHostMemory() {
        bool happened = true;
        for (int k = 1; happened; ++k) {
            SCOPED_TRACE("allocation " + std::to_string(k) + " of the host");
            const Holdings before = holdings();
            host_.failAllocation(k);
            const bool refused = PackTest::complaintOf(call(usual_)) == "out of memory (0)";
            happened = host_.happened();
            EXPECT_EQ(refused, happened);
            expectRecovered(before);
        }
    }

    void interruptions() {
        host_.clear();
        call(usual_);
        ASSERT_EQ(host_.polls(), subject_.polls);
        for (int k = 1; k <= subject_.polls; ++k) {
            SCOPED_TRACE("poll " + std::to_string(k));
            const Holdings before = holdings();
            host_.interruptAt(k);
            expectComplaint("interrupted (0)");
            EXPECT_EQ(host_.polls(), k);
            expectRecovered(before);
        }
    }

    void exceptions() {
        for (int service = 0; service < serviceCount; ++service) exceptionsOf(static_cast<Service>(service));
    }

 private:
    const RobustCall& subject_;
    TestHost host_;
    const std::vector<Value> usual_;
    const Value reference_;
    const long kept_;

    Holdings holdings() const { return {host_.leaks(), liveAllocations()}; }

    // How much memory the pack keeps after a call of a new variant.
    long keptByNewVariant() {
        const std::vector<Value> arguments = subject_.arguments(newVariant());
        const long before = liveAllocations();
        call(arguments);
        return liveAllocations() - before;
    }

    Value call(const std::vector<Value>& arguments) {
        const UnusualCaller caller;
        Value result = host_.callRaw(pack(), subject_.function, arguments);
        EXPECT_TRUE(caller.undisturbed());
        return result;
    }
    void expectComplaint(const char* complaint) { EXPECT_EQ(PackTest::complaintOf(call(usual_)), complaint); }

    // Whether the call came as far as that.
    bool refuseAllocation(int k, const std::vector<Value>& arguments) {
        const FailingNew failing(k);
        const std::string complaint = PackTest::complaintOf(call(arguments));
        if (!failing.happened()) return false;
        EXPECT_TRUE(complaint == "out of memory (0)" || complaint == subject_.alternative) << complaint;
        return true;
    }

    // The same call again, and nothing left of the trouble.
    void expectRecovered(const Holdings& before) {
        host_.clear();
        EXPECT_TRUE(same(call(usual_), reference_));
        EXPECT_EQ(holdings(), before);
    }

    void exceptionsOf(Service service) {
        host_.clear();
        call(usual_);
        const int calls = host_.calls(service);
        // A host that fails to let go of a root spoils no result.
        const bool spoils = service != Service::removeRoot;
        for (int k = 1; k <= calls; ++k) {
            SCOPED_TRACE("service " + std::to_string(static_cast<int>(service)) + ", call " +
                         std::to_string(k));
            const Holdings before = holdings();
            for (const auto& [thrower, complaint] : throwables()) {
                host_.throwAt(service, k, thrower);
                expectComplaint(spoils ? complaint : "no error");
                expectRecovered(before);
            }
            if (!spoils) continue;
            host_.throwAt(service, k, foreigner());
            EXPECT_THROW(callWatched(), Foreigner);
            expectRecovered(before);
        }
    }

    // As call(), for one that throws.
    void callWatched() {
        const UnusualCaller caller;
        try {
            host_.callRaw(pack(), subject_.function, usual_);
        } catch (...) {
            EXPECT_TRUE(caller.undisturbed());
            throw;
        }
    }
};

}  // namespace

void expectRobust(const RobustCall& call) {
    SCOPED_TRACE(call.function);
    Trial trial(call);
    trial.lackOfOwnMemory();
    trial.lackOfHostMemory();
    trial.interruptions();
    trial.exceptions();
}

void expectRobust(const std::string& function, const std::vector<Value>& arguments, int polls) {
    expectRobust({function, [=](int) { return arguments; }, polls});
}
