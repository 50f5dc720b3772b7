// What the binding knows of the functions and wavelets: tables that the build makes from
// functions/functions.toml (octave/make_described.py).
#pragma once

#include <array>
#include <span>
#include <string_view>

namespace undula {

// How an argument is read beyond its class in Octave, where a number is an array of one element and a
// signal is a row as often as a column.
enum class Role {
    Plain,           // as it is
    Array,           // a number is an array
    Signal,          // and a row is a column
    Data,            // and the result has the orientation of the argument
    Table,           // a cell array of such data
    Filter,          // a signal, or the name of a wavelet
    Name,            // the name of a wavelet, or a filter
    NumberFunction,  // its results are numbers
    PacketValue,     // a function of packets, of any result
    PacketMap,       // a function from packets to packets
};

struct Argument {
    std::string_view name;
    Role role;
};

using Form = std::span<const Argument>;

struct Description {
    std::string_view name;
    std::span<const Form> forms;
};

// In the order of functions.toml.
std::span<const Description> descriptions();

// The description of a name; null when there is none.
const Description* describe(std::string_view name);

// A name of a wavelet.
struct Wavelet {
    std::string_view name;
    std::string_view packName;  // that the pack has for it
    std::string_view function;  // that returns its filter
    std::array<int, 2> arguments;
    int count;  // of the arguments
};

// The wavelet of a name; null when there is none.
const Wavelet* findWavelet(std::string_view name);

}  // namespace undula
