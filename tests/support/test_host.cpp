#include "support/test_host.h"

#include <numeric>
#include <ostream>
#include <utility>

#include "efi/faults.h"

TestHost::TestHost() : valuesAtFirst_(efihost::liveValues()) {}

void TestHost::failAllocation(int k) {
    give({{Service::makeMatrix, Service::makeScalar, Service::makeCell, Service::openRootSet,
           Service::addRoot, Service::writeNested},
          k,
          Trouble::failure,
          {}});
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
    always_(service);
    ++calls_[static_cast<std::size_t>(service)];
    if (!order_ || (!order_->services.empty() && !order_->services.contains(service))) return Trouble::none;
    if (--order_->countdown > 0) return Trouble::none;
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
