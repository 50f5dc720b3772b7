"""What a failed call raises."""


class Error(ValueError):
    """A function of the pack refused its arguments or gave up.

    Attributes
    ----------
    function : str
        Name of the function.
    message : str
        What is wrong.
    argument : int
        Position of the argument at fault, counted from 1; 0 when the call as a whole failed.
    """

    def __init__(self, function, message, argument, argument_name=None):
        super().__init__(function, message, argument, argument_name)
        self.function = function
        self.message = message
        self.argument = argument
        self.argument_name = argument_name

    def __str__(self):
        text = f"{self.function}: {self.message}"
        if not self.argument:
            return text
        name = f": {self.argument_name}" if self.argument_name else ""
        return f"{text} (argument {self.argument}{name})"


class OutOfMemoryError(Error, MemoryError):
    """The result or the working memory of a call could not be allocated."""


class ArgumentCountError(Error, TypeError):
    """A function that takes various numbers of arguments was called with another number."""


class ArithmeticFault(Error, FloatingPointError):
    """The arithmetic of a call divided by zero, overflowed or was invalid."""


_BY_MESSAGE = {
    "Wrong number of Arguments": ArgumentCountError,
    "out of memory": OutOfMemoryError,
    "singularity": ArithmeticFault,
    "overflow": ArithmeticFault,
    "floating point error": ArithmeticFault,
}


def error_for(function, message, argument, argument_names):
    """The exception for an error value that `function` returned."""
    named = 0 < argument <= len(argument_names)
    kind = _BY_MESSAGE.get(message, Error)
    return kind(function, message, argument, argument_names[argument - 1] if named else None)
