# SPDX-License-Identifier: MIT
"""A visual SQL query builder control for PyQt6.

    from orvquerybuilder import TDataSet, TorvQueryBuilder, ftInteger

    builder = TorvQueryBuilder()
    builder.OnGetTableFields = lambda name: TDataSet([("CUSTNO", ftInteger)])
    builder.LoadSQL("select o.custno from orders o")
    print(builder.GetSQLStatment())

Names are those of the C++ library, misspellings included. Enumerations are IntEnum classes; their
members are names of this package, too (ftInteger is TFieldType.ftInteger).
"""

import PyQt6.QtWidgets as _QtWidgets  # noqa: F401  -- the module needs its types

try:
    from . import _core
except ImportError as _error:
    raise ImportError(
        f"orvquerybuilder cannot load its module or the library for it: {_error}",
        name=_error.name,
        path=_error.path,
    ) from _error


def _check_version(built, found):
    """Raise ImportError when the library is not one that the module was built for.

    A minor version may change the layout of what was compiled against it.
    """
    if built.split(".")[:2] != found.split(".")[:2]:
        raise ImportError(
            f"orvquerybuilder was built for version {built} of the library, "
            f"but the library that was found is version {found}"
        )


__version__ = _core._libraryVersion()
_check_version(_core._builtVersion(), __version__)

from ._core import (  # noqa: E402
    ORVQDWindow__1,
    OrvError,
    ProcessName,
    TAddRemove,
    TBorderKind,
    TDataSet,
    TFieldDef,
    TFieldType,
    TKindOfJoin,
    TOperatorList,
    TParam,
    TParamType,
    TParams,
    TbtnStyle,
    TorvQDConditionOptions,
    TorvQDLink,
    TorvQDListItem,
    TorvQDListOfTables,
    TorvQDOperator,
    TorvQDTable,
    TorvQDWorkArea,
    TorvQDWorkAreaOptions,
    TorvQueryBuilder,
    reservedWords,
    setErrorHandler,
    setMessageService,
    setReservedWords,
)

DraggedField = _core.orv.DraggedField
Finding = _core.orv.Finding
MessageAnswer = _core.orv.MessageAnswer
MessageButtons = _core.orv.MessageButtons
MessageIcon = _core.orv.MessageIcon
MessageRequest = _core.orv.MessageRequest
SqlText = _core.orv.SqlText
UndoRecorder = _core.orv.UndoRecorder
UndoRecorder.Group = _core._UndoGroup


def _add_attributes(cls):
    """Make an attribute X of each pair of methods _getX and _setX."""
    cls.__doc__  # loads the methods
    for getter in [name for name in vars(cls) if name.startswith("_get")]:
        name = getter[len("_get") :]
        get = getattr(cls, getter)
        set_ = getattr(cls, "_set" + name, None)
        setattr(cls, name, property(get, set_, doc=get.__doc__))
        delattr(cls, getter)
        if set_:
            delattr(cls, "_set" + name)


for _class in (
    TParam,
    TorvQDConditionOptions,
    TorvQDLink,
    TorvQDListItem,
    TorvQDTable,
    TorvQDWorkAreaOptions,
    TorvQueryBuilder,
):
    _add_attributes(_class)


def _add_copying(cls, arguments):
    """Let the modules copy and pickle make a value again from the arguments that made it."""

    def reduce(self):
        return cls, arguments(self)

    cls.__reduce__ = reduce


_add_copying(TFieldDef, lambda field: (field.Name, field.DataType))
_add_copying(TDataSet, lambda fields: (fields.FieldDefs,))
_add_copying(
    TParam,
    lambda param: (param.Name, param.DataType, param.ParamType)
    + ((param.Value,) if param.HasValue else ()),
)
_add_copying(TParams, lambda params: (params.Items,))
_add_copying(
    TorvQDOperator,
    lambda entry: (
        entry.Name,
        entry.Caption,
        entry.Relate,
        entry.Postfix,
        entry.Prefix,
        entry.Count,
    ),
)
_add_copying(SqlText, lambda sql: (sql.text,))


def _add_option_attributes(cls, prefix, options, group):
    """Make each option of a group an attribute of the builder, as it is a property of Qt."""
    for name in [name for name, member in vars(options).items() if isinstance(member, property)]:

        def get(self, name=name):
            return getattr(getattr(self, group), name)

        def set_(self, value, name=name):
            setattr(getattr(self, group), name, value)

        setattr(cls, prefix + name, property(get, set_, doc=vars(options)[name].__doc__))


_add_option_attributes(TorvQueryBuilder, "WorkArea", TorvQDWorkAreaOptions, "WorkAreaOptions")
_add_option_attributes(TorvQueryBuilder, "Condition", TorvQDConditionOptions, "ConditionOptions")


def _add_setters(cls):
    """Add the setters that code made from forms calls: setX for each property X of Qt."""
    meta = cls.staticMetaObject
    for index in range(meta.propertyOffset(), meta.propertyCount()):
        name = meta.property(index).name()
        if not meta.property(index).isWritable() or name not in vars(cls):
            continue

        def set_(self, value, name=name):
            setattr(self, name, value)

        set_.__name__ = "set" + name
        set_.__qualname__ = f"{cls.__name__}.set{name}"
        set_.__doc__ = f"set{name}(value)\n\nThe same as assigning to {name}."
        setattr(cls, "set" + name, set_)


_add_setters(TorvQueryBuilder)
for _name, _member in TorvQueryBuilder.TAlign.__members__.items():
    setattr(TorvQueryBuilder, _name, _member)
del _member

_enumerations = (
    ORVQDWindow__1,
    TAddRemove,
    TBorderKind,
    TFieldType,
    TKindOfJoin,
    TParamType,
    TbtnStyle,
)
for _enumeration in _enumerations:
    globals().update(_enumeration.__members__)

__all__ = sorted(
    name for name in globals() if not name.startswith("_")
) + ["__version__"]

UndoRecorder.Group.__module__ = __name__
UndoRecorder.Group.__qualname__ = "UndoRecorder.Group"
for _name in __all__:
    _class = globals()[_name]
    if isinstance(_class, type):
        _class.__module__ = __name__
        _class.__qualname__ = _class.__name__
del _class, _enumeration, _name
