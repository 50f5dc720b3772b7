// The host by itself, with a pack that shows it what it does.
#include <atomic>
#include <chrono>
#include <cmath>
#include <future>
#include <numeric>
#include <stdexcept>
#include <thread>

#include "efi/faults.h"
#include "efi/host.h"
#include "support/pack.h"

using efihost::Call;
using efihost::Error;
using efihost::LoadError;
using efihost::Pack;

namespace {

const Pack& samplePack() {
    static const Pack pack(SAMPLE_PACK_PATH);
    return pack;
}

// What the action throws.
template <class Thrown, class Action>
Thrown caught(Action action) {
    try {
        action();
    } catch (const Thrown& thrown) {
        return thrown;
    }
    throw std::logic_error("nothing thrown");
}

class HostTest : public PackTest {
 protected:
    template <class... Arguments>
    Value call(std::string_view name, Arguments&&... arguments) {
        return host.call(samplePack(), name, std::forward<Arguments>(arguments)...);
    }
};

using HostCall = HostTest;
using HostEvaluation = HostTest;
using HostServices = HostTest;

}  // namespace

TEST_F(HostCall, RefusesWhatCannotBeCalled) {
    for (const std::size_t count : {1u, 3u}) {
        const std::vector<Value> some(count, Value(1));
        const Error error = caught<Error>([&] { call("evaluate", some); });
        EXPECT_EQ(error.message(), "Wrong number of Arguments");
    }
    EXPECT_THROW(host.call(pack(), "dwt", std::vector<Value>(13, Value(1))), Error);
    EXPECT_THROW(call("identity", Value()), Error);
    EXPECT_THROW(call("sample", 1), Error);
}

TEST_F(HostCall, ReportsAnErrorValue) {
    const Error error = caught<Error>([&] { call("refuse", 1); });
    EXPECT_EQ(error.function(), "refuse");
    EXPECT_EQ(error.message(), "refused");
    EXPECT_EQ(error.argument(), 1);
    EXPECT_STREQ(error.what(), "refuse: refused (argument 1)");
    EXPECT_STREQ(Error("dwt", "out of memory", 0).what(), "dwt: out of memory");
    EXPECT_THROW(call("nothing", 1), Error);

    // Of the pack that the host knows it names the argument, as that form of the function has it.
    const auto textOf = [&](const char* name, const std::vector<Value>& arguments) -> std::string {
        return caught<Error>([&] { host.call(pack(), name, arguments); }).what();
    };
    EXPECT_EQ(textOf("dwt", {column(Numbers(8)), 4, column({std::sqrt(0.5), std::sqrt(0.5)})}),
              "dwt: invalid level (argument 2: level)");
    EXPECT_EQ(textOf("father", {0.5, 0, 0.5, "haar"}), "father: must be integer (argument 3: shift)");
    EXPECT_EQ(textOf("father", {0.5, "nothing"}),
              "father: invalid filter wavelet string (argument 2: wavelet)");
    EXPECT_EQ(textOf("dwt", {column(Numbers(8))}), "dwt: Wrong number of Arguments");
}

