#include "support/function_table.h"

#include <algorithm>
#include <map>

namespace {

// Each name with the forms of its arguments; after a colon the workers', where these are not the forms
// with M for O.
constexpr std::string_view listed =
    "daublet S;symmlet S;coiflet S;Bspline SS;bl S;"
    "dwt MSM,MSMO,MSMOO;idwt MSM,MSMO,MSMOO;dwts MSM;idwts MSM;dwti MSM;idwti MSM;"
    "wpt MAM,MAMO,MAMOO;iwpt MMM,MMMO,MMMOO;wpts MAM;iwpts MMM;wpti MAM;iwpti MMM;"
    "wavelet SSSSM,SSSSMO,SSSSMOO:SSSS,SSSSM,SSSSMM,SSSSMMM;"
    "dlwavelet SSSSM,SSSSMO,SSSSMOO:SSSS,SSSSM,SSSSMM,SSSSMMM;"
    "waveterp SVSSM,SVSSMO,SVSSMOO;swaveterp SVSSM;"
    "wavelet2d SSSSSSSM,SSSSSSSMO,SSSSSSSMOO:SSSSSSS,SSSSSSSM,SSSSSSSMM,SSSSSSSMMM;"
    "dlwavelet2d SSSSSSSM,SSSSSSSMO,SSSSSSSMOO:SSSSSSS,SSSSSSSM,SSSSSSSMM,SSSSSSSMMM;"
    "waveterp2d SSMSSSM,SSMSSSMO,SSMSSSMOO;swaveterp2d SSMSSSM;"
    "get_subband VSS;get_subband2d MSSS;put_subband VSSV;put_subband2d MSSSM;"
    "get_smooth VS;get_detail VS;put_smooth VSV;put_detail VSV;"
    "get_smooth2d MS;get_detail2d MST;put_smooth2d MSM;put_detail2d MSMT;"
    "cpt MS;lct MSF;icpt MSM;ilct MSMF;"
    "extract_basis VM;create_level SS;wavebs SS;basis_display2d M;best_basis VF;"
    "father ST,SSST:SSST;mother ST,SSST:SSST;dlfather ST,SSST:SSST;dlmother ST,SSST:SSST;"
    "father2d SST,SSSSST:SSSSST;mother2d SSTT,SSSSSTT:SSSSSTT;"
    "dlfather2d SST,SSSSST:SSSSST;dlmother2d SSTT,SSSSSTT:SSSSSTT;"
    "evaltbl VF;evalbs MMF;applytbl VF;applybs MMF";

std::vector<std::string_view> split(std::string_view text, char separator) {
    std::vector<std::string_view> parts;
    for (;;) {
        const std::size_t end = text.find(separator);
        parts.push_back(text.substr(0, end));
        if (end == text.npos) return parts;
        text.remove_prefix(end + 1);
    }
}

std::vector<DocumentedFunction> readList() {
    std::vector<DocumentedFunction> functions;
    for (const std::string_view line : split(listed, ';')) {
        const auto words = split(line, ' ');
        const auto arguments = split(words[1], ':');
        DocumentedFunction function = {words[0], split(arguments.front(), ','), {}};
        for (std::string_view worker : split(arguments.back(), ',')) {
            function.workers.emplace_back(worker);
            std::ranges::replace(function.workers.back(), 'O', 'M');
        }
        functions.push_back(function);
    }
    return functions;
}

// A class name as the common C++ ABI writes it: its length, then the name.
std::string_view mangledClass(char letter) {
    static const std::map<char, std::string_view> classes = {
        {'S', "8aComplex"}, {'T', "7aString"}, {'M', "7aMatrix"}, {'V', "7aVector"},
        {'F', "7aLambda"},  {'A', "6Anyval"},  {'X', "6Anyval"},
    };
    return classes.at(letter);
}

}  // namespace

const std::vector<DocumentedFunction>& documentedFunctions() {
    static const std::vector<DocumentedFunction> functions = readList();
    return functions;
}

// A pointer to a class that has been named before is written as the number of that pointer: S_ and
// S0_ are the context and the pointer to it, S1_ and S2_ the next class and the pointer to it, ...
std::string exportedName(std::string_view function, std::string_view arguments) {
    std::string name = "_Z";
    name.append(std::to_string(function.size())).append(function).append("P14EfiCallContext");
    std::vector<std::string_view> seen;
    for (const char letter : arguments) {
        if (letter == '#') return name + "iz";
        const std::string_view type = mangledClass(letter);
        const auto known = std::ranges::find(seen, type);
        if (known != seen.end()) {
            name.append("S").append(std::to_string(2 * (known - seen.begin()) + 2)).append("_");
        } else {
            seen.push_back(type);
            name.append("P").append(type);
        }
    }
    return name;
}
