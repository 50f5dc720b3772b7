// What the pack exports, and how its dispatchers take the kinds of arguments.
#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <set>

#include "efihost/registration.h"
#include "support/function_table.h"
#include "support/pack.h"

namespace {

// The pack exports with one Anyval for each argument what the table's rows reach.
std::string dispatcherName(const DocumentedFunction& function, std::size_t count) {
    return exportedName(function.name, std::string(count, 'X'));
}

#if defined(_WIN32)

// The handle by which the platform knows the pack.
void* handleOfPack() {
    return GetModuleHandleA(UNDULA_PACK_PATH);
}

#else

using Names = std::set<std::string>;

Names documentedExports() {
    Names names = {"theEfi", "numFuncs", "DllRegisterServer", "DllUnregisterServer",
                   exportedName("create_level2d", "S")};
    for (const DocumentedFunction& function : documentedFunctions()) {
        names.insert("string_" + std::string(function.name));
        for (const auto form : function.forms) names.insert(dispatcherName(function, form.size()));
        if (function.variadic()) names.insert(exportedName(function.name, "#"));
        for (const auto& worker : function.workers) names.insert(exportedName(function.name, worker));
    }
    return names;
}

// The global symbols that a library defines, but those that a sanitizer adds.
Names exportsOf(const std::string& path) {
    FILE* symbols = popen(("nm --dynamic --defined-only --format=posix '" + path + "'").c_str(), "r");
    Names names;
    char name[256];
    char kind = 0;
    while (std::fscanf(symbols, "%255s %c%*[^\n]", name, &kind) == 2) {
        const bool weak = std::strchr("VWu", kind) != nullptr;
        if (!weak && !std::string_view(name).starts_with("__")) names.insert(name);
    }
    pclose(symbols);
    return names;
}

Names without(const Names& all, const Names& some) {
    Names rest;
    std::ranges::set_difference(all, some, std::inserter(rest, rest.end()));
    return rest;
}

// The address at which the pack is loaded.
void* handleOfPack() {
    Dl_info library{};
    return dladdr(pack().symbol("theEfi"), &library) != 0 ? library.dli_fbase : nullptr;
}

#endif

sFunctionInfo* signatureOf(const DocumentedFunction& function) {
    static sFunctionInfo* const byCount[] = {nullptr,
                                             Any_to_Any,
                                             Any_Any_to_Any,
                                             Any_Any_Any_to_Any,
                                             Any_Any_Any_Any_to_Any,
                                             Any_Any_Any_Any_Any_to_Any,
                                             nullptr,
                                             Any_Any_Any_Any_Any_Any_Any_to_Any};
    return function.variadic() ? Variable_to_Any : byCount[function.forms[0].size()];
}

}  // namespace

#if !defined(_WIN32)
// Of the library for Windows, tools/check_windows says that it exports the same.
TEST(Table, ExportsWhatIsDocumentedAndNothingElse) {
    const Names expected = documentedExports();
    const Names actual = exportsOf(UNDULA_PACK_PATH);
    EXPECT_EQ(without(expected, actual), Names());
    EXPECT_EQ(without(actual, expected), Names());
}
#endif

TEST(Table, HasTheDocumentedRows) {
    const auto& functions = documentedFunctions();
    const auto rows = pack().table();
    ASSERT_EQ(rows.size(), 58u);
    ASSERT_EQ(functions.size(), 58u);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const DocumentedFunction& function = functions[i];
        const std::string name(function.name);
        SCOPED_TRACE(name);
        const EfiFunction& row = rows[i];
        EXPECT_EQ(row.signature, signatureOf(function));
        EXPECT_EQ(row.reserved1, 0u);
        EXPECT_EQ(row.reserved2, 0u);
        EXPECT_EQ(row.reserved3, 0u);
        EXPECT_EQ(row.flag, 0);
        EXPECT_EQ(row.name, pack().symbol(("string_" + name).c_str()));
        EXPECT_EQ(row.name->kind, TagString);
        EXPECT_EQ(row.name->text, name);
        EXPECT_EQ(row.name->length, static_cast<std::int32_t>(name.size()) + 1);
        EXPECT_EQ(row.name->reserved, 0);
        const std::string entry = function.variadic() ? exportedName(name, "#")
                                                      : dispatcherName(function, function.forms[0].size());
        EXPECT_EQ(reinterpret_cast<void*>(row.entry), pack().symbol(entry.c_str()));
    }
}

TEST(Registration, HandsOverHandleAndIdentifier) {
    efihost::setRegistrationStatus(-7);
    EXPECT_EQ(pack().registerServer(), -7);
    efihost::setRegistrationStatus(0);
    EXPECT_EQ(pack().registerServer(), 0);
    efihost::setRegistrationStatus(5);
    EXPECT_EQ(pack().unregisterServer(), 5);
    efihost::setRegistrationStatus(0);
    EXPECT_EQ(pack().unregisterServer(), 0);

    const auto registered = efihost::lastRegistered();
    const auto unregistered = efihost::lastUnregistered();
    ASSERT_TRUE(registered && unregistered);
    EXPECT_NE(registered->module, nullptr);
    EXPECT_EQ(registered->module, handleOfPack());
    EXPECT_EQ(unregistered->module, nullptr);
    EXPECT_EQ(std::memcmp(&registered->id, &unregistered->id, sizeof(EfiGuid)), 0);
    EXPECT_NE(registered->id.data1, 0u);
}

