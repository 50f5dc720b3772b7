// A host that makes trouble on demand, and counts what a pack asks of it.
//
//     TestHost host;
//     host.failAllocation(3);                                 // the third answers null
//     host.throwAt(Service::applyOne, 1, errorValue("no", 2));  // the first evaluation throws
//     host.interruptAt(5);                                    // the fifth poll says: stop
//     ... call something ...
//     EXPECT_TRUE(host.happened());                           // the call came as far as that
//     EXPECT_EQ(host.leaks(), TestHost::Leaks{});
//
// Counting begins anew with each order, and with clear(), which also cancels the order.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "efihost/host.h"

enum class Service {
    makeMatrix,
    makeScalar,
    makeCell,
    makeError,
    openRootSet,
    addRoot,
    removeRoot,
    applyList,
    applyOne,
    pollInterrupt,
    transform,
    findNested,
    readNested,
    writeNested,
};
inline constexpr int serviceCount = 14;

class TestHost : public efihost::Host {
 public:
    // Throws something out of a service.
    using Thrower = std::function<void(TestHost&)>;

    TestHost();

    // One order at a time. k counts from 1.

    // The k-th service that allocates (makeMatrix, makeScalar, makeCell, openRootSet, addRoot,
    // writeNested) answers that there is no memory.
    void failAllocation(int k);
    // The k-th call of a service, or of any, throws.
    void throwAt(Service service, int k, const Thrower& thrower) {
        give({{service}, k, Trouble::none, thrower});
    }
    void throwAt(int k, const Thrower& thrower) { give({{}, k, Trouble::none, thrower}); }
    // The k-th poll, or the k-th evaluation of either kind, says that the user has interrupted.
    void interruptAt(int k) { give({{Service::pollInterrupt}, k, Trouble::interruption, {}}); }
    void interruptEvaluationAt(int k) {
        give({{Service::applyOne, Service::applyList}, k, Trouble::interruption, {}});
    }

    void clear();

    // Done at each call of a service from now on.
    void doAlways(std::function<void(Service)> action) { always_ = std::move(action); }

    // Whether the service that the order is for was reached.
    bool happened() const { return happened_; }

    // Calls since the last order.
    int calls() const;
    int calls(Service service) const { return calls_[static_cast<std::size_t>(service)]; }
    int polls() const { return calls(Service::pollInterrupt); }

    // What is left over: between two calls, with the values that a test has made since the host
    // was made out of scope, all of these are 0.
    struct Leaks {
        std::int64_t values = 0;
        int roots = 0;
        int interfaces = 0;

        bool operator==(const Leaks&) const = default;
    };
    Leaks leaks() const;

    aMatrix* makeMatrix(int rows, int cols, double* re, double* im, unsigned bytes) override {
        return fails(Service::makeMatrix) ? nullptr : Host::makeMatrix(rows, cols, re, im, bytes);
    }
    aComplex* makeScalar() override { return fails(Service::makeScalar) ? nullptr : Host::makeScalar(); }
    Cons* makeCell(Anyval* value, Cons* next) override {
        return fails(Service::makeCell) ? nullptr : Host::makeCell(value, next);
    }
    Anyval* makeError(const char* message, int argIndex) override {
        return fails(Service::makeError) ? nullptr : Host::makeError(message, argIndex);
    }
    EfiRootSet* openRootSet() override { return fails(Service::openRootSet) ? nullptr : Host::openRootSet(); }
    Anyval** addRoot() override { return fails(Service::addRoot) ? nullptr : Host::addRoot(); }
    void removeRoot(Anyval** cell) override {
        Host::removeRoot(cell);
        arrive(Service::removeRoot);
    }
    std::int32_t applyList(aLambda* function, Cons* arguments, Anyval** result) override {
        return evaluate(Service::applyList, result,
                        [&] { return Host::applyList(function, arguments, result); });
    }
    // The function uses the scalar that a pack lends it as a variable of its own.
    std::int32_t applyOne(aLambda* function, Anyval* argument, Anyval** result) override {
        return evaluate(Service::applyOne, result, [&] {
            const std::int32_t status = Host::applyOne(function, argument, result);
            if (!efihost::Value::of(argument)) *static_cast<aComplex*>(argument) = {{TagError}, 3.0, 5.0};
            return status;
        });
    }
    std::int32_t pollInterrupt() override {
        const bool interrupted = arrive(Service::pollInterrupt) == Trouble::interruption;
        return interrupted ? efiInterrupted : Host::pollInterrupt();
    }
    aMatrix* transform(Anyval* column, bool inverse) override {
        return fails(Service::transform) ? nullptr : Host::transform(column, inverse);
    }
    std::int64_t findNested(const aMatrix* matrix, std::int64_t from) override {
        arrive(Service::findNested);
        return Host::findNested(matrix, from);
    }
    Anyval* readNested(const aMatrix* matrix, int row, int col) override {
        return fails(Service::readNested) ? nullptr : Host::readNested(matrix, row, col);
    }
    std::int32_t writeNested(aMatrix* matrix, int row, int col, Anyval* value) override {
        return fails(Service::writeNested) ? -1 : Host::writeNested(matrix, row, col, value);
    }

 private:
    enum class Trouble { none, failure, interruption };
    struct Order {
        std::set<Service> services;  // none for all
        int countdown;
        Trouble trouble;
        Thrower thrower;
    };

    void give(Order order);
    // Counts a call; carries out the order when its moment has come.
    Trouble arrive(Service service);
    bool fails(Service service) { return arrive(service) == Trouble::failure; }

    template <class Evaluation>
    std::int32_t evaluate(Service service, Anyval** result, Evaluation evaluation) {
        *result = nullptr;
        const Trouble trouble = arrive(service);
        if (trouble == Trouble::none) return evaluation();
        return trouble == Trouble::interruption ? efiInterrupted : 0;
    }

    std::array<int, serviceCount> calls_{};
    std::optional<Order> order_;
    bool happened_ = false;
    std::function<void(Service)> always_ = [](Service) {};
    std::size_t valuesAtFirst_;
};

std::ostream& operator<<(std::ostream& out, const TestHost::Leaks& leaks);

// The three kinds of thing that a service may throw, and something that it may not.
TestHost::Thrower messageText(const char* text);
TestHost::Thrower errorValue(std::string message, int argument);
TestHost::Thrower fault(std::uint32_t code);
struct Foreigner {
    int number;
};
TestHost::Thrower foreigner(int number = 0);
