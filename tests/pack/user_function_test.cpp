// User functions of one variable, as the pack's searches call them.
#include "frame/user_function.h"

#include <memory>

#include "support/pack.h"

namespace {

class UserFunction : public PackTest {
 protected:
    std::unique_ptr<double_to_double_lambda> root(const Value& function) {
        return std::make_unique<double_to_double_lambda>(inProgress.context(),
                                                         static_cast<aLambda*>(function.raw()));
    }

    efihost::Call inProgress{host};
};

}  // namespace

TEST_F(UserFunction, IsEvaluatedAndRooted) {
    int calls = 0;
    Value cube = Value::function([&calls](double x) {
        ++calls;
        return x * x * x;
    });
    auto function = root(cube);
    EXPECT_TRUE(function->rooted());
    EXPECT_EQ(host.leaks().roots, 1);
    EXPECT_EQ(host.leaks().interfaces, 1);
    EXPECT_FALSE(function->failed());
    double_to_double_func& base = *function;
    EXPECT_EQ(base.evaluate(2.0), 8.0);
    EXPECT_EQ(base.evaluate(-3.0), -27.0);
    EXPECT_EQ(calls, 2);
    EXPECT_FALSE(base.failed());
    function.reset();
    EXPECT_EQ(host.leaks().roots, 0);
    EXPECT_EQ(host.leaks().interfaces, 0);
}

TEST_F(UserFunction, FailsWithoutARealNumber) {
    Value answer;
    const Value echo =
        Value::function([&answer](const std::vector<Value>&) { return answer; }, TagFunctionAlt);
    auto function = root(echo);
    struct Case {
        Value answer;
        double value;
        bool fails;
    };
    const Case cases[] = {
        {std::complex(2.0, 1.0), 2.0, true},
        {std::complex(2.0, -0.0), 2.0, false},
        {"text", 0.0, true},
        {column({3}), 0.0, true},
        {Value::error("mine", 1), 0.0, true},
        {Value(), 0.0, true},
        {7, 7.0, false},
    };
    for (const Case& each : cases) {
        answer = each.answer;
        EXPECT_EQ(function->evaluate(1.0), each.value);
        EXPECT_EQ(function->failed(), each.fails) << (each.answer ? each.answer.tag() : -1);
    }
    answer = Value();
}

TEST_F(UserFunction, IsNotCalledAgainAfterAnInterruption) {
    const Value one = Value::function([](double) { return 1.0; });
    auto function = root(one);
    host.interruptEvaluationAt(2);
    EXPECT_EQ(function->evaluate(1.0), 1.0);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(function->evaluate(1.0), 0.0);
        EXPECT_TRUE(function->failed());
    }
    EXPECT_EQ(host.calls(Service::applyOne), 2);
}

TEST_F(UserFunction, IsNotRootedWithoutMemory) {
    const Value one = Value::function([](double) { return 1.0; });
    for (const Service service : {Service::openRootSet, Service::addRoot}) {
        host.failAt(service, 1);
        EXPECT_FALSE(root(one)->rooted());
        EXPECT_TRUE(host.happened());
        EXPECT_EQ(host.leaks().roots, 0);
        EXPECT_EQ(host.leaks().interfaces, 0);
    }
}

TEST_F(UserFunction, LetsGoWhateverIsThrown) {
    const Value one = Value::function([](double) { return 1.0; });
    host.throwAt(Service::addRoot, 1, messageText("stop"));
    EXPECT_THROW(root(one), const char*);
    EXPECT_EQ(host.leaks().interfaces, 0);

    auto function = root(one);
    host.throwAt(Service::applyOne, 1, foreigner());
    EXPECT_THROW(function->evaluate(1.0), Foreigner);
    host.throwAt(Service::removeRoot, 1, messageText("stop"));
    EXPECT_NO_THROW(function.reset());
    EXPECT_EQ(host.leaks().roots, 0);
    EXPECT_EQ(host.leaks().interfaces, 0);
}