namespace {

constexpr int allTags[] = {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 17, 32};

// What the letters of a form take, what is said to anything else, and something that suits.
struct Letter {
    std::set<int> tags;
    std::string mismatch;
    Value suiting;
};

const Letter& meaning(char letter) {
    static const Value text = "text";
    static const Value two = column({1, 2});
    static const Value function = Value::function([](double x) { return x; });
    static const Letter either = {{2, 5}, "EfiMustBeScalarOrArray", two};
    static const std::map<char, Letter> letters = {{'S', {{2}, "non-scalar value", 1}},
                                                   {'T', {{3}, "must be string", text}},
                                                   {'F', {{4, 8}, "must be function", function}},
                                                   {'M', {{5}, "must be array", two}},
                                                   {'V', {{5}, "must be vector", two}},
                                                   {'A', either},
                                                   {'O', either}};
    return letters.at(letter);
}

bool illegal(char letter, int tag) {
    return tag == 16 || (letter != 'F' && (tag == 4 || tag == 8));
}

Value ofTag(int tag) {
    static const std::map<int, Value> usual = {
        {0, Value::error("an error", 1)}, {2, 1}, {3, "text"}, {5, column({1, 2})}};
    const auto found = usual.find(tag);
    return found == usual.end() ? Value::ofTag(tag) : found->second;
}

// Every form of a function, called through its own dispatcher and through the table.
class Kinds : public testing::TestWithParam<DocumentedFunction> {
 protected:
    void SetUp() override { function = GetParam(); }

    void setForm(std::string_view which) {
        form = which;
        arguments.clear();
        for (const char letter : form) arguments.push_back(meaning(letter).suiting);
    }
    void expectComplaint(const std::string& expected) {
        const std::string exported = dispatcherName(function, form.size());
        const auto entry = reinterpret_cast<EfiEntry>(pack().symbol(exported.c_str()));
        ASSERT_NE(entry, nullptr);
        const efihost::Function direct = {function.name, static_cast<int>(form.size()), entry};
        EXPECT_EQ(PackTest::complaintOf(host.callRaw(direct, arguments)), expected);
        EXPECT_EQ(PackTest::complaintOf(host.callRaw(pack(), function.name, arguments)), expected);
    }
    // One argument replaced, for one call.
    void expectComplaintAbout(std::size_t i, const Value& value, const std::string& message) {
        const Value usual = std::exchange(arguments[i], value);
        expectComplaint(message + " (" + std::to_string(i + 1) + ")");
        arguments[i] = usual;
    }

    DocumentedFunction function;
    std::string_view form;
    std::vector<Value> arguments;
    TestHost host;
};

}  // namespace

TEST_P(Kinds, AreCheckedAtEachPosition) {
    for (const auto which : function.forms) {
        setForm(which);
        for (std::size_t i = 0; i < form.size(); ++i) {
            const Letter& letter = meaning(form[i]);
            for (const int tag : allTags) {
                SCOPED_TRACE("argument " + std::to_string(i + 1) + ", tag " + std::to_string(tag));
                if (illegal(form[i], tag)) {
                    expectComplaintAbout(i, ofTag(tag), "illegal context");
                } else if (!letter.tags.contains(tag)) {
                    expectComplaintAbout(i, ofTag(tag), letter.mismatch);
                }
            }
            if (form[i] != 'V') continue;
            expectComplaintAbout(i, row({1, 2}), letter.mismatch);
            expectComplaintAbout(i, Value::matrix(2, 0, Numbers{}), letter.mismatch);
        }
    }
}

// All illegal kinds come before all wrong ones, and each before later ones.
TEST_P(Kinds, AreCheckedInOrder) {
    for (const auto which : function.forms) {
        setForm(which);
        for (Value& argument : arguments) argument = Value::ofTag(7);
        expectComplaintAbout(0, Value::ofTag(7), meaning(form[0]).mismatch);
        expectComplaintAbout(form.size() - 1, Value::ofTag(16), "illegal context");
        for (Value& argument : arguments) argument = Value::ofTag(16);
        expectComplaintAbout(0, Value::ofTag(16), "illegal context");
    }
}

TEST_P(Kinds, AreCountedWhereTheNumberVaries) {
    std::set<std::size_t> counts;
    for (const auto which : function.forms) counts.insert(which.size());
    for (std::size_t count = 0; function.variadic() && count <= efihost::Host::maxArguments; ++count) {
        if (counts.contains(count)) continue;
        const std::vector<Value> some(count, Value::ofTag(16));
        EXPECT_EQ(PackTest::complaintOf(host.callRaw(pack(), function.name, some)),
                  "Wrong number of Arguments (0)");
    }
}

INSTANTIATE_TEST_SUITE_P(Table, Kinds, testing::ValuesIn(documentedFunctions()),
                         [](const auto& row) { return std::string(row.param.name); });
