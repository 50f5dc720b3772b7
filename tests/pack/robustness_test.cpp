// Every form of call, with arguments that are right, through every kind of trouble: each allocation of
// the pack refused, each service of the host without memory, an interruption at each poll, everything that
// a service may throw and something that it may not, a careless host. After each, the message and index are
// as they must be, nothing has leaked, the caller's floating-point state is untouched, and the same call
// succeeds. What was made to fail is counted by function, and printed at the end for `make reliability`.
#include <cfenv>
#include <cmath>
#include <cstdlib>
#include <map>
#include <ostream>
#include <set>

#include "reliability/tally.h"
#include "support/failing_new.h"
#include "support/floating_point.h"
#include "support/function_table.h"
#include "support/packets.h"

namespace {

struct GoodCall {
    std::string function;
    Arguments arguments;
    int polls;  // how often the call asks whether to stop
};

void PrintTo(const GoodCall& call, std::ostream* out) {
    *out << call.function;
}

// Each stands for a wavelet that the pack does not know yet.
const Value newFilter = column({0.5, 0.5, 0.25});  // from 0 to 2, the high-pass filter from -1 to 1
const Value newPair = Value::matrix(3, 2, Numbers{0.5, 0.5, 0.5, 0.25, 0.5, 0.25});

bool isNew(const Value& argument) {
    return argument.raw() == newFilter.raw() || argument.raw() == newPair.raw();
}

std::vector<GoodCall> goodCalls() {
    std::vector<GoodCall> calls;
    const auto add = [&](const std::string& function, const Arguments& arguments, int polls = 0) {
        calls.push_back({function, arguments, polls});
    };
    const auto addForms = [&](const std::string& function, const Arguments& arguments, int polls = 0) {
        for (const Arguments& wavelet : {Arguments{newFilter}, {newFilter, 0}, {newFilter, 0, 1}})
            add(function, joined(arguments, wavelet), polls);
    };
    for (const char* family : {"daublet", "symmlet", "coiflet"}) add(family, {6});
    add("Bspline", {3, 9});
    add("bl", {3});

    // A signal polls once a level. Of an image each column and each row does, but forwards with periodic
    // ends; and each level of the inverse with symmetric ends. All are long enough to need scratch of
    // their own.
    for (const char* name : {"dwt", "idwt"}) {
        addForms(name, {signal(256), 3}, 3);
        add(name, {signal(256), 2, newPair, row({1, 0})}, 2);
    }
    add("dwt", {Value::adopt(16, 1, nullptr), 1, haar()}, 1);
    add("dwt", {image(48, 32), 2, newFilter});
    add("idwt", {image(48, 32), 2, newFilter}, 24 + 16 + 48 + 32);
    for (const char* name : {"dwts", "idwts"}) add(name, {signal(301), 5, haar()}, 5);
    add("dwts", {image(41, 31), 2, haar()}, 41 + 31 + 21 + 16);
    add("idwts", {image(41, 31), 2, haar()}, 41 + 31 + 21 + 16 + 2);
    const Value daublet4 = efihost::Host().call(pack(), "daublet", 4);
    for (const char* name : {"dwti", "idwti"}) {
        add(name, {signal(256), 3, daublet4}, 3);
        add(name, {image(16, 16), 2, daublet4}, 16 + 16 + 8 + 8);
    }

    // Packets poll once for each that is split or merged; before, once for the data and, in the table of a
    // signal, once a level instead.
    const Value tree = basisRows({{1, 0}, {2, 3}, {3, 4}, {3, 5}});
    const Value blocks =
        basisOf(2, {{1, 1, 1}, {1, 0, 1}, {1, 1, 0}, {2, 0, 0}, {2, 0, 1}, {2, 1, 0}, {2, 1, 1}});
    addForms("wpt", {signal(512), 3}, 1 + 3);
    addForms("wpt", {signal(512), tree}, 1 + 3);
    addForms("iwpt", {signal(512), tree}, 3);
    for (const auto& [name, rows, cols, filter] :
         {std::tuple("wpt", 48, 32, newFilter), {"wpts", 41, 31, haar()}, {"wpti", 16, 16, daublet4}}) {
        add(name, {image(rows, cols), 2, filter}, 1);
        add(name, {image(rows, cols), blocks, filter}, 1 + 2);
        add(std::string("i") + name, {image(rows, cols), blocks, filter}, 2);
    }
    for (const auto& [name, length, filter] : {std::tuple("wpts", 301, haar()), {"wpti", 256, daublet4}}) {
        add(name, {signal(length), 3, filter}, 1 + 3);
        add(name, {signal(length), tree, filter}, 1 + 3);
        add(std::string("i") + name, {signal(length), tree, filter}, 3);
    }

    const Value square = Value::function([](double x) { return x * x; });
    const Value first = Value::function([](const Arguments& packet) { return Value(packet[0].at(0, 0)); });
    const Value itself = Value::function([](const Arguments& packet) { return packet[0]; });
    const Value quarter = basisOfLevel(2, 1);
    add("best_basis", {tableOf(5, 1, 2), square}, 4 + 2 + 1);
    add("best_basis", {tableOf(4, 5, 2), square}, 4 + 1 + 1);
    add("best_basis", {tableOf(2, 2, 0), square}, 1);
    for (const Value& function : {itself, first}) {
        add("evaltbl", {tableOf(5, 1, 2), function});
        add("evalbs", {image(4, 5), quarter, function});
    }
    add("applytbl", {tableOf(4, 5, 1), itself});
    add("applybs", {signal(16), tree, itself});
    add("extract_basis", {tableOf(16, 1, 3), tree}, 4);
    add("basis_display2d", {quarter}, 4);

    add("create_level", {3, 1}, 8);
    add("create_level", {2, 2}, 16);
    for (const int dimension : {1, 2}) add("wavebs", {5, dimension}, 5);
    add("get_subband", {signal(12), 2, 3});
    add("put_subband", {signal(12), 1, 1, signal(6)});
    for (const std::string part : {"smooth", "detail"}) {
        add("get_" + part, {signal(12), 1});
        add("put_" + part, {signal(12), 1, signal(6)});
    }
    add("get_subband2d", {image(6, 4), 1, 1, 0});
    add("get_smooth2d", {image(6, 4), 0});
    add("get_detail2d", {image(6, 4), 1, "D"});
    add("put_subband2d", {image(6, 4), 1, 1, 0, image(3, 2)});
    add("put_smooth2d", {image(6, 4), 1, image(3, 2)});
    add("put_detail2d", {image(6, 4), 1, image(3, 2), "V"});

    // A table polls once, that of an image once a level; the inverse of a signal once a packet.
    const Value bell = Value::function([](double x) { return std::sqrt(x); });
    const Value repeated = basisRows({{2, 0}, {1, 1}, {2, 1}, {1, 1}, {2, 0}});
    add("cpt", {signal(8), 2}, 1);
    add("lct", {image(8, 32), 1, bell}, 2);
    add("icpt", {signal(8), 2, repeated}, 3);
    add("icpt", {signal(6), 1, basisOfLevel(1, 1)}, 2);
    add("ilct", {image(8, 32), 1, quarter, bell});

    // One poll for each binary digit of a packet's index.
    for (const std::string dl : {"", "dl"}) {
        for (const Arguments& more : {Arguments(), {-1, 0}}) {
            add(dl + "father", joined(joined({0.5}, more), {"coif12"}));
            add(dl + "mother", joined(joined({0.5}, more), {"bs24"}), 1);
        }
        for (const Arguments& more : {Arguments(), {1, 0, 0}}) {
            add(dl + "father2d", joined(joined({0.5, 0.5}, more), {"symm8"}));
            add(dl + "mother2d", joined(joined({0.5, 0.5}, more), {"coif6", "D"}), 1 + 1);
        }
        addForms(dl + "wavelet", {0.5, 0, 0, 70}, 7);
        addForms(dl + "wavelet2d", {0.5, 0.2, 0, 0, 0, 70, 2}, 7 + 2);
    }
    // One poll for each shift that reaches the point, and those of its packet functions: shifts 4 and 5
    // reach 5.5; shifts 2 and 3 reach 5.5 / 2 from the support of [-1/2, 3/2]; 1 and 2 reach 4 / 2 from
    // that of [0, 1]. An image does without the first.
    addForms("waveterp", {5.5, signal(8), 0, 0}, 2);
    addForms("waveterp", {5.5, signal(8), 1, 1}, 2 * (1 + 1));
    addForms("waveterp2d", {1.5, 5.5, image(4, 8), 0, 0, 0});
    addForms("waveterp2d", {1.5, 5.5, image(4, 8), 1, 1, 1}, 2 * 2 * (1 + 1));
    add("swaveterp", {4, signal(8), 1, 1, haar()}, 2 * (1 + 1));
    add("swaveterp2d", {2, 4, image(4, 8), 1, 1, 0, haar()}, 2 * 2 * 1);
    return calls;
}

// Ways in which an array, or those nested in a table, may lie in memory. One that is absent counts as zeros.
using Memory = Value(int rows, int cols, const Numbers& values);

Value absent(int rows, int cols, const Numbers&) {
    return Value::adopt(rows, cols, nullptr);
}
Value zeros(int rows, int cols, const Numbers& values) {
    return Value::matrix(rows, cols, Numbers(values.size()));
}
Value inMemory(Memory* memory, const Value& argument) {
    if (!argument.anyNested()) return memory(argument.rows(), argument.cols(), argument.reals());
    Arguments cells;
    for (int i = 0; i < argument.rows(); ++i) cells.push_back(inMemory(memory, argument.nested(i, 0)));
    return Value::table(cells);
}

void overwrite(const Value& argument) {
    if (argument.isScalar()) static_cast<aComplex*>(argument.raw())->re = NaN;
    if (!argument.isMatrix()) return;
    for (int i = 0; argument.anyNested() && i < argument.rows(); ++i) overwrite(argument.nested(i, 0));
    const aMatrix& matrix = argument.matrix();
    for (int c = 0; matrix.re && c < matrix.cols; ++c)
        std::fill_n(matrix.re + std::ptrdiff_t{c} * matrix.stride, matrix.rows, NaN);
}

// Every trouble that is counted here was followed by a look at what is left over.
std::map<std::string, reliability::Tally>& tallies() {
    static std::map<std::string, reliability::Tally> all;
    return all;
}

class Report : public testing::Environment {
 public:
    void TearDown() override {
        if (std::getenv("UNDULA_RELIABILITY") == nullptr) return;
        std::vector<std::string> functions;
        for (const ListedFunction& function : listedFunctions()) functions.emplace_back(function.name);
        reliability::print(functions, tallies());
    }
};

const testing::Environment* const report = testing::AddGlobalTestEnvironment(new Report);

// What is alive: values, roots and interfaces of the host, and memory.
using Holdings = std::pair<TestHost::Leaks, long>;

class GoodCalls : public testing::TestWithParam<GoodCall> {
 protected:
    GoodCalls() : usual_(variant()), reference_(host_.call(pack(), GetParam().function, usual_)) {}

