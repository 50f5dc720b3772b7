"""The extension, of which type checkers need not know more than that it is there."""

from typing import Any

def __getattr__(name: str) -> Any: ...
