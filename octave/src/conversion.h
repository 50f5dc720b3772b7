// Conversion between Octave's values and those of the host.
#pragma once

#include <octave/ov.h>

#include <string>
#include <string_view>

#include "descriptions.h"
#include "efihost/value.h"

namespace undula {

using efihost::Value;

// Where in a call a value stands.
struct Place {
    std::string_view function;
    int position;           // of the argument, from 1
    std::string_view name;  // of the argument; may be empty
    bool isResult = false;  // not the argument itself, but what it has returned as a function

    // "dwt: argument 1 (data)"
    std::string text() const;
};

// Raises an Octave error that begins with the text of a place.
[[noreturn]] void refuse(const Place& place, const std::string& reason);

// The value of an argument. Real numbers in double precision are lent, not copied. `asRows` tells how a
// user function gets its packets.
Value toHost(const octave_value& given, const Place& place, Role role, bool asRows = false);

// The Octave value for a result, of which columns become rows where they should. The numbers of a matrix
// that nothing else holds are taken over.
octave_value toOctave(Value&& value, bool asRows);

// The value of a function.
Value userFunction(const octave_value& function, const Place& place, Role role, bool asRows);

// Whether a value is a text of at most one row.
bool isText(const octave_value& given);

// Whether a value is a signal that lies in a row.
bool isRow(const octave_value& given);

}  // namespace undula
