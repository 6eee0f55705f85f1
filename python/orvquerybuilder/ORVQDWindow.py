# SPDX-License-Identifier: MIT
"""What forms of Qt Designer import: they name the class after its C++ header."""

from . import TorvQueryBuilder

__all__ = ["TorvQueryBuilder"]
