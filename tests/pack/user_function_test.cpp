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
    const Value cube = Value::function([](double x) { return x * x * x; });
    auto function = root(cube);
    EXPECT_TRUE(function->rooted());
    EXPECT_EQ(host.leaks().roots, 1);
    EXPECT_EQ(host.leaks().interfaces, 1);
    EXPECT_FALSE(function->failed());
    double_to_double_func& base = *function;
    EXPECT_EQ(base.evaluate(2.0), 8.0);
    EXPECT_EQ(base.evaluate(-3.0), -27.0);
    EXPECT_EQ(host.calls(Service::applyOne), 2);
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
    for (const auto& [given, value, fails] : {std::tuple(Value(std::complex(2.0, 1.0)), 2.0, true),
                                              {std::complex(2.0, -0.0), 2.0, false},
                                              {"text", 0.0, true},
                                              {column({3}), 0.0, true},
                                              {Value::error("mine", 1), 0.0, true},
                                              {Value(), 0.0, true},
                                              {7, 7.0, false}}) {
        answer = given;
        EXPECT_EQ(function->evaluate(1.0), value);
        EXPECT_EQ(function->failed(), fails) << (answer ? answer.tag() : -1);
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
