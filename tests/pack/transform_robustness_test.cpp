// The filters and the periodic transforms in all kinds of trouble.
#include "support/robustness.h"

namespace {

// A transform with a filter of the user's that the pack does not know yet.
void expectFresh(const char* name, const Value& data, int levels, int polls, std::vector<Value> last = {},
                 bool pair = false) {
    const auto arguments = [&](int variant) {
        const double tap = 0.5 + 1e-3 * variant;
        const Value filter =
            pair ? Value::matrix(3, 2, Numbers{0.5, 0.5, 0.5, 0.25, tap, 0.25}) : column({0.5, tap, 0.25});
        std::vector<Value> all = {data, levels, filter};
        all.insert(all.end(), last.begin(), last.end());
        return all;
    };
    expectRobust({name, arguments, polls, "filter unimplemented (3)"});
}

}  // namespace

TEST(Robustness, OfFilters) {
    for (const char* family : {"daublet", "symmlet", "coiflet"}) expectRobust(family, {6});
}

TEST(Robustness, OfTransforms) {
    const Value signal = column(noise(16));
    const Value image = Value::matrix(8, 4, noise(32));
    for (const char* name : {"dwt", "idwt"}) {
        expectFresh(name, signal, 3, 3);
        expectFresh(name, signal, 2, 2, {row({1, 0})}, true);
        expectFresh(name, signal, 1, 1, {-1, 1});
        expectFresh(name, signal, 0, 0, {-1});
    }
    expectFresh("dwt", image, 2, 0);
    expectFresh("idwt", image, 2, 4 + 2 + 8 + 4);
}
