// The records of the pack as 32-bit words, and how its functions are called.
#include <windows.h>

#include <cstdint>
#include <cstring>

#include "support/function_table.h"
#include "support/pack.h"

namespace {

using Word = std::uint32_t;

// What a host without these headers sees.
const Word* words(const char* symbol) {
    return static_cast<const Word*>(pack().symbol(symbol));
}
const char* textAt(Word address) {
    return reinterpret_cast<const char*>(address);
}
Word addressOf(const char* symbol) {
    return reinterpret_cast<Word>(pack().symbol(symbol));
}

// The value of a variable that the host exports.
Word hostVariable(const char* name) {
    const auto address = GetProcAddress(GetModuleHandleA("efihost.dll"), name);
    return *reinterpret_cast<const Word*>(address);
}

Word signatureOf(const DocumentedFunction& function) {
    if (function.variadic()) return hostVariable("Variable_to_Any");
    std::string name = "Any";
    for (std::size_t i = 1; i < function.forms[0].size(); ++i) name += "_Any";
    return hostVariable((name + "_to_Any").c_str());
}

// Calls a function whose arguments are words, and answers by how much the stack lies off afterwards
// where the caller removes the arguments.
int stackMovedBy(Word function, const std::vector<Word>& arguments) {
    const Word* source = arguments.data();
    std::size_t count = arguments.size();
    int moved = 0;
    asm volatile(R"(
        movl %%esp, %%ebx
        leal (,%%ecx,4), %%eax
        subl %%eax, %%esp
        movl %%esp, %%edi
        rep movsl
        movl %%esp, %%edi
        call *%%edx
        subl %%esp, %%edi
        movl %%ebx, %%esp
    )"
                 : "=D"(moved), "+S"(source), "+c"(count), "+d"(function)
                 :
                 : "eax", "ebx", "memory", "cc");
    return moved;
}

}  // namespace

TEST(Abi, TheTableIsWordsInOrder) {
    EXPECT_EQ(*words("numFuncs"), 58u);
    const Word* row = words("theEfi");
    for (const DocumentedFunction& function : documentedFunctions()) {
        const std::string name(function.name);
        SCOPED_TRACE(name);
        const Word record = addressOf(("string_" + name).c_str());
        const std::string entry =
            exportedName(name, function.variadic() ? "#" : std::string(function.forms[0].size(), 'X'));
        EXPECT_EQ(row[0], signatureOf(function));
        EXPECT_EQ(row[1], 0u);
        EXPECT_EQ(row[2] & 0xFF, 0u);
        EXPECT_EQ(row[3], record);
        EXPECT_EQ(row[4], 0u);
        EXPECT_EQ(row[5], addressOf(entry.c_str()));
        EXPECT_EQ(row[6], 0u);

        const Word* words = reinterpret_cast<const Word*>(record);
        EXPECT_EQ(words[0], 3u);
        EXPECT_EQ(textAt(words[1]), name);
        EXPECT_EQ(words[2], name.size() + 1);
        EXPECT_EQ(words[3], 0u);
        row += 7;
    }
}

TEST(Abi, TheCallerRemovesTheArguments) {
    EXPECT_EQ(stackMovedBy(addressOf("DllUnregisterServer"), {}), 0);
    TestHost host;
    const Value argument = Value::ofTag(TagUnsupported);
    const Word* row = words("theEfi");
    for (const DocumentedFunction& function : documentedFunctions()) {
        const efihost::Call call(host);
        const std::size_t count = function.forms[0].size();
        std::vector<Word> arguments = {reinterpret_cast<Word>(call.context())};
        if (function.variadic()) arguments.push_back(count);
        arguments.insert(arguments.end(), count, reinterpret_cast<Word>(argument.raw()));
        EXPECT_EQ(stackMovedBy(row[5], arguments), 0) << function.name;
        EXPECT_EQ(host.calls(Service::makeError), 1) << function.name;
        host.clear();
        row += 7;
    }
}

// A host reads the operations of its objects from tables, at these places.
TEST(Abi, TheHostsOperationsAreInTheirPlaces) {
    TestHost host;
    const efihost::Call call(host);
    const auto operation = [](const void* object, std::size_t number) {
        return (*static_cast<const Word* const*>(object))[number - 1];
    };
    const auto* context = reinterpret_cast<const Word*>(call.context());
    auto* allocator = reinterpret_cast<void*>(context[0]);
    auto* evaluator = reinterpret_cast<void*>(context[1]);

    using NewScalar = void(__stdcall*)(void*, aComplex**);
    aComplex* scalar = nullptr;
    reinterpret_cast<NewScalar>(operation(allocator, 9))(allocator, &scalar);
    EXPECT_NE(scalar, nullptr);
    EXPECT_EQ(host.calls(Service::makeScalar), 1);

    using PollInterrupt = std::int32_t(__stdcall*)(void*, std::int32_t);
    host.interruptAt(1);
    EXPECT_EQ(reinterpret_cast<PollInterrupt>(operation(evaluator, 11))(evaluator, 1), 1);

    using QueryInterface = std::int32_t(__stdcall*)(void*, const EfiGuid*, void**);
    using AddRoot = void(__stdcall*)(void*, Anyval***);
    using RemoveRoot = void(__stdcall*)(void*, Anyval**);
    using Release = Word(__stdcall*)(void*);
    void* roots = nullptr;
    ASSERT_EQ(reinterpret_cast<QueryInterface>(operation(allocator, 1))(allocator, &efiRootSetId, &roots), 0);
    Anyval** cell = nullptr;
    reinterpret_cast<AddRoot>(operation(roots, 11))(roots, &cell);
    EXPECT_EQ(host.liveRoots(), 1);
    reinterpret_cast<RemoveRoot>(operation(roots, 12))(roots, cell);
    EXPECT_EQ(host.liveRoots(), 0);
    reinterpret_cast<Release>(operation(roots, 3))(roots);
    EXPECT_EQ(host.heldInterfaces(), 0);

    using ApplyOne = std::int32_t(__stdcall*)(void*, aLambda*, Anyval*, Anyval**);
    using ApplyList = std::int32_t(__stdcall*)(void*, aLambda*, Cons*, Anyval**);
    const Value function = Value::function([](double x) { return x + 1.0; });
    const Value two = 2;
    auto* lambda = static_cast<aLambda*>(function.raw());
    Anyval* result = nullptr;
    reinterpret_cast<ApplyOne>(operation(evaluator, 13))(evaluator, lambda, two.raw(), &result);
    EXPECT_EQ(Value::of(result).real(), 3.0);
    Cons list = {two.raw(), nullptr};
    reinterpret_cast<ApplyList>(operation(evaluator, 4))(evaluator, lambda, &list, &result);
    EXPECT_EQ(Value::of(result).real(), 3.0);
}