    // The arguments, with another new wavelet each time.
    static Arguments variant() {
        static int number = 0;
        ++number;
        Arguments arguments = GetParam().arguments;
        for (Value& argument : arguments) {
            if (!isNew(argument)) continue;
            Grid taps = Grid::of(argument);
            taps.values[1] += 1e-3 * number;
            argument = taps.value();
        }
        return arguments;
    }

    Holdings holdings() const { return {host_.leaks(), liveAllocations()}; }

    Value call(const Arguments& arguments, int callerKind = 0) {
        const UnusualCaller caller(callerKind);
        Value result = host_.callRaw(pack(), GetParam().function, arguments);
        EXPECT_TRUE(caller.undisturbed());
        return result;
    }

    // The same call again, and nothing left of the trouble.
    void expectRecovered(const Holdings& before) {
        host_.clear();
        EXPECT_TRUE(same(call(usual_), reference_));
        EXPECT_EQ(holdings(), before);
    }

    reliability::Tally& tally_ = tallies()[GetParam().function];
    TestHost host_;
    const Arguments usual_;
    const Value reference_;
};

}  // namespace

// The trials go on until the call does not come as far as the k-th allocation.
TEST_P(GoodCalls, SurviveLackOfOwnMemory) {
    std::string alternative = "out of memory (0)";
    for (std::size_t i = 0; i < usual_.size(); ++i) {
        if (isNew(GetParam().arguments[i]))
            alternative = "filter unimplemented (" + std::to_string(i + 1) + ")";
    }
    const Arguments first = variant();
    const long without = liveAllocations();
    call(first);
    const long kept = liveAllocations() - without;
    bool happened = true;
    for (int k = 1; happened; ++k) {
        SCOPED_TRACE("allocation " + std::to_string(k));
        const Arguments arguments = variant();
        Holdings before = holdings();
        {
            const FailingNew failing(k);
            const std::string complaint = PackTest::complaintOf(call(arguments));
            happened = failing.happened();
            EXPECT_TRUE(!happened || complaint == "out of memory (0)" || complaint == alternative)
                << complaint;
            tally_.ownMemory += happened;
        }
        EXPECT_TRUE(same(call(arguments), call(arguments)));
        before.second += kept;
        EXPECT_EQ(holdings(), before);
    }
}

