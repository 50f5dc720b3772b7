// The filters and the periodic transforms in all kinds of trouble.
#include "support/packets.h"
#include "support/robustness.h"

TEST(Robustness, OfFilters) {
    for (const char* family : {"daublet", "symmlet", "coiflet"}) expectRobust(family, {6});
}

TEST(Robustness, OfTransforms) {
    const auto newPair = [](int variant) -> std::vector<Value> {
        const Numbers taps = {0.5, 0.5, 0.5, 0.25, 0.5 + 1e-3 * variant, 0.25};
        return {signal(16), 2, Value::matrix(3, 2, taps), row({1, 0})};
    };
    for (const char* name : {"dwt", "idwt"}) {
        expectRobust({name, newPair, 2, "filter unimplemented (3)"});
        expectRobustWithNewFilter(name, {signal(16), 3}, 3);
        expectRobustWithNewFilter(name, {signal(16), 1}, 1, {-1, 1});
        expectRobustWithNewFilter(name, {signal(16), 0}, 0, {-1});
    }
    expectRobustWithNewFilter("dwt", {image(8, 4), 2}, 0);
    expectRobustWithNewFilter("idwt", {image(8, 4), 2}, 4 + 2 + 8 + 4);
}
