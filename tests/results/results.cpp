// Prints results of the pack to the last bit, one a line, to be compared between platforms: what
// was called, then the numbers in hexadecimal.
#include <cstdio>
#include <string>

#include "efihost/host.h"

namespace {

using efihost::Value;
using Numbers = std::vector<double>;

// The same on every platform: quotients of small integers by a power of two are exact.
Numbers samples(int count) {
    Numbers values;
    std::uint32_t state = 12345;
    for (int i = 0; i < count; ++i) {
        state = state * 1664525u + 1013904223u;
        values.push_back((static_cast<double>(state >> 12) - 524288.0) / 524288.0);
    }
    return values;
}

class Printer {
 public:
    explicit Printer(const efihost::Pack& pack) : pack_(pack) {}

    Value call(std::string_view name, const std::vector<Value>& arguments) {
        return host_.call(pack_, name, arguments);
    }

    void print(const std::string& title, std::string_view name, const std::vector<Value>& arguments) {
        const Value result = call(name, arguments);
        std::printf("%s:", title.c_str());
        printNumbers(result);
        std::printf("\n");
    }

 private:
    static void printNumbers(const Value& value) {
        if (!value.isMatrix()) {
            std::printf(" %a", value.real());
            return;
        }
        for (int col = 0; col < value.cols(); ++col) {
            for (int row = 0; row < value.rows(); ++row) {
                const Value nested = value.nested(row, col);
                printNumbers(nested ? nested : Value(value.at(row, col).real()));
            }
        }
    }

    const efihost::Pack& pack_;
    efihost::Host host_;
};

using NamedFilter = std::pair<const char*, int>;

// A signal and an image by each of the transforms.
void printTransforms(Printer& printer, const NamedFilter& named, const std::vector<std::string>& transforms,
                     int levels, int imageLevels) {
    const auto& [family, length] = named;
    const Value filter = printer.call(family, {length});
    const std::string title = std::string(family) + std::to_string(length);
    for (const std::string& transform : transforms) {
        const Value image = Value::matrix(64, 64, samples(4096));
        printer.print(transform + " " + title, transform, {Value::column(samples(1024)), levels, filter});
        printer.print(transform + " 2d " + title, transform, {image, imageLevels, filter});
    }
}

void printFathers(Printer& printer) {
    for (const char* name : {"d4", "d20", "s8", "c30", "bl3", "haar"}) {
        for (const double x : {0.5, 1.0, 1.3125, 2.7, 3.0}) {
            const std::string title = std::string(name) + " at " + std::to_string(x);
            printer.print("father " + title, "father", {x, name});
            printer.print("father dilated " + title, "father", {x, 2, 1, name});
        }
    }
}

}  // namespace

int main() {
    const efihost::Pack pack(UNDULA_PACK_PATH);
    Printer printer(pack);
    for (const NamedFilter& filter :
         {NamedFilter{"daublet", 4}, {"daublet", 20}, {"symmlet", 8}, {"coiflet", 30}, {"bl", 3}})
        printTransforms(printer, filter, {"dwt", "wpt"}, 5, 3);
    for (const NamedFilter& filter : {NamedFilter{"daublet", 4}, {"daublet", 6}, {"symmlet", 16}})
        printTransforms(printer, filter, {"dwti"}, 4, 1);
    const Value signal = Value::column(samples(1024));
    const Value spline = printer.call("Bspline", {2, 4});
    for (const char* transform : {"dwt", "wpt"})
        printer.print(std::string(transform) + " Bspline24", transform, {signal, 5, spline});
    for (const int level : {0, 1, 4, 6})
        printer.print("cpt level " + std::to_string(level), "cpt", {signal, level});
    printFathers(printer);
}