TEST_P(GoodCalls, SurviveLackOfHostMemory) {
    bool happened = true;
    for (int k = 1; happened; ++k) {
        SCOPED_TRACE("allocation " + std::to_string(k) + " of the host");
        const Holdings before = holdings();
        host_.failAllocation(k);
        const bool refused = PackTest::complaintOf(call(usual_)) == "out of memory (0)";
        happened = host_.happened();
        EXPECT_EQ(refused, happened);
        tally_.hostMemory += happened;
        expectRecovered(before);
    }
}

TEST_P(GoodCalls, EndAtEachInterruption) {
    const int polls = GetParam().polls;
    host_.clear();
    call(usual_);
    ASSERT_EQ(host_.polls(), polls);
    for (int k = 1; k <= polls; ++k) {
        SCOPED_TRACE("poll " + std::to_string(k));
        const Holdings before = holdings();
        host_.interruptAt(k);
        EXPECT_EQ(PackTest::complaintOf(call(usual_)), "interrupted (0)");
        EXPECT_EQ(host_.polls(), k);
        expectRecovered(before);
    }
    ++tally_.calls;
    tally_.polls += polls;
}

TEST_P(GoodCalls, ReportWhatServicesThrow) {
    const std::pair<TestHost::Thrower, const char*> throwables[] = {
        {messageText("stop"), "stop (0)"},
        {errorValue("no", 2), "no (2)"},
        {fault(0xC0000094), "EXCEPTION_INT_DIVIDE_BY_ZERO (0)"},
    };
    for (int number = 0; number < serviceCount; ++number) {
        const auto service = static_cast<Service>(number);
        // A host that fails to let go of a root spoils no result.
        const bool spoils = service != Service::removeRoot;
        host_.clear();
        call(usual_);
        const int calls = host_.calls(service);
        for (int k = 1; k <= calls; ++k) {
            SCOPED_TRACE("service " + std::to_string(number) + ", call " + std::to_string(k));
            const Holdings before = holdings();
            for (const auto& [thrower, complaint] : throwables) {
                host_.throwAt(service, k, thrower);
                EXPECT_EQ(PackTest::complaintOf(call(usual_)), spoils ? complaint : "no error");
                expectRecovered(before);
                ++tally_.thrown;
            }
            if (!spoils) continue;
            host_.throwAt(service, k, foreigner());
            const UnusualCaller caller;
            EXPECT_THROW(host_.callRaw(pack(), GetParam().function, usual_), Foreigner);
            EXPECT_TRUE(caller.undisturbed());
            expectRecovered(before);
            ++tally_.thrown;
        }
    }
}

