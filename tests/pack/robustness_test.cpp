// Every form of call, with arguments that are right, through every kind of trouble: each allocation of
// the pack refused, each service of the host without memory, an interruption at each poll, everything that
// a service may throw and something that it may not, a careless host. After each, the message and index are
// as they must be, nothing has leaked, the caller's floating-point state is untouched, and the same call
// succeeds.
#include <cmath>
#include <ostream>

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
const Value newDegree(0);  // as long as there are others

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
    add("bl", {newDegree});

    // Up to 128 numbers of scratch need no allocation: some data is longer. A signal polls once a level. Of
    // an image each column and each row does, but forwards with periodic ends; and each level of the inverse
    // with symmetric ends.
    for (const char* name : {"dwt", "idwt"}) {
        addForms(name, {signal(512), 3}, 3);
        add(name, {signal(16), 2, newPair, row({1, 0})}, 2);
    }
    add("dwt", {Value::adopt(16, 1, nullptr), 1, haar()}, 1);
    add("dwt", {image(8, 4), 2, newFilter});
    add("idwt", {image(8, 4), 2, newFilter}, 4 + 2 + 8 + 4);
    for (const char* name : {"dwts", "idwts"}) add(name, {signal(37), 5, haar()}, 5);
    add("dwts", {image(13, 7), 2, haar()}, 13 + 7 + 7 + 4);
    add("idwts", {image(13, 7), 2, haar()}, 13 + 7 + 7 + 4 + 2);
    const Value daublet4 = efihost::Host().call(pack(), "daublet", 4);
    for (const char* name : {"dwti", "idwti"}) {
        add(name, {signal(32), 3, daublet4}, 3);
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
         {std::tuple("wpt", 8, 4, newFilter), {"wpts", 5, 7, haar()}, {"wpti", 16, 16, daublet4}}) {
        add(name, {image(rows, cols), 2, filter}, 1);
        add(name, {image(rows, cols), blocks, filter}, 1 + 2);
        add(std::string("i") + name, {image(rows, cols), blocks, filter}, 2);
    }
    for (const auto& [name, length, filter] : {std::tuple("wpts", 13, haar()), {"wpti", 64, daublet4}}) {
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
    add("lct", {image(8, 64), 1, bell}, 2);
    add("icpt", {signal(8), 2, repeated}, 3);
    add("icpt", {signal(6), 1, basisOfLevel(1, 1)}, 2);
    add("ilct", {image(8, 4), 1, quarter, bell});

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
        addForms(dl + "wavelet", {0.5, 0, 0, 99}, 7);
        addForms(dl + "wavelet2d", {0.5, 0.2, 0, 0, 0, 5, 2}, 3 + 2);
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
            if (argument.raw() == newDegree.raw()) argument = number % 7;
            if (!isNew(argument)) continue;
            Grid taps = Grid::of(argument);
            taps.values[1] += 1e-3 * number;
            argument = taps.value();
        }
        return arguments;
    }

    Holdings holdings() const { return {host_.leaks(), liveAllocations()}; }

    Value call(const Arguments& arguments) {
        const UnusualCaller caller;
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
        }
        EXPECT_TRUE(same(call(arguments), call(arguments)));
        before.second += kept;
        // Other tests may have asked for some of the degrees.
        if (GetParam().function == "bl") continue;
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
            }
            if (!spoils) continue;
            host_.throwAt(service, k, foreigner());
            const UnusualCaller caller;
            EXPECT_THROW(host_.callRaw(pack(), GetParam().function, usual_), Foreigner);
            EXPECT_TRUE(caller.undisturbed());
            expectRecovered(before);
        }
    }
}

// Every service raises floating-point flags; every poll and every user function calls the pack with a
// wavelet that none of the calls could use. Of all the wavelets the last one stays selected.
TEST_P(GoodCalls, HeedNoCarelessHost) {
    const auto select = [&](const Value& filter) { host_.call(pack(), "dwt", signal(4), 0, filter); };
    const auto selected = [&] {
        using OfPoint = aComplex*(EfiCallContext*, aComplex*, aComplex*, aComplex*, aComplex*);
        auto* wavelet = reinterpret_cast<OfPoint*>(pack().symbol(exportedName("wavelet", "SSSS").c_str()));
        efihost::Call call(host_);
        const Value x(0.3), zero(0);
        auto* const z = static_cast<aComplex*>(zero.raw());
        return call.finish(wavelet(call.context(), static_cast<aComplex*>(x.raw()), z, z, z));
    };
    const Value nested = column({0.3, 0.9, -0.2, 0.4, 0.7, 0.1});
    select(nested);
    const Value ofNested = selected();
    call(usual_);
    const Value ofCall = selected();
    bool calledBack = false;
    host_.doAlways([&](Service service) {
        if (service == Service::pollInterrupt || service == Service::applyOne ||
            service == Service::applyList) {
            calledBack = true;
            select(nested);
        }
#if !defined(_WIN32)  // where they trap
        raiseFaults();
#endif
    });
    EXPECT_TRUE(same(call(usual_), reference_));
    host_.doAlways([](Service) {});
    EXPECT_TRUE(same(selected(), calledBack ? ofNested : ofCall));
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

INSTANTIATE_TEST_SUITE_P(Pack, GoodCalls, testing::ValuesIn(goodCalls()), [](const auto& call) {
    return call.param.function + "_" + std::to_string(call.index);
});
