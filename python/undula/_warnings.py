"""What is computed, but is probably not what was meant."""

import sys
import warnings


class UndulaWarning(UserWarning):
    """A call did what it was asked to, but its result is probably not what was wanted."""


def warn(text):
    """Warns of the line outside the package that made the call."""
    frame, level = sys._getframe(1), 2
    while frame.f_back and frame.f_globals.get("__name__", "").partition(".")[0] == "undula":
        frame, level = frame.f_back, level + 1
    warnings.warn(text, UndulaWarning, stacklevel=level)
