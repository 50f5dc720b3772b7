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

    void expectHeld(int roots, int interfaces) {
        EXPECT_EQ(host.leaks().roots, roots);
        EXPECT_EQ(host.leaks().interfaces, interfaces);
    }

    efihost::Call inProgress{host};
    const Value one = Value::function([](double) { return 1.0; });
};

}  // namespace

TEST_F(UserFunction, IsEvaluatedAndRooted) {
    const Value cube = Value::function([](double x) { return x * x * x; });
    auto function = root(cube);
    EXPECT_TRUE(function->rooted());
    expectHeld(1, 1);
    EXPECT_FALSE(function->failed());
    double_to_double_func& base = *function;
    EXPECT_EQ(base.evaluate(2.0), 8.0);
    EXPECT_EQ(base.evaluate(-3.0), -27.0);
    EXPECT_EQ(host.calls(Service::applyOne), 2);
    EXPECT_FALSE(base.failed());
    function.reset();
    expectHeld(0, 0);
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
    for (const Case& each :
         {Case{std::complex(2.0, 1.0), 2.0, true}, Case{std::complex(2.0, -0.0), 2.0, false},
          Case{"text", 0.0, true}, Case{column({3}), 0.0, true}, Case{Value::error("mine", 1), 0.0, true},
          Case{Value(), 0.0, true}, Case{7, 7.0, false}}) {
        answer = each.answer;
        EXPECT_EQ(function->evaluate(1.0), each.value);
        EXPECT_EQ(function->failed(), each.fails) << (answer ? answer.tag() : -1);
    }
    answer = Value();
}

TEST_F(UserFunction, IsNotCalledAgainAfterAnInterruption) {
    auto function = root(one);
    host.interruptEvaluationAt(2);
    EXPECT_EQ(function->evaluate(1.0), 1.0);
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(function->evaluate(1.0), 0.0);
        EXPECT_TRUE(function->failed());
    }
    EXPECT_EQ(host.calls(Service::applyOne), 2);
}

TEST_F(UserFunction, LetsGoWhateverHappens) {
    for (const Service service : {Service::openRootSet, Service::addRoot}) {
        host.failAt(service, 1);
        EXPECT_FALSE(root(one)->rooted());
        expectHeld(0, 0);
    }
    host.throwAt(Service::addRoot, 1, messageText("stop"));
    EXPECT_THROW(root(one), const char*);
    expectHeld(0, 0);

    auto function = root(one);
    host.throwAt(Service::removeRoot, 1, messageText("stop"));
    EXPECT_NO_THROW(function.reset());
    expectHeld(0, 0);
}