// Every service raises floating-point flags, rounds downward from then on, and calls the pack: the same
// function with other data and another wavelet, one that has rows of its own for the ends, the Fourier
// transforms of the host, and a wavelet that none of the calls could use. Of all the wavelets the last one
// stays selected.
TEST_P(GoodCalls, HeedNoCarelessHost) {
    struct Within {
        std::string function;
        Arguments arguments;
        Value result;
    };
    Arguments others = variant();
    if (others[0].isMatrix() && !others[0].anyNested())
        others[0] = noisyGrid(others[0].rows(), others[0].cols(), 9).value();
    std::vector<Within> within = {
        {GetParam().function, others, {}},
        {"wpti", {signal(32), 2, host_.call(pack(), "symmlet", 6)}, {}},
        {"cpt", {signal(24), 2}, {}},
        {"wpts", {image(6, 7), 1, host_.call(pack(), "Bspline", 2, 2)}, {}},
        {"dwt", {signal(8), 2, column({0.3, 0.9, -0.2, 0.4, 0.7, 0.1})}, {}},
    };
    for (auto& [function, arguments, result] : within) result = host_.callRaw(pack(), function, arguments);
    const auto selected = [&] {
        using OfPoint = aComplex*(EfiCallContext*, aComplex*, aComplex*, aComplex*, aComplex*);
        auto* wavelet = reinterpret_cast<OfPoint*>(pack().symbol(exportedName("wavelet", "SSSS").c_str()));
        efihost::Call call(host_);
        const Value x(0.3), zero(0);
        auto* const z = static_cast<aComplex*>(zero.raw());
        return call.finish(wavelet(call.context(), static_cast<aComplex*>(x.raw()), z, z, z));
    };
    const Value ofLast = selected();
    call(usual_);
    bool isWithin = false;
    host_.doAlways([&](Service service) {
        if (isWithin) return;
        isWithin = true;
        for (const auto& [function, arguments, result] : within) {
            EXPECT_TRUE(same(host_.callRaw(pack(), function, arguments), result)) << function;
            ++tally_.callsWithin;
        }
        isWithin = false;
#if !defined(_WIN32)  // where they trap
        raiseFaults();
#endif
        // These compute something, which would be rounded, too.
        if (service != Service::applyOne && service != Service::applyList && service != Service::transform)
            std::fesetround(FE_DOWNWARD);
    });
    EXPECT_TRUE(same(call(usual_), reference_));
    host_.doAlways([](Service) {});
    EXPECT_TRUE(same(selected(), ofLast));
}

