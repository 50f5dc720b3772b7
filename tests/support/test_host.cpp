#include "support/test_host.h"

#include <numeric>
#include <ostream>
#include <utility>

#include "efi/faults.h"

using efihost::Host;

namespace {

constexpr std::int32_t noMemory = -1;

bool allocates(Service service) {
    switch (service) {
        case Service::makeMatrix:
        case Service::makeScalar:
        case Service::makeCell:
        case Service::openRootSet:
        case Service::addRoot:
        case Service::writeNested:
            return true;
        default:
            return false;
    }
}

auto only(Service wanted) {
    return [=](Service service) { return service == wanted; };
}

bool evaluates(Service service) {
    return service == Service::applyOne || service == Service::applyList;
}

bool any(Service) {
    return true;
}

}  // namespace

TestHost::TestHost() : valuesAtFirst_(efihost::liveValues()) {}

void TestHost::failAllocation(int k) {
    give({allocates, k, Trouble::failure, {}});
}

void TestHost::failAt(Service service, int k) {
    give({only(service), k, Trouble::failure, {}});
}

void TestHost::throwAt(Service service, int k, Thrower thrower) {
    give({only(service), k, Trouble::none, std::move(thrower)});
}

void TestHost::throwAt(int k, Thrower thrower) {
    give({any, k, Trouble::none, std::move(thrower)});
}

void TestHost::interruptAt(int k) {
    give({only(Service::pollInterrupt), k, Trouble::interruption, {}});
}

void TestHost::interruptEvaluationAt(int k) {
    give({evaluates, k, Trouble::interruption, {}});
}

void TestHost::clear() {
    calls_ = {};
    order_.reset();
    happened_ = false;
}

void TestHost::give(Order order) {
    clear();
    order_ = std::move(order);
}

TestHost::Trouble TestHost::arrive(Service service) {
    ++calls_[static_cast<std::size_t>(service)];
    if (!order_ || !order_->concerns(service) || --order_->countdown > 0) return Trouble::none;
    const Order due = *std::exchange(order_, std::nullopt);
    happened_ = true;
    if (due.thrower) due.thrower(*this);
    return due.trouble;
}

int TestHost::calls() const {
    return std::accumulate(calls_.begin(), calls_.end(), 0);
}

TestHost::Leaks TestHost::leaks() const {
    const auto now = static_cast<std::int64_t>(efihost::liveValues());
    return {now - static_cast<std::int64_t>(valuesAtFirst_), liveRoots(), heldInterfaces()};
}

aMatrix* TestHost::makeMatrix(int rows, int cols, double* re, double* im, unsigned bytes) {
    if (arrive(Service::makeMatrix) == Trouble::failure) return nullptr;
    return Host::makeMatrix(rows, cols, re, im, bytes);
}

aComplex* TestHost::makeScalar() {
    if (arrive(Service::makeScalar) == Trouble::failure) return nullptr;
    return Host::makeScalar();
}

Cons* TestHost::makeCell(Anyval* value, Cons* next) {
    if (arrive(Service::makeCell) == Trouble::failure) return nullptr;
    return Host::makeCell(value, next);
}

Anyval* TestHost::makeError(const char* message, int argIndex) {
    if (arrive(Service::makeError) == Trouble::failure) return nullptr;
    return Host::makeError(message, argIndex);
}

EfiRootSet* TestHost::openRootSet() {
    if (arrive(Service::openRootSet) == Trouble::failure) return nullptr;
    return Host::openRootSet();
}

Anyval** TestHost::addRoot() {
    if (arrive(Service::addRoot) == Trouble::failure) return nullptr;
    return Host::addRoot();
}

void TestHost::removeRoot(Anyval** cell) {
    Host::removeRoot(cell);
    arrive(Service::removeRoot);
}

std::int32_t TestHost::evaluate(Service service, Anyval** result,
                                const std::function<std::int32_t()>& evaluation) {
    *result = nullptr;
    switch (arrive(service)) {
        case Trouble::interruption:
            return efiInterrupted;
        case Trouble::failure:
            return 0;
        default:
            return evaluation();
    }
}

std::int32_t TestHost::applyList(aLambda* function, Cons* arguments, Anyval** result) {
    return evaluate(Service::applyList, result, [&] { return Host::applyList(function, arguments, result); });
}

std::int32_t TestHost::applyOne(aLambda* function, Anyval* argument, Anyval** result) {
    return evaluate(Service::applyOne, result, [&] { return Host::applyOne(function, argument, result); });
}

std::int32_t TestHost::pollInterrupt() {
    if (arrive(Service::pollInterrupt) == Trouble::interruption) return efiInterrupted;
    return Host::pollInterrupt();
}

aMatrix* TestHost::transform(Anyval* column, bool inverse) {
    if (arrive(Service::transform) == Trouble::failure) return nullptr;
    return Host::transform(column, inverse);
}

std::int64_t TestHost::findNested(const aMatrix* matrix, std::int64_t from) {
    arrive(Service::findNested);
    return Host::findNested(matrix, from);
}

Anyval* TestHost::readNested(const aMatrix* matrix, int row, int col) {
    if (arrive(Service::readNested) == Trouble::failure) return nullptr;
    return Host::readNested(matrix, row, col);
}

std::int32_t TestHost::writeNested(aMatrix* matrix, int row, int col, Anyval* value) {
    if (arrive(Service::writeNested) == Trouble::failure) return noMemory;
    return Host::writeNested(matrix, row, col, value);
}

std::ostream& operator<<(std::ostream& out, const TestHost::Leaks& leaks) {
    return out << leaks.values << " values, " << leaks.roots << " roots, " << leaks.interfaces
               << " interfaces";
}

TestHost::Thrower messageText(const char* text) {
    return [=](TestHost&) { throw text; };
}

TestHost::Thrower errorValue(std::string message, int argument) {
    return
        [=](TestHost& host) { throw static_cast<aError*>(host.Host::makeError(message.c_str(), argument)); };
}

TestHost::Thrower fault(std::uint32_t code) {
    return [=](TestHost&) { throw SE_FPE_Exception(0, code); };
}

TestHost::Thrower foreigner(int number) {
    return [=](TestHost&) { throw Foreigner{number}; };
}
