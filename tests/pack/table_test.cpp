// What the pack exports, and how its dispatchers take the kinds of arguments.
#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <sstream>

#include "efihost/registration.h"
#include "support/function_table.h"
#include "support/pack.h"

namespace {

constexpr const char* namesInOrder =
    "daublet symmlet coiflet Bspline bl dwt idwt dwts idwts dwti idwti wpt iwpt wpts iwpts wpti iwpti "
    "wavelet "
    "dlwavelet waveterp swaveterp wavelet2d dlwavelet2d waveterp2d swaveterp2d get_subband get_subband2d "
    "put_subband put_subband2d get_smooth get_detail put_smooth put_detail get_smooth2d get_detail2d "
    "put_smooth2d put_detail2d cpt lct icpt ilct extract_basis create_level wavebs basis_display2d "
    "best_basis "
    "father mother dlfather dlmother father2d mother2d dlfather2d dlmother2d evaltbl evalbs applytbl applybs";

// The pack exports with one Anyval for each argument what the table's rows reach.
std::string dispatcherName(const ListedFunction& function, std::size_t count) {
    return exportedName(function.name, std::string(count, 'X'));
}

#if defined(_WIN32)

// The handle by which the platform knows the pack.
void* handleOfPack() {
    return GetModuleHandleA(UNDULA_PACK_PATH);
}

#else

using Names = std::set<std::string>;

Names expectedExports() {
    Names names = {"theEfi", "numFuncs", "DllRegisterServer", "DllUnregisterServer",
                   exportedName("create_level2d", "S")};
    for (const std::string dl : {"", "dl"})
        names.merge(Names{exportedName(dl + "wavelet", "SSSS"), exportedName(dl + "wavelet2d", "SSSSSSS")});
    for (const ListedFunction& function : listedFunctions()) {
        names.insert("string_" + std::string(function.name));
        for (const auto& form : function.forms) names.insert(dispatcherName(function, form.size()));
        if (function.variadic()) names.insert(exportedName(function.name, "#"));
        for (const auto& worker : function.workers) names.insert(exportedName(function.name, worker));
    }
    return names;
}

// The global symbols that a library defines, but those that a sanitizer or the linker adds.
Names exportsOf(const std::string& path) {
    FILE* symbols = popen(("nm --dynamic --defined-only --format=posix '" + path + "'").c_str(), "r");
    Names names;
    char name[256];
    char kind = 0;
    while (std::fscanf(symbols, "%255s %c%*[^\n]", name, &kind) == 2) {
        const bool weak = std::strchr("VWu", kind) != nullptr;
        if (!weak && (name[0] != '_' || name[1] == 'Z')) names.insert(name);
    }
    pclose(symbols);
    return names;
}

// The address at which the pack is loaded.
void* handleOfPack() {
    Dl_info library{};
    return dladdr(pack().symbol("theEfi"), &library) != 0 ? library.dli_fbase : nullptr;
}

#endif

}  // namespace

#if !defined(_WIN32)
// Of the library for Windows, tools/check_windows says that it exports the same.
TEST(Table, ExportsItsFunctionsAndNothingElse) {
    Names missing = expectedExports();
    Names surplus = exportsOf(UNDULA_PACK_PATH);
    std::erase_if(missing, [&](const std::string& name) { return surplus.erase(name) != 0; });
    EXPECT_EQ(missing, Names());
    EXPECT_EQ(surplus, Names());
}
#endif

TEST(Table, HasItsRowsInOrder) {
    std::istringstream names(namesInOrder);
    ASSERT_EQ(pack().table().size(), 58u);
    for (std::size_t i = 0; i < 58; ++i) {
        const EfiFunction& row = pack().table()[i];
        const ListedFunction& function = listedFunctions()[i];
        std::string name;
        names >> name;
        SCOPED_TRACE(name);
        EXPECT_EQ(row.reserved1, 0u);
        EXPECT_EQ(row.reserved2, 0u);
        EXPECT_EQ(row.reserved3, 0u);
        EXPECT_EQ(row.flag, 0);
        EXPECT_EQ(row.name, pack().symbol(("string_" + name).c_str()));
        EXPECT_EQ(row.name->kind, TagString);
        EXPECT_EQ(row.name->text, name);
        EXPECT_EQ(row.name->length, static_cast<std::int32_t>(name.size()) + 1);
        EXPECT_EQ(row.name->reserved, 0);
        const std::size_t count = function.forms[0].size();
        EXPECT_EQ(pack().functions()[i].arity.value_or(0), function.variadic() ? 0 : count);
        const std::string entry =
            function.variadic() ? exportedName(name, "#") : dispatcherName(function, count);
        EXPECT_EQ(reinterpret_cast<void*>(row.entry), pack().symbol(entry.c_str()));
    }
}