// A user function writes into all that the call was given.
TEST_P(GoodCalls, ReadNothingAfterUserFunctionsHaveWrittenIt) {
    Arguments own;
    for (const Value& argument : usual_) {
        own.push_back(argument.isMatrix() ? inMemory(strided, argument) : argument);
        if (argument.isScalar()) own.back() = argument.scalar();
    }
    host_.doAlways([&](Service service) {
        if (service != Service::applyOne && service != Service::applyList) return;
        for (Value& argument : own) overwrite(argument);
    });
    EXPECT_TRUE(same(call(own), reference_));
    host_.doAlways([](Service) {});
}

TEST_P(GoodCalls, RoundToNearestWhoeverCalls) {
    for (int kind = 0; kind < UnusualCaller::kinds; ++kind) EXPECT_TRUE(same(call(usual_, kind), reference_));
}

TEST_P(GoodCalls, ReadArraysWhereverTheyLie) {
    for (std::size_t i = 0; i < usual_.size(); ++i) {
        if (!usual_[i].isMatrix()) continue;
        SCOPED_TRACE("argument " + std::to_string(i + 1));
        const auto with = [&](Memory* memory) {
            Arguments arguments = usual_;
            arguments[i] = inMemory(memory, usual_[i]);
            Value result = call(arguments);
            EXPECT_TRUE(same(arguments[i], inMemory(memory, usual_[i])));
            return result;
        };
        EXPECT_TRUE(same(with(strided), reference_));
        EXPECT_TRUE(same(with(absent), with(zeros)));
    }
}

TEST(GoodCallsOf, EveryForm) {
    std::set<std::pair<std::string, std::size_t>> listed;
    std::set<std::pair<std::string, std::size_t>> called;
    for (const ListedFunction& function : listedFunctions()) {
        for (const std::string& form : function.forms) listed.emplace(function.name, form.size());
    }
    for (const GoodCall& call : goodCalls()) called.emplace(call.function, call.arguments.size());
    EXPECT_EQ(called, listed);
}

// What only the first call of all makes. Whatever failed before, it keeps the same memory in the end.
TEST(FirstCalls, SurviveLackOfOwnMemory) {
    for (const auto& [function, arguments] : {std::pair("bl", Arguments{3}), {"father", {0.5, "bl2"}}}) {
        SCOPED_TRACE(function);
        TestHost host;
        const Value reference = host.call(pack(), function, arguments);
        int& refusals = tallies()[function].ownMemory;
        Holdings kept[2];
        for (const bool troubled : {false, true}) {
            const FreshPack fresh;
            const long before = liveAllocations();
            bool happened = troubled;
            for (int k = 1; happened; ++k) {
                const FailingNew failing(k);
                const Value result = host.callRaw(fresh, function, arguments);
                happened = failing.happened();
                EXPECT_EQ(result.isError(), happened);
                refusals += happened;
            }
            EXPECT_TRUE(same(host.call(fresh, function, arguments), reference));
            kept[troubled] = {host.leaks(), liveAllocations() - before};
        }
        EXPECT_EQ(kept[0], kept[1]);
    }
}

INSTANTIATE_TEST_SUITE_P(Pack, GoodCalls, testing::ValuesIn(goodCalls()), [](const auto& call) {
    return call.param.function + "_" + std::to_string(call.index);
});
