// The filters, the transforms and the accessors of subbands in all kinds of trouble.
#include "support/robustness.h"

namespace {

// Filters of the user's that the pack does not know yet.
Value freshFilter(int variant) {
    return column({0.5, 0.5 + 1e-3 * variant, 0.25});
}
Value freshPair(int variant) {
    return Value::matrix(3, 2, Numbers{0.5, 0.5, 0.5, 0.25, 0.5 + 1e-3 * variant, 0.25});
}

constexpr const char* refused = "filter unimplemented (3)";

}  // namespace

TEST(Robustness, OfFilters) {
    for (const char* family : {"daublet", "symmlet", "coiflet"}) {
        expectRobust({family, [](int) { return std::vector<Value>{6}; }});
    }
}

TEST(Robustness, OfTransformsOfSignals) {
    for (const char* name : {"dwt", "idwt"}) {
        const Value signal = column(noise(16));
        expectRobust({name,
                      [=](int variant) {
                          return std::vector<Value>{signal, 3, freshFilter(variant)};
                      },
                      3, refused});
        expectRobust({name,
                      [=](int variant) {
                          return std::vector<Value>{signal, 2, freshPair(variant), row({1, 0})};
                      },
                      2, refused});
        expectRobust({name,
                      [=](int variant) {
                          return std::vector<Value>{signal, 1, freshFilter(variant), -1, 1};
                      },
                      1, refused});
        expectRobust({name,
                      [=](int variant) {
                          return std::vector<Value>{signal, 0, freshFilter(variant), -1};
                      },
                      0, refused});
    }
}

TEST(Robustness, OfTransformsOfImages) {
    const Value image = Value::matrix(8, 4, noise(32));
    const auto arguments = [=](int variant) { return std::vector<Value>{image, 2, freshFilter(variant)}; };
    expectRobust({"dwt", arguments, 0, refused});
    expectRobust({"idwt", arguments, 4 + 2 + 8 + 4, refused});
}

TEST(Robustness, OfSubbands) {
    const Value vector = column(noise(12));
    const Value part = column(noise(6));
    expectRobust({"get_subband", [=](int) { return std::vector<Value>{vector, 2, 3}; }});
    expectRobust({"put_subband", [=](int) { return std::vector<Value>{vector, 1, 1, part}; }});
    for (const char* get : {"get_smooth", "get_detail"}) {
        expectRobust({get, [=](int) { return std::vector<Value>{vector, 1}; }});
    }
    for (const char* put : {"put_smooth", "put_detail"}) {
        expectRobust({put, [=](int) { return std::vector<Value>{vector, 1, part}; }});
    }
    expectRobust({"create_level", [](int) { return std::vector<Value>{3, 1}; }, 8});
    expectRobust({"create_level", [](int) { return std::vector<Value>{2, 2}; }, 16});
}
