"""Makes what the Octave package knows about the functions of the pack, from their one description.

    python3 octave/make_described.py functions/functions.toml FOLDER

writes into the folder

    functions.cc       the functions of Octave with their help in Texinfo, to be compiled
    descriptions.inc   their arguments, and the names of the wavelets, for the binding
    examples.txt       the examples of the help and what they return, for the tests
    INDEX, PKG_ADD     the categories of the package, and the functions to be found in the binding
"""

import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "python"))
from make_described import read_toml  # noqa: E402

from examples import octave_example  # noqa: E402
from texinfo import documentation  # noqa: E402

from _descriptions import description_of  # noqa: E402  (make_described has made it importable)
from _wavelets import wavelets  # noqa: E402

HELPERS = {"Calling and trying": ["undula_call", "undula_demo"]}


# The binding


def role(description, argument):
    """How the binding reads an argument; src/descriptions.h says what the roles are."""
    kind = argument.type or argument.kind
    if argument.name == "data":
        return "Data"
    if argument.name == "wavelet":
        return "Filter" if argument.kind == "array" else "Name"
    if kind == "packet function":
        return "PacketMap" if description.name.startswith("apply") else "PacketValue"
    return {
        "table": "Table",
        "number function": "NumberFunction",
        "vector": "Signal",
        "array": "Array",
    }.get(kind, "Plain")


def tables(descriptions):
    parts = [form_tables(description) for description in descriptions]
    rows = [f'    {{"{one.name}", formsOf_{one.name}}},' for one in descriptions]
    parts.append("constexpr Description allDescriptions[] = {\n" + "\n".join(rows) + "\n};\n")
    order = sorted(range(len(descriptions)), key=lambda place: descriptions[place].name)
    pointers = "".join(f"    &allDescriptions[{place}],\n" for place in order)
    parts.append(f"constexpr const Description* descriptionsByName[] = {{\n{pointers}}};\n")
    parts.append("constexpr Wavelet allWavelets[] = {\n" + "\n".join(wavelet_rows()) + "\n};\n")
    return "\n".join(parts)


def form_tables(description):
    lines, names = [], []
    for number, form in enumerate(description.forms):
        arguments = [
            f'{{"{name}", Role::{role(description, description.argument(name))}}}' for name in form
        ]
        names.append(f"form{number}Of_{description.name}")
        lines.append(f"constexpr Argument {names[-1]}[] = {{{', '.join(arguments)}}};")
    lines.append(f"constexpr Form formsOf_{description.name}[] = {{{', '.join(names)}}};\n")
    return "\n".join(lines)


def wavelet_rows():
    """A row for each name. Where two wavelets have one name, the pack's own meaning wins."""
    found = {}
    for wavelet in wavelets():
        if wavelet.pywavelets:
            found.setdefault(wavelet.pywavelets, wavelet)
    for wavelet in wavelets():
        found |= {name: wavelet for name in (wavelet.name, *wavelet.aliases)}
    for name, wavelet in sorted(found.items()):
        numbers = ", ".join(map(str, wavelet.arguments))
        own = name if name in (wavelet.name, *wavelet.aliases) else wavelet.name
        count = len(wavelet.arguments)
        yield f'    {{"{name}", "{own}", "{wavelet.function}", {{{numbers}}}, {count}}},'


FUNCTIONS = """\
// The functions of the pack as functions of Octave. Made by octave/make_described.py.
#include <octave/oct.h>

#include "calls.h"

#pragma GCC visibility push(default)

DEFUN_DLD(undula_call, arguments, , R"texinfo(-*- texinfo -*-
@deftypefn {} {@var{y} =} undula_call (@var{name}, @dots{})

Calls the function of the pack of that name with the arguments that follow, whatever else has the name.

@example
@group
undula_call ("dwt", [4, 6, 10, 12, 8, 6, 5, 5], 1, "haar")
@end group
@end example

@end deftypefn
)texinfo") {
    return undula::callByName(arguments);
}

"""

FUNCTION = """\
// PKG_ADD: autoload ("{name}", "undula_call.oct");
// PKG_DEL: autoload ("{name}", "undula_call.oct", "remove");
DEFUN_DLD({name}, arguments, , R"texinfo({help})texinfo") {{
    return undula::call("{name}", arguments);
}}
"""


def functions(descriptions):
    texts = (
        FUNCTION.format(name=one.name, help=documentation(one, octave_example(one))) for one in descriptions
    )
    return FUNCTIONS + "\n".join(texts) + "\n#pragma GCC visibility pop\n"


# The package


def index(descriptions):
    groups = {}
    for one in descriptions:
        groups.setdefault(one.group, []).append(one.name)
    lines = ["undula >> Undula"]
    for group, names in (groups | HELPERS).items():
        lines += [group, *(f" {name}" for name in names)]
    return "\n".join(lines) + "\n"


def autoloads(descriptions):
    return "".join(f'autoload ("{one.name}", "undula_call.oct");\n' for one in descriptions)


def examples(descriptions):
    """Blocks of lines: the name, then the lines of the example."""
    blocks = ["\n".join([one.name, *octave_example(one)]) for one in descriptions]
    return "\n\n".join(blocks) + "\n"


def main(source, folder):
    descriptions = [description_of(entry) for entry in read_toml(source)["functions"]]
    made = {
        "functions.cc": functions(descriptions),
        "descriptions.inc": tables(descriptions),
        "examples.txt": examples(descriptions),
        "INDEX": index(descriptions),
        "PKG_ADD": autoloads(descriptions),
    }
    for name, text in made.items():
        (Path(folder) / name).write_text(text, encoding="utf-8")


if __name__ == "__main__":
    main(*sys.argv[1:])
