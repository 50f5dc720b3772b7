// Prints the tables of docs/accuracy.md, and writes each figure to a file.
//
//     accuracy FIGURES.csv [LARGEST]
//
// Signals and images have 2^6, 2^8 ... 2^LARGEST numbers, 2^20 unless told otherwise.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iostream>
#include <map>
#include <sstream>

#include "accuracy/measures.h"

using namespace accuracy;

namespace {

const std::vector<std::string> families = {"daublet", "symmlet", "coiflet", "bl", "Bspline"};

std::string rounded(double value, const char* format) {
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string rowOf(const std::string& call, const std::string& kind) {
    std::string row = "`";
    return row.append(call).append("`").append(kind);
}

// The largest figure of each row and column, and what it belongs to.
class Table {
 public:
    Table(std::ostream& file, std::vector<std::string> columns) : file_(file), columns_(std::move(columns)) {}

    void enter(const std::string& row, const std::string& column, const std::string& name, double size,
               double figure) {
        file_ << row << ';' << column << ';' << name << ';' << size << ';' << figure << std::endl;
        if (!rows_.contains(row)) order_.push_back(row);
        Cell& cell = rows_[row][column];
        if (!(figure <= cell.figure)) cell = {figure, name};
    }
    void print(const char* first, const char* format, bool names) const {
        std::cout << "| " << first << " |";
        for (const std::string& column : columns_) std::cout << ' ' << column << " |";
        std::cout << "\n|---|";
        for (std::size_t i = 0; i < columns_.size(); ++i) std::cout << "---|";
        std::cout << '\n';
        for (const std::string& row : order_) {
            std::cout << "| " << row << " |";
            for (const std::string& column : columns_) {
                const auto& cells = rows_.at(row);
                const auto found = cells.find(column);
                std::cout << ' ';
                if (found != cells.end()) {
                    std::cout << rounded(found->second.figure, format);
                    if (names) std::cout << " (" << found->second.name << ')';
                }
                std::cout << " |";
            }
            std::cout << '\n';
        }
        std::cout << std::endl;
    }

 private:
    struct Cell {
        double figure = -1.0;
        std::string name;
    };
    std::ostream& file_;
    std::vector<std::string> columns_;
    std::vector<std::string> order_;
    std::map<std::string, std::map<std::string, Cell>> rows_;
};

struct Tables {
    Table errors;
    Table roundTrips;

    void enter(const std::string& forward, const std::string& inverse, const std::string& kind,
               const Wavelet& wavelet, int size, const Errors& found) {
        errors.enter(rowOf(forward, kind), wavelet.family, wavelet.name, size, found.forward);
        errors.enter(rowOf(inverse, kind), wavelet.family, wavelet.name, size, found.inverse);
        roundTrips.enter(rowOf(inverse + "(" + forward + ")", kind), wavelet.family, wavelet.name, size,
                         found.roundTrip * unit);
    }
};

// A signal or an image of 2^size numbers, at level 0.
Shape shapeOf(bool image, int size) {
    const int side = 1 << (image ? size / 2 : size);
    return {side, image ? side : 1, 0};
}

void measureSizes(Measures& measures, Tables& tables, const Treatment& treatment, const Wavelet& wavelet,
                  bool image, int largest) {
    const std::string kind = image ? ", image" : "";
    std::cerr << treatment.letter << kind << ' ' << wavelet.name << '\n';
    for (int size = 6; size <= largest; size += 2) {
        Shape shape = shapeOf(image, size);
        shape.levels = treatment.deepest(wavelet, shape.rows);
        if (shape.levels == 0) continue;
        tables.enter("dwt" + treatment.letter, "idwt" + treatment.letter, kind, wavelet, size,
                     measures.transform(treatment, wavelet, shape));
        tables.enter("wpt" + treatment.letter, "iwpt" + treatment.letter, kind, wavelet, size,
                     measures.packets(treatment, wavelet, shape));
    }
}

void measureTransforms(Measures& measures, Tables& tables, int largest) {
    for (const Treatment& treatment : treatments) {
        for (const bool image : {false, true}) {
            for (const Wavelet& wavelet : measures.wavelets()) {
                if (treatment.takes(wavelet))
                    measureSizes(measures, tables, treatment, wavelet, image, largest);
            }
        }
    }
}

void measureFunctions(Measures& measures, Table& table) {
    for (const Wavelet& wavelet : measures.wavelets()) {
        std::cerr << "functions of " << wavelet.name << '\n';
        for (unsigned packet = 0; packet < 8; ++packet) {
            const char* row = packet == 0   ? "`father`"
                              : packet == 1 ? "`mother`"
                                            : "`wavelet`, packets 2 to 7";
            for (const bool dual : {false, true}) {
                if (dual && wavelet.family != "Bspline") continue;
                const std::string name = wavelet.name + (dual ? ", `dl`" : "");
                table.enter(row, wavelet.family, name, packet, measures.function(wavelet, dual, packet, 96));
            }
        }
    }
}

void measureDct(Measures& measures, Table& table, int largest) {
    const auto enter = [&](const char* row, int length) {
        std::cerr << "DCT-IV of " << length << '\n';
        const double error = measures.dct(length);
        table.enter(row, "units", std::to_string(length), std::log2(length), error);
        table.enter(row, "units / sqrt(log2 n)", std::to_string(length), std::log2(length),
                    error / std::sqrt(std::log2(length)));
    };
    for (int size = 6; size <= largest; size += 2) enter("powers of two", 1 << size);
    for (int size = 6; size <= largest; size += 2) enter("even, 2 times an odd number", (1 << size) - 2);
    for (int size = 6; size <= largest; size += 2) enter("odd", (1 << size) - 1);
    for (const int prime : {61, 1021, 16381, 131071, 524287, 1048573}) {
        if (std::log2(prime) < largest) enter("odd, prime", prime);
        if (std::log2(2.0 * prime) < largest) enter("even, 2 times a prime", 2 * prime);
    }
}

void measureCosines(Measures& measures, Table& errors, Table& roundTrips, BellOf bell, bool image,
                    int largest) {
    const std::string forward = bell == BellOf::User ? "lct" : "cpt";
    const std::string inverse = bell == BellOf::User ? "ilct" : "icpt";
    const std::string both = bell == BellOf::User ? "ilct(lct)" : "icpt(cpt)";
    const std::string kind = image ? ", image" : "";
    for (int size = 6; size <= largest; size += 2) {
        Shape shape = shapeOf(image, size);
        for (const int levels : {0, 1, 2, size / 2 - 1}) {
            std::cerr << forward << kind << " of 2^" << size << ", level " << levels << '\n';
            shape.levels = levels;
            const Errors found = measures.cosines(bell, shape);
            const std::string name = "level " + std::to_string(levels);
            errors.enter(rowOf(forward, kind), "units", name, size, found.forward);
            errors.enter(rowOf(inverse, kind), "units", name, size, found.inverse);
            roundTrips.enter(rowOf(both, kind), "relative", name, size, found.roundTrip * unit);
        }
    }
}

void printLimits(Measures& measures, std::ostream& file) {
    std::cout << "| scaling function | at the point | with the shift |\n|---|---|---|\n";
    for (const Wavelet& wavelet : measures.wavelets()) {
        for (const bool dual : {false, true}) {
            if (dual && wavelet.family != "Bspline") continue;
            const LimitDistance distance = limitDistance(wavelet, dual);
            const std::string name = wavelet.name + (dual ? ", `dl`" : "");
            file << "limit;" << wavelet.family << ';' << name << ';' << distance.where << ';'
                 << distance.shifted << '\n';
            const auto text = [](double value) { return value < 0 ? "no limit" : rounded(value, "%.1e"); };
            std::cout << "| " << name << " | " << text(distance.where) << " | " << text(distance.shifted)
                      << " |\n";
        }
    }
    std::cout << std::endl;
}

void printWide(Measures& measures) {
    std::cout << "Long double itself, packet tables of 2^12 samples: ";
    double largest = 0.0;
    for (const Wavelet& wavelet : measures.wavelets()) {
        for (const Treatment& treatment : treatments) {
            if (treatment.takes(wavelet))
                largest = std::max(
                    largest, errorOfWide(treatment, wavelet, {4096, 1, treatment.deepest(wavelet, 4096)}));
        }
    }
    std::cout << rounded(largest, "%.4f") << " units at most.\n" << std::endl;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "accuracy FIGURES.csv [LARGEST]\n";
        return 1;
    }
    std::ofstream file(argv[1]);
    file << "row;column;name;size;figure\n";
    const int largest = argc > 2 ? std::atoi(argv[2]) : 20;
    Measures measures(UNDULA_PACK_PATH);

    printWide(measures);
    Tables transforms = {Table(file, families), Table(file, families)};
    measureTransforms(measures, transforms, largest);
    transforms.errors.print("units", "%.1f", true);
    Table functions(file, families);
    measureFunctions(measures, functions);
    functions.print("units", "%.1f", true);
    Table dct(file, {"units", "units / sqrt(log2 n)"});
    measureDct(measures, dct, largest);
    dct.print("DCT-IV of n numbers", "%.2f", true);
    Table cosines(file, {"units"});
    Table cosineTrips(file, {"relative"});
    for (const BellOf bell : {BellOf::Pack, BellOf::User}) {
        measureCosines(measures, cosines, cosineTrips, bell, false, largest);
        // The definition of an image takes n products for each number of each line.
        measureCosines(measures, cosines, cosineTrips, bell, true, std::min(largest, 16));
    }
    cosines.print("local cosines", "%.1f", true);
    double bell = 0.0;
    for (int size = 0; size < largest; ++size) bell = std::max(bell, bellError(1 << size));
    std::cout << "The built-in bell and its complement: " << rounded(bell, "%.1f") << " units.\n\n";
    transforms.roundTrips.print("relative", "%.0e", true);
    cosineTrips.print("there and back", "%.0e", false);
    printLimits(measures, file);
}
