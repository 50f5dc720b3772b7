// The operations of the host's objects as a 32-bit Windows host has them: at these places of their
// tables, and removing their arguments themselves. The layout of the records is asserted in
// efi/layout.h; tools/check_windows looks at those in the library.
#include "support/pack.h"

namespace {

// The n-th operation of an object, whose first word points to the table of them.
template <class Result, class... Arguments>
Result operation(int n, void* object, Arguments... arguments) {
    using Operation = Result(__stdcall*)(void*, Arguments...);
    return (*static_cast<Operation**>(object))[n - 1](object, arguments...);
}

}  // namespace

TEST_F(PackTest, TheHostsOperationsAreInTheirPlaces) {
    const efihost::Call call(host);
    auto* const* context = reinterpret_cast<void* const*>(call.context());
    void* allocator = context[0];
    void* evaluator = context[1];

    aComplex* scalar = nullptr;
    operation<void>(9, allocator, &scalar);
    EXPECT_NE(scalar, nullptr);
    host.interruptAt(1);
    EXPECT_EQ((operation<std::int32_t>(11, evaluator, std::int32_t{1})), 1);

    void* roots = nullptr;
    ASSERT_EQ((operation<std::int32_t>(1, allocator, &efiRootSetId, &roots)), 0);
    Anyval** cell = nullptr;
    operation<void>(11, roots, &cell);
    EXPECT_EQ(host.liveRoots(), 1);
    operation<void>(12, roots, cell);
    EXPECT_EQ(host.liveRoots(), 0);
    EXPECT_EQ((operation<std::uint32_t>(2, roots)), 2u);
    EXPECT_EQ((operation<std::uint32_t>(3, roots)), 1u);
    operation<std::uint32_t>(3, roots);

    const Value function = Value::function([](double x) { return x + 1.0; });
    const Value two = 2;
    auto* lambda = static_cast<aLambda*>(function.raw());
    Cons list = {two.raw(), nullptr};
    Anyval* result = nullptr;
    operation<std::int32_t>(13, evaluator, lambda, two.raw(), &result);
    EXPECT_EQ(Value::of(result).real(), 3.0);
    result = nullptr;
    operation<std::int32_t>(4, evaluator, lambda, &list, &result);
    EXPECT_EQ(Value::of(result).real(), 3.0);
}