TEST(Registration, HandsOverHandleAndIdentifier) {
    for (const int status : {-7, 5, 0}) {
        efihost::setRegistrationStatus(status);
        EXPECT_EQ(pack().registerServer(), status);
        EXPECT_EQ(pack().unregisterServer(), status);
    }
    const auto registered = efihost::lastRegistered();
    const auto unregistered = efihost::lastUnregistered();
    ASSERT_TRUE(registered && unregistered);
    EXPECT_NE(registered->module, nullptr);
    EXPECT_EQ(registered->module, handleOfPack());
    EXPECT_EQ(std::memcmp(&registered->id, &unregistered->id, sizeof(EfiGuid)), 0);
    EXPECT_EQ(registered->id.data1, 0xB07F40EAu);
}

namespace {

// What is said to a value that does not suit the letter of a form; nothing to one that does.
std::string mismatch(char letter, int tag) {
    static const std::map<char, std::pair<std::set<int>, const char*>> letters = {
        {'S', {{2}, "non-scalar value"}},    {'T', {{3}, "must be string"}},
        {'M', {{5}, "must be array"}},       {'A', {{2, 5}, "EfiMustBeScalarOrArray"}},
        {'V', {{5}, "must be vector"}},      {'O', {{2, 5}, "EfiMustBeScalarOrArray"}},
        {'F', {{4, 8}, "must be function"}},
    };
    const auto& [tags, message] = letters.at(letter);
    if (tags.contains(tag)) return "";
    return tag == 4 || tag == 8 || tag == 16 ? "illegal context" : message;
}

Value ofTag(int tag) {
    if (tag == 0) return Value::error("an error", 1);
    if (tag == 2) return 1;
    if (tag == 3) return "text";
    return tag == 5 ? column({1, 2}) : Value::ofTag(tag);
}

}  // namespace

// The letters of every function's forms are for the tests of the descriptions in Python.
TEST_F(PackTest, KindsAreCheckedAtEachPosition) {
    const std::map<char, int> suiting = {{'S', 2}, {'T', 3}, {'F', 4}, {'M', 5},
                                         {'V', 5}, {'A', 5}, {'O', 5}};
    for (const auto& [name, letters] : {std::pair("dwt", "MSMOO"),
                                        {"wpt", "MAM"},
                                        {"put_subband", "VSSV"},
                                        {"lct", "MSF"},
                                        {"mother2d", "SSTT"}}) {
        const std::string form = letters;
        for (std::size_t i = 0; i < form.size(); ++i) {
            for (const int tag : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 15, 16, 17, 32}) {
                std::vector<Value> arguments;
                for (const char letter : form) arguments.push_back(ofTag(suiting.at(letter)));
                arguments[i] = ofTag(tag);
                const std::string message = mismatch(form[i], tag);
                if (message.empty()) continue;
                EXPECT_EQ(complaintOf(host.callRaw(pack(), name, arguments)),
                          message + " (" + std::to_string(i + 1) + ")")
                    << name << ", tag " << tag;
            }
        }
    }
    const Value alternative = Value::function([](double x) { return x; }, TagFunctionAlt);
    EXPECT_EQ(complaint("best_basis", Value::table({column({1, 2})}), alternative), "no error");
    EXPECT_EQ(complaint("get_smooth", row({1, 2}), 1), "must be vector (1)");
    EXPECT_EQ(complaint("get_smooth", Value::matrix(2, 0, Numbers{}), 1), "must be vector (1)");
}

// All illegal kinds come before all wrong ones, and the count before both.
TEST_F(PackTest, KindsAreCheckedInOrder) {
    const Value wrong = Value::ofTag(7);
    const Value illegal = Value::ofTag(16);
    EXPECT_EQ(complaint("put_subband", wrong, wrong, wrong, wrong), "must be vector (1)");
    EXPECT_EQ(complaint("put_subband", wrong, wrong, wrong, illegal), "illegal context (4)");
    EXPECT_EQ(complaint("father2d", wrong, illegal, illegal), "illegal context (2)");
    EXPECT_EQ(complaint("father2d", 0, 0, wrong), "must be string (3)");
    for (const std::size_t count : {0u, 2u, 6u, 12u}) {
        EXPECT_EQ(complaintOf(host.callRaw(pack(), "dwt", std::vector<Value>(count, illegal))),
                  "Wrong number of Arguments (0)");
    }
}
