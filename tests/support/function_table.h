// The functions of the pack as its documentation lists them: the arguments that a user writes, and
// those of the exported workers behind them. Independent of the pack's own table.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Letters of arguments: S scalar, T text, M matrix, V column, F function, A scalar or matrix passed
// on as it is, O scalar or matrix passed on as a matrix.
struct DocumentedFunction {
    std::string_view name;
    std::vector<std::string_view> forms;
    std::vector<std::string_view> workers;  // where they differ from the forms

    bool variadic() const { return forms.size() > 1; }
};

inline const std::vector<DocumentedFunction>& documentedFunctions() {
    static const std::vector<std::string_view> transform = {"MSM", "MSMM", "MSMMM"};
    static const std::vector<std::string_view> evaluation = {"SSSS", "SSSSM", "SSSSMM", "SSSSMMM"};
    static const std::vector<std::string_view> evaluation2d = {"SSSSSSS", "SSSSSSSM", "SSSSSSSMM",
                                                               "SSSSSSSMMM"};
    static const std::vector<DocumentedFunction> functions = {
        {"daublet", {"S"}, {}},
        {"symmlet", {"S"}, {}},
        {"coiflet", {"S"}, {}},
        {"Bspline", {"SS"}, {}},
        {"bl", {"S"}, {}},
        {"dwt", {"MSM", "MSMO", "MSMOO"}, transform},
        {"idwt", {"MSM", "MSMO", "MSMOO"}, transform},
        {"dwts", {"MSM"}, {}},
        {"idwts", {"MSM"}, {}},
        {"dwti", {"MSM"}, {}},
        {"idwti", {"MSM"}, {}},
        {"wpt", {"MAM", "MAMO", "MAMOO"}, {"MAM", "MAMM", "MAMMM"}},
        {"iwpt", {"MMM", "MMMO", "MMMOO"}, {"MMM", "MMMM", "MMMMM"}},
        {"wpts", {"MAM"}, {}},
        {"iwpts", {"MMM"}, {}},
        {"wpti", {"MAM"}, {}},
        {"iwpti", {"MMM"}, {}},
        {"wavelet", {"SSSSM", "SSSSMO", "SSSSMOO"}, evaluation},
        {"dlwavelet", {"SSSSM", "SSSSMO", "SSSSMOO"}, evaluation},
        {"waveterp", {"SVSSM", "SVSSMO", "SVSSMOO"}, {"SVSSM", "SVSSMM", "SVSSMMM"}},
        {"swaveterp", {"SVSSM"}, {}},
        {"wavelet2d", {"SSSSSSSM", "SSSSSSSMO", "SSSSSSSMOO"}, evaluation2d},
        {"dlwavelet2d", {"SSSSSSSM", "SSSSSSSMO", "SSSSSSSMOO"}, evaluation2d},
        {"waveterp2d", {"SSMSSSM", "SSMSSSMO", "SSMSSSMOO"}, {"SSMSSSM", "SSMSSSMM", "SSMSSSMMM"}},
        {"swaveterp2d", {"SSMSSSM"}, {}},
        {"get_subband", {"VSS"}, {}},
        {"get_subband2d", {"MSSS"}, {}},
        {"put_subband", {"VSSV"}, {}},
        {"put_subband2d", {"MSSSM"}, {}},
        {"get_smooth", {"VS"}, {}},
        {"get_detail", {"VS"}, {}},
        {"put_smooth", {"VSV"}, {}},
        {"put_detail", {"VSV"}, {}},
        {"get_smooth2d", {"MS"}, {}},
        {"get_detail2d", {"MST"}, {}},
        {"put_smooth2d", {"MSM"}, {}},
        {"put_detail2d", {"MSMT"}, {}},
        {"cpt", {"MS"}, {}},
        {"lct", {"MSF"}, {}},
        {"icpt", {"MSM"}, {}},
        {"ilct", {"MSMF"}, {}},
        {"extract_basis", {"VM"}, {}},
        {"create_level", {"SS"}, {}},
        {"wavebs", {"SS"}, {}},
        {"basis_display2d", {"M"}, {}},
        {"best_basis", {"VF"}, {}},
        {"father", {"ST", "SSST"}, {"SSST"}},
        {"mother", {"ST", "SSST"}, {"SSST"}},
        {"dlfather", {"ST", "SSST"}, {"SSST"}},
        {"dlmother", {"ST", "SSST"}, {"SSST"}},
        {"father2d", {"SST", "SSSSST"}, {"SSSSST"}},
        {"mother2d", {"SSTT", "SSSSSTT"}, {"SSSSSTT"}},
        {"dlfather2d", {"SST", "SSSSST"}, {"SSSSST"}},
        {"dlmother2d", {"SSTT", "SSSSSTT"}, {"SSSSSTT"}},
        {"evaltbl", {"VF"}, {}},
        {"evalbs", {"MMF"}, {}},
        {"applytbl", {"VF"}, {}},
        {"applybs", {"MMF"}, {}},
    };
    return functions;
}

// The name under which a compiler exports a function of the given arguments after the context:
// the letters above, X for a value of any kind, # for a count and any number of values.
std::string exportedName(std::string_view function, std::string_view arguments);
