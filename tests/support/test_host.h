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
#include <string>

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
    // The k-th call of one service fails: it answers null, or a failing status; an evaluation
    // and a transform answer with a null result.
    void failAt(Service service, int k);
    // The k-th call of a service, or of any, throws.
    void throwAt(Service service, int k, Thrower thrower);
    void throwAt(int k, Thrower thrower);
    // The k-th poll, or the k-th evaluation of either kind, says that the user has interrupted.
    void interruptAt(int k);
    void interruptEvaluationAt(int k);

    void clear();

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

    aMatrix* makeMatrix(int rows, int cols, double* re, double* im, unsigned bytes) override;
    aComplex* makeScalar() override;
    Cons* makeCell(Anyval* value, Cons* next) override;
    Anyval* makeError(const char* message, int argIndex) override;
    EfiRootSet* openRootSet() override;
    Anyval** addRoot() override;
    void removeRoot(Anyval** cell) override;
    std::int32_t applyList(aLambda* function, Cons* arguments, Anyval** result) override;
    std::int32_t applyOne(aLambda* function, Anyval* argument, Anyval** result) override;
    std::int32_t pollInterrupt() override;
    aMatrix* transform(Anyval* column, bool inverse) override;
    std::int64_t findNested(const aMatrix* matrix, std::int64_t from) override;
    Anyval* readNested(const aMatrix* matrix, int row, int col) override;
    std::int32_t writeNested(aMatrix* matrix, int row, int col, Anyval* value) override;

 private:
    enum class Trouble { none, failure, interruption };
    struct Order {
        std::function<bool(Service)> concerns;
        int countdown;
        Trouble trouble;
        Thrower thrower;
    };

    void give(Order order);
    // Counts a call; carries out the order when its moment has come.
    Trouble arrive(Service service);
    std::int32_t evaluate(Service service, Anyval** result, const std::function<std::int32_t()>& evaluation);

    std::array<int, serviceCount> calls_{};
    std::optional<Order> order_;
    bool happened_ = false;
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