// Values come and go without the lock; a call waits for it.
TEST_F(HostCall, WaitsForTheLockAndReentersIt) {
    std::promise<void> entered;
    std::promise<void> leave;
    std::atomic<bool> leaving = false;
    const Value slow = Value::function([&](double x) {
        entered.set_value();
        leave.get_future().wait();
        return call("identity", x).real();
    });
    std::thread first([&] { EXPECT_EQ(call("evaluate", slow, 7).real(), 7.0); });
    entered.get_future().wait();
    EXPECT_EQ(Value::table({Value(1)}).nested(0, 0).real(), 1.0);
    std::thread second([&] {
        call("identity", 1);
        EXPECT_TRUE(leaving);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    leaving = true;
    leave.set_value();
    first.join();
    second.join();
}

TEST_F(HostEvaluation, CallsBothKindsOfFunctions) {
    EXPECT_EQ(call("evaluate", Value::function([](double x) { return 2 * x; }), 21).real(), 42.0);

    const Value count = Value::function([](const std::vector<Value>& arguments) {
        return Value::column(arguments.at(0).reals()).rows() + 0.5;
    });
    EXPECT_EQ(call("evaluate", count, Value::column(std::vector<double>(3))).real(), 3.5);

    const Value real = Value::function([](double x) { return x; });
    EXPECT_THROW(call("evaluate", real, std::complex(0.0, 1.0)), Error);
    EXPECT_THROW(call("evaluate", real, Value::adopt(1, 1, nullptr)), Error);
    EXPECT_THROW(call("evaluate", 3, 1), Error);  // not a function: no result
}

TEST_F(HostEvaluation, StopsAfterTheFirstException) {
    int calls = 0;
    const Value bad = Value::function([&](double) -> double {
        ++calls;
        throw std::runtime_error("once");
    });
    Call inProgress(host);
    EfiEvaluator& evaluator = *inProgress.context()->evaluator;
    const Value one(1);
    Anyval* result = one.raw();
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(evaluator.applyOne(static_cast<aLambda*>(bad.raw()), one.raw(), &result), efiInterrupted);
        EXPECT_EQ(result, nullptr);
    }
    EXPECT_EQ(evaluator.pollInterrupt(1), efiInterrupted);
    EXPECT_EQ(calls, 1);
    EXPECT_THROW(inProgress.finish(nullptr), std::runtime_error);
}

// The three things that packs know how to catch reach them.
TEST_F(HostEvaluation, LetsTheThreeKindsPass) {
    Call inProgress(host);
    const auto evaluate = [&](efihost::RealCallback callback) {
        const Value function = Value::function(std::move(callback));
        const Value one(1);
        Anyval* result = nullptr;
        inProgress.context()->evaluator->applyOne(static_cast<aLambda*>(function.raw()), one.raw(), &result);
    };
    auto* error = static_cast<aError*>(mkError(inProgress.context(), "text", 0, 0));
    EXPECT_THROW(evaluate([](double) -> double { throw "text"; }), const char*);
    EXPECT_THROW(evaluate([=](double) -> double { throw error; }), aError*);
    EXPECT_THROW(evaluate([](double) -> double { throw SE_FPE_Exception(0, 1); }), SE_FPE_Exception);
}

TEST_F(HostEvaluation, RecyclesResultsThatNothingHolds) {
    std::vector<Value> taken;
    const Value root = Value::function([](double x) { return x; });
    const Value function = Value::function([&](const std::vector<Value>& arguments) {
        if (arguments.at(0).real() == 3) taken.push_back(arguments.at(0));
        return Value::table({arguments.at(0)});
    });
    const Value holder = Value::table({Value(0), Value(0), Value(0), Value(0)});
    {
        Call inProgress(host);
        EfiCallContext& context = *inProgress.context();
        void* object = nullptr;
        ASSERT_EQ(context.allocator->QueryInterface(efiRootSetId, &object), 0);
        auto* roots = static_cast<EfiRootSet*>(object);
        Anyval** cell = nullptr;
        roots->addRoot(&cell);

        const auto evaluate = [&](double x) {
            aComplex argument{{TagScalar}, x, 0.0};  // a pack's own, not the host's
            Anyval* result = nullptr;
            EXPECT_EQ(context.evaluator->applyOne(static_cast<aLambda*>(function.raw()), &argument, &result),
                      0);
            return result;
        };
        *cell = evaluate(1);
        Cons* list = Cons::mk(context.allocator, evaluate(2), nullptr);
        evaluate(3);
        auto* nesting = static_cast<aMatrix*>(holder.raw());
        EXPECT_EQ(efiWriteNested(&context, nesting, 3, 0, evaluate(4)), 0);
        for (int i = 5; i < 1000; ++i) evaluate(i);

        EXPECT_EQ(Value::of(*cell).nested(0, 0).real(), 1.0);
        EXPECT_EQ(Value::of(list->value).nested(0, 0).real(), 2.0);
        EXPECT_EQ(taken.at(0).real(), 3.0);
        EXPECT_EQ(holder.nested(3, 0).nested(0, 0).real(), 4.0);
        EXPECT_LT(host.leaks().values, 20);

        roots->removeRoot(cell);
        roots->Release();
    }
    taken.clear();
    EXPECT_EQ(host.leaks().values, 2 + 5 + 1);  // functions, holder, and what is nested in it
}

// Each but those that the user holds, that are part of a result that lives, and that a root holds.
TEST_F(HostEvaluation, FreesWhatItLentInAList) {
    std::vector<Value> taken;
    const Value function = Value::function([&](const std::vector<Value>& arguments) {
        if (arguments.at(1).real() == 3) taken.push_back(arguments.at(0));
        return arguments.at(1).real() == 4 ? Value::table({arguments.at(0)}) : arguments.at(0);
    });
    Value nested;
    {
        Call inProgress(host);
        EfiCallContext& context = *inProgress.context();
        Anyval** cell = host.addRoot();
        const Value number(0);
        const auto evaluate = [&](double x) {
            aMatrix* lent = aMatrix::mk(context.allocator, 1, 1, new double(x), nullptr, 8);
            aComplex argument{{TagScalar}, x, 0.0};
            if (x == 2) *cell = lent;
            Cons* list = Cons::mk(context.allocator, lent, Cons::mk(context.allocator, &argument, nullptr));
            Anyval* result = nullptr;
            EXPECT_EQ(context.evaluator->applyList(static_cast<aLambda*>(function.raw()), list, &result), 0);
            return Value::of(result);
        };
        for (int i = 0; i < 1000; ++i) {
            const Value result = evaluate(i);
            if (i == 4) nested = result;
            EXPECT_EQ((i == 4 ? result.nested(0, 0) : result).at(0, 0).real(), i);
        }
        EXPECT_EQ(Value::of(*cell).at(0, 0).real(), 2.0);
        EXPECT_LT(host.leaks().values, 12);
        host.removeRoot(cell);
    }
    EXPECT_EQ(taken.at(0).at(0, 0).real(), 3.0);
    EXPECT_EQ(nested.nested(0, 0).at(0, 0).real(), 4.0);
    taken.clear();
    nested = {};
    EXPECT_EQ(host.leaks().values, 1);
}

TEST_F(HostEvaluation, AsksForInterruption) {
    int left = 3;
    host.setInterrupt([&] { return --left == 0; });
    EXPECT_EQ(caught<Error>([&] { call("poll", 10); }).message(), "interrupted");
    EXPECT_EQ(host.polls(), 3);

    host.setInterrupt([]() -> bool { throw std::range_error("asked"); });
    EXPECT_THROW(call("poll", 10), std::range_error);
    host.setInterrupt(nullptr);
    EXPECT_EQ(call("poll", 10).real(), 10.0);

    // One that another replaces while it is asked goes on to its end.
    const std::vector<int> numbers(100, 1);
    host.setInterrupt([this, numbers] {
        host.setInterrupt(nullptr);
        return std::accumulate(numbers.begin(), numbers.end(), 0) != 100;
    });
    EXPECT_EQ(call("poll", 10).real(), 10.0);
}

TEST_F(HostServices, FreesWhatACallMadeExceptItsResult) {
    Value result;
    {
        Call inProgress(host);
        EfiCallContext& context = *inProgress.context();
        auto* table = aMatrix::mk(context.allocator, 2, 1, nullptr, nullptr, 16);
        auto* column = aMatrix::mk(context.allocator, 1, 1, new double(7), new double(8), 8);
        aComplex* scalar = nullptr;
        context.allocator->newScalar(&scalar);
        *scalar = {{TagScalar}, 1.0, 0.0};
        const Cons* list = Cons::mk(context.allocator, scalar, Cons::mk(context.allocator, column, nullptr));
        EXPECT_EQ(list->next->value, column);
        mkError(&context, "text", 3, 0);
        EXPECT_EQ(efiWriteNested(&context, table, 1, 0, column), 0);
        result = inProgress.finish(table);
        EXPECT_EQ(host.leaks().values, 4);
    }
    EXPECT_EQ(host.leaks().values, 2);
    EXPECT_EQ(result.nested(1, 0).at(0, 0), std::complex(7.0, 8.0));
}

// What mk has not adopted is still the caller's: freed here, it would else be freed twice.
TEST_F(HostServices, AdoptNothingWhenTheyFail) {
    auto* re = new double[6];
    {
        Call inProgress(host);
        IqrAllocator* allocator = inProgress.context()->allocator;
        EXPECT_THROW(aMatrix::mk(allocator, 2, 3, re, nullptr, 49), const char*);
        EXPECT_THROW(aMatrix::mk(allocator, 2, 2, re, nullptr, 48), const char*);
        EXPECT_THROW(aMatrix::mk(allocator, -2, -3, re, nullptr, 48), const char*);
        EXPECT_THROW(aMatrix::mk(allocator, 1 << 30, 1 << 30, re, nullptr, 0), const char*);
        host.failAllocation(1);
        EXPECT_EQ(aMatrix::mk(allocator, 2, 3, re, nullptr, 48), nullptr);
        host.throwAt(1, fault(1));
        EXPECT_THROW(aMatrix::mk(allocator, 2, 3, re, nullptr, 48), SE_FPE_Exception);
    }
    delete[] re;
}

TEST_F(HostServices, FindReadAndWriteNestedCells) {
    Call inProgress(host);
    EfiCallContext* context = inProgress.context();
    const std::vector<double> six = {1, 2, 3, 4, 5, 6};
    Value outer = Value::matrix(2, 3, six);
    auto* matrix = static_cast<aMatrix*>(outer.raw());
    EXPECT_EQ(efiFindNested(context, matrix, 0), -1);

    outer.nest(1, 0, Value("one"));
    outer.nest(0, 2, Value("four"));
    EXPECT_EQ(efiFindNested(context, matrix, 0), 1);
    EXPECT_EQ(efiFindNested(context, matrix, 1), 1);
    EXPECT_EQ(efiFindNested(context, matrix, 2), 4);
    EXPECT_EQ(efiFindNested(context, matrix, 5), -1);
    EXPECT_EQ(Value::of(efiReadNested(context, matrix, 0, 2)).text(), "four");
    EXPECT_EQ(efiReadNested(context, matrix, 0, 0), nullptr);
    EXPECT_EQ(efiReadNested(context, matrix, 4, 0), nullptr);  // not the cell at place 4

    // Who has read a value may use it after another has taken its place.
    Anyval* former = efiReadNested(context, matrix, 1, 0);
    EXPECT_EQ(efiWriteNested(context, matrix, 1, 0, Value("two").raw()), 0);
    EXPECT_EQ(Value::of(former).text(), "one");
    EXPECT_EQ(outer.nested(1, 0).text(), "two");

    host.failAllocation(1);
    EXPECT_NE(efiWriteNested(context, matrix, 0, 0, former), 0);
    EXPECT_FALSE(outer.nested(0, 0));
    EXPECT_THROW(efiWriteNested(context, matrix, 2, 0, former), const char*);
    EXPECT_THROW(efiWriteNested(context, matrix, 0, 0, matrix), const char*);
    EXPECT_THROW(efiWriteNested(context, matrix, 0, 0, nullptr), const char*);

    // A record that the host did not make has nothing nested, whatever its fields say.
    double number = 0;
    aVector own;
    own.tag = TagArray;
    own.hostField = 1;
    own.re = &number;
    own.rows = own.cols = own.stride = 1;
    EXPECT_EQ(efiFindNested(context, &own, 0), -1);
    EXPECT_EQ(efiReadNested(context, &own, 0, 0), nullptr);
}

TEST_F(HostServices, CountReferencesAndKnowTheirInterfaces) {
    const EfiGuid unknownId = {1, 2, 3, {4}};
    const EfiGuid objectId = {0, 0, 0, {0xc0, 0, 0, 0, 0, 0, 0, 0x46}};
    Call inProgress(host);
    IqrAllocator* allocator = inProgress.context()->allocator;
    EfiEvaluator* evaluator = inProgress.context()->evaluator;

    void* roots = nullptr;
    ASSERT_GE(allocator->QueryInterface(efiRootSetId, &roots), 0);
    void* fromAllocator = nullptr;
    void* fromRoots = nullptr;
    ASSERT_GE(allocator->QueryInterface(objectId, &fromAllocator), 0);
    ASSERT_GE(static_cast<EfiRootSet*>(roots)->QueryInterface(objectId, &fromRoots), 0);
    EXPECT_EQ(fromAllocator, fromRoots);  // one object
    EXPECT_EQ(host.heldInterfaces(), 3);
    EXPECT_EQ(evaluator->AddRef(), 1u);
    EXPECT_EQ(host.heldInterfaces(), 4);

    void* none = roots;
    EXPECT_LT(allocator->QueryInterface(unknownId, &none), 0);
    EXPECT_EQ(none, nullptr);
    EXPECT_LT(evaluator->QueryInterface(efiRootSetId, &none), 0);
    host.failAllocation(1);
    EXPECT_LT(allocator->QueryInterface(efiRootSetId, &none), 0);
    EXPECT_EQ(none, nullptr);

    evaluator->Release();
    allocator->Release();
    allocator->Release();
    EXPECT_EQ(static_cast<EfiRootSet*>(roots)->Release(), 0u);
}

// A root that a pack takes and keeps is a pack's fault; its value lives all the same.
TEST_F(HostServices, RootsOutliveTheCall) {
    Anyval** cell = host.addRoot();
    {
        Call inProgress(host);
        *cell = aMatrix::mk(inProgress.context()->allocator, 1, 1, new double(7), nullptr, 8);
    }
    EXPECT_EQ(Value::of(*cell).at(0, 0), 7.0);
    EXPECT_EQ(host.leaks(), (TestHost::Leaks{1, 1, 0}));
    host.removeRoot(cell);
}

TEST(HostPack, TellsItsFunctions) {
    const Pack& pack = samplePack();
    EXPECT_EQ(pack.functions().size(), 5u);
    EXPECT_EQ(pack.names().at(2), "identity");
    EXPECT_EQ(pack.function("evaluate").arity, 2);
    EXPECT_TRUE(pack.has("poll"));
    EXPECT_FALSE(pack.has("pol"));
    EXPECT_EQ(pack.symbol("theEfi"), pack.table().data());
    EXPECT_EQ(pack.symbol("theOther"), nullptr);
}

TEST(HostPack, WithoutAPathIsTheOneBesideTheHost) {
    EXPECT_EQ(Pack().table().data(), pack().table().data());
}

TEST(HostPack, RefusesWhatIsNoPack) {
    const auto isLoaded = [](const char* path) {
        const LoadError error = caught<LoadError>([=] { Pack pack(path); });
        return std::string(error.what()).find("theEfi") != std::string::npos;
    };
    EXPECT_FALSE(isLoaded("/nowhere/libnothing.so"));
    EXPECT_FALSE(isLoaded("libc.so.6"));  // a path, not a name to be searched for
    EXPECT_TRUE(isLoaded(NO_PACK_PATH));
}
