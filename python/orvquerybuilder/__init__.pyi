# SPDX-License-Identifier: MIT
import datetime
import decimal
import enum
from typing import Any, Callable, Iterable, Iterator, List, Optional, Tuple, Union, overload

from PyQt6.QtCore import (
    QByteArray,
    QDate,
    QDateTime,
    QMimeData,
    QObject,
    QTime,
    pyqtSignal,
)
from PyQt6.QtGui import QColor, QFont, QUndoStack
from PyQt6.QtWidgets import QFrame, QWidget

__version__: str

class OrvError(Exception): ...

class ORVQDWindow__1(enum.IntEnum):
    erAdd = 0
    erDelete = 1
    erName = 2
    erArgument = 3

class TAddRemove(enum.IntEnum):
    araAdd = 0
    araRemove = 1

class TBorderKind(enum.IntEnum):
    edgeBump = 0
    edgeEtched = 1
    edgeRaised = 2
    edgeSunken = 3

class TFieldType(enum.IntEnum):
    ftUnknown = 0
    ftString = 1
    ftSmallint = 2
    ftInteger = 3
    ftWord = 4
    ftBoolean = 5
    ftFloat = 6
    ftCurrency = 7
    ftBCD = 8
    ftDate = 9
    ftTime = 10
    ftDateTime = 11
    ftBytes = 12
    ftVarBytes = 13
    ftAutoInc = 14
    ftBlob = 15
    ftMemo = 16
    ftGraphic = 17
    ftFmtMemo = 18
    ftParadoxOle = 19
    ftDBaseOle = 20
    ftTypedBinary = 21
    ftCursor = 22
    ftFixedChar = 23
    ftWideString = 24
    ftLargeint = 25
    ftADT = 26
    ftArray = 27
    ftReference = 28
    ftDataSet = 29

class TKindOfJoin(enum.IntEnum):
    klInnerJoin = 0
    klLOuterJoin = 1
    klROuterJoin = 2
    klFOuterJoin = 3

class TParamType(enum.IntEnum):
    ptUnknown = 0
    ptInput = 1
    ptOutput = 2
    ptInputOutput = 3
    ptResult = 4

class TbtnStyle(enum.IntEnum):
    btnFlat = 0
    btn3DLook = 1
    btnRaise = 2

erAdd = ORVQDWindow__1.erAdd
erDelete = ORVQDWindow__1.erDelete
erName = ORVQDWindow__1.erName
erArgument = ORVQDWindow__1.erArgument
araAdd = TAddRemove.araAdd
araRemove = TAddRemove.araRemove
edgeBump = TBorderKind.edgeBump
edgeEtched = TBorderKind.edgeEtched
edgeRaised = TBorderKind.edgeRaised
edgeSunken = TBorderKind.edgeSunken
ftUnknown = TFieldType.ftUnknown
ftString = TFieldType.ftString
ftSmallint = TFieldType.ftSmallint
ftInteger = TFieldType.ftInteger
ftWord = TFieldType.ftWord
ftBoolean = TFieldType.ftBoolean
ftFloat = TFieldType.ftFloat
ftCurrency = TFieldType.ftCurrency
ftBCD = TFieldType.ftBCD
ftDate = TFieldType.ftDate
ftTime = TFieldType.ftTime
ftDateTime = TFieldType.ftDateTime
ftBytes = TFieldType.ftBytes
ftVarBytes = TFieldType.ftVarBytes
ftAutoInc = TFieldType.ftAutoInc
ftBlob = TFieldType.ftBlob
ftMemo = TFieldType.ftMemo
ftGraphic = TFieldType.ftGraphic
ftFmtMemo = TFieldType.ftFmtMemo
ftParadoxOle = TFieldType.ftParadoxOle
ftDBaseOle = TFieldType.ftDBaseOle
ftTypedBinary = TFieldType.ftTypedBinary
ftCursor = TFieldType.ftCursor
ftFixedChar = TFieldType.ftFixedChar
ftWideString = TFieldType.ftWideString
ftLargeint = TFieldType.ftLargeint
ftADT = TFieldType.ftADT
ftArray = TFieldType.ftArray
ftReference = TFieldType.ftReference
ftDataSet = TFieldType.ftDataSet
klInnerJoin = TKindOfJoin.klInnerJoin
klLOuterJoin = TKindOfJoin.klLOuterJoin
klROuterJoin = TKindOfJoin.klROuterJoin
klFOuterJoin = TKindOfJoin.klFOuterJoin
ptUnknown = TParamType.ptUnknown
ptInput = TParamType.ptInput
ptOutput = TParamType.ptOutput
ptInputOutput = TParamType.ptInputOutput
ptResult = TParamType.ptResult
btnFlat = TbtnStyle.btnFlat
btn3DLook = TbtnStyle.btn3DLook
btnRaise = TbtnStyle.btnRaise

class MessageIcon(enum.Enum):
    None_ = 0
    Information = 1
    Exclamation = 2
    Question = 3
    Error = 4

class MessageButtons(enum.Enum):
    Ok = 0
    YesNo = 1

class MessageAnswer(enum.Enum):
    Ok = 0
    Yes = 1
    No = 2

class MessageRequest:
    @property
    def text(self) -> str: ...
    @property
    def caption(self) -> str: ...
    @property
    def icon(self) -> MessageIcon: ...
    @property
    def buttons(self) -> MessageButtons: ...

_Field = Union[TFieldDef, Tuple[str, TFieldType]]
_Held = Union[None, bool, int, float, str, QDate, QTime, QDateTime, QByteArray, SqlText]
_Value = Union[
    _Held,
    decimal.Decimal,
    bytes,
    bytearray,
    datetime.date,
    datetime.time,
    datetime.datetime,
]

class TFieldDef:
    def __init__(self, Name: str, DataType: TFieldType = ...) -> None: ...
    def __hash__(self) -> int: ...
    @property
    def Name(self) -> str: ...
    @property
    def DataType(self) -> TFieldType: ...

class TDataSet:
    def __init__(self, FieldDefs: Iterable[_Field] = ...) -> None: ...
    def __len__(self) -> int: ...
    @property
    def FieldDefs(self) -> Tuple[TFieldDef, ...]: ...

class SqlText:
    def __init__(self, text: str) -> None: ...
    def __hash__(self) -> int: ...
    @property
    def text(self) -> str: ...

class TParam:
    def __init__(
        self,
        Name: str,
        DataType: TFieldType = ...,
        ParamType: TParamType = ...,
        Value: _Value = ...,
    ) -> None: ...
    def __hash__(self) -> int: ...
    @property
    def Name(self) -> str: ...
    @property
    def DataType(self) -> TFieldType: ...
    @property
    def ParamType(self) -> TParamType: ...
    @property
    def HasValue(self) -> bool: ...
    @property
    def Value(self) -> _Held: ...

class TParams:
    def __init__(self, Items: Iterable[TParam] = ...) -> None: ...
    def __len__(self) -> int: ...
    @property
    def Items(self) -> Tuple[TParam, ...]: ...

class Finding:
    def __hash__(self) -> int: ...
    @property
    def start(self) -> int: ...
    @property
    def length(self) -> int: ...
    @property
    def text(self) -> str: ...
    @property
    def what(self) -> str: ...

class DraggedField:
    @property
    def alias(self) -> str: ...
    @property
    def field(self) -> str: ...
    def qualifiedName(self) -> str: ...

class TorvQDOperator:
    def __init__(
        self,
        Name: str = ...,
        Caption: str = ...,
        Relate: str = ...,
        Postfix: str = ...,
        Prefix: str = ...,
        Count: int = ...,
    ) -> None: ...
    def __hash__(self) -> int: ...
    @property
    def Name(self) -> str: ...
    @property
    def Caption(self) -> str: ...
    @property
    def Relate(self) -> str: ...
    @property
    def Postfix(self) -> str: ...
    @property
    def Prefix(self) -> str: ...
    @property
    def Count(self) -> int: ...

class TOperatorList:
    @overload
    def __init__(self) -> None: ...
    @overload
    def __init__(self, entries: Iterable[TorvQDOperator]) -> None: ...
    def __len__(self) -> int: ...
    def __getitem__(self, index: int) -> TorvQDOperator: ...
    def __iter__(self) -> Iterator[TorvQDOperator]: ...
    def Count(self) -> int: ...
    def Items(self, Index: int) -> Optional[TorvQDOperator]: ...
    def Add(self, Operator: TorvQDOperator) -> int: ...
    def Delete(self, Index: int) -> None: ...
    def Clear(self) -> None: ...
    def FindName(self, Name: str) -> Optional[TorvQDOperator]: ...
    def Assign(self, Source: TOperatorList) -> None: ...
    def toStrings(self) -> List[str]: ...
    def fromStrings(self, texts: Iterable[str]) -> None: ...

class TorvQDWorkAreaOptions:
    def __init__(self) -> None: ...
    HideSelection: bool
    DragFieldName: bool
    Flat: bool
    ShowFieldsType: bool
    FlatCaptionBtns: bool
    TableBorder: TBorderKind
    Font: QFont
    TableColor: QColor
    ProcedureColor: QColor
    def Assign(self, Source: TorvQDWorkAreaOptions) -> None: ...

class TorvQDConditionOptions:
    def __init__(self) -> None: ...
    SelectRow: bool
    BtnsStyle: TbtnStyle
    ActiveRowColor: QColor
    def Assign(self, Source: TorvQDConditionOptions) -> None: ...

class TorvQDTable:
    def __hash__(self) -> int: ...
    def isAlive(self) -> bool: ...
    @property
    def TableName(self) -> str: ...
    @property
    def Alias(self) -> str: ...
    Hint: str
    @property
    def FieldState(self) -> int: ...
    Expanded: bool
    Left: int
    Top: int
    Width: int
    Height: int
    @property
    def Items(self) -> Tuple[TorvQDListItem, ...]: ...
    def GetAlias(self) -> str: ...
    def GetCaption(self) -> str: ...
    def GetFieldItem(self, Name: str) -> Optional[TorvQDListItem]: ...
    def SetFieldState(self, State: int) -> None: ...
    def MoveTable(self, DX: int, DY: int) -> None: ...
    def isProcedure(self) -> bool: ...
    def GetParameters(self) -> str: ...
    def setParameter(self, ListItem: TorvQDListItem, Value: _Value = ...) -> None: ...
    def CloseTable(self) -> None: ...
    def UnlinkTable(self) -> None: ...

class TorvQDListItem:
    def __hash__(self) -> int: ...
    def isAlive(self) -> bool: ...
    @property
    def Name(self) -> str: ...
    @property
    def FieldType(self) -> TFieldType: ...
    @property
    def ParamType(self) -> TParamType: ...
    Checked: bool
    IsNull: bool
    @property
    def Table(self) -> TorvQDTable: ...
    @property
    def Value(self) -> _Held: ...
    @Value.setter
    def Value(self, value: _Value) -> None: ...
    def GetIndex(self) -> int: ...
    def GetDataName(self) -> str: ...
    def SetCheck(self, value: bool) -> None: ...

class TorvQDLink:
    def __hash__(self) -> int: ...
    def isAlive(self) -> bool: ...
    @property
    def Table1(self) -> TorvQDTable: ...
    @property
    def Table2(self) -> TorvQDTable: ...
    @property
    def Item1(self) -> TorvQDListItem: ...
    @property
    def Item2(self) -> TorvQDListItem: ...
    @property
    def KindOfJoin(self) -> TKindOfJoin: ...
    def operatorText(self) -> str: ...
    def GetHint(self) -> str: ...
    Muted: bool

class TorvQDWorkArea:
    def setLinkColor(self, color: QColor) -> None: ...

class TorvQDListOfTables:
    def __len__(self) -> int: ...
    def __getitem__(self, index: int) -> TorvQDTable: ...
    def __iter__(self) -> Iterator[TorvQDTable]: ...
    def TablesCount(self) -> int: ...
    def Tables(self, Index: int) -> TorvQDTable: ...
    def tableByAlias(self, alias: str) -> Optional[TorvQDTable]: ...
    def AddTable(self, Name: str, DataSet: Optional[TDataSet] = ...) -> Optional[TorvQDTable]: ...
    def AddProc(
        self,
        Name: str,
        DataSet: Optional[TDataSet] = ...,
        Params: Optional[TParams] = ...,
    ) -> Optional[TorvQDTable]: ...
    @overload
    def DeleteTable(self, Index: int) -> None: ...
    @overload
    def DeleteTable(self, Table: TorvQDTable) -> None: ...

_Fields = Union[None, TDataSet, Tuple[Optional[TDataSet], Optional[TParams]]]

class TorvQueryBuilder(QFrame):
    class TAlign(enum.IntEnum):
        alNone = 0
        alTop = 1
        alBottom = 2
        alLeft = 3
        alRight = 4
        alClient = 5

    alNone = TAlign.alNone
    alTop = TAlign.alTop
    alBottom = TAlign.alBottom
    alLeft = TAlign.alLeft
    alRight = TAlign.alRight
    alClient = TAlign.alClient

    def __init__(self, parent: Optional[QWidget] = ..., designMode: bool = ...) -> None: ...

    OnGetTableFields: Optional[Callable[[str], _Fields]]
    OnAddRemoveTable: Optional[
        Callable[[TorvQueryBuilder, TorvQDTable, TAddRemove], Optional[bool]]
    ]
    OnAddRemoveLink: Optional[Callable[[TorvQueryBuilder, TorvQDLink, TAddRemove], Optional[bool]]]
    OnEnterProcParameter: Optional[Callable[[TorvQueryBuilder, TorvQDTable, TorvQDListItem], Any]]
    OnStartDrag: Optional[Callable[[TorvQueryBuilder, DraggedField], Any]]
    OnDragOver: Optional[
        Callable[[TorvQueryBuilder, Optional[QObject], int, int], Optional[bool]]
    ]
    OnDragDrop: Optional[Callable[[TorvQueryBuilder, Optional[QObject], int, int], Any]]
    OnEndDrag: Optional[Callable[[TorvQueryBuilder, Optional[QObject], int, int], Any]]

    StatementChanged: pyqtSignal
    LayoutChanged: pyqtSignal
    LoadReported: pyqtSignal

    Align: TAlign
    TabsHeight: int
    KeepMeaning: bool
    TailText: str
    OperatorsList: List[str]
    @property
    def WorkArea(self) -> TorvQDWorkArea: ...
    @property
    def ListOfTables(self) -> TorvQDListOfTables: ...
    @property
    def Operators(self) -> TOperatorList: ...
    @Operators.setter
    def Operators(self, operators: Iterable[TorvQDOperator]) -> None: ...
    WorkAreaOptions: TorvQDWorkAreaOptions
    ConditionOptions: TorvQDConditionOptions
    WorkAreaHideSelection: bool
    WorkAreaDragFieldName: bool
    WorkAreaFlat: bool
    WorkAreaShowFieldsType: bool
    WorkAreaFlatCaptionBtns: bool
    WorkAreaTableBorder: TBorderKind
    WorkAreaFont: QFont
    WorkAreaTableColor: QColor
    WorkAreaProcedureColor: QColor
    ConditionSelectRow: bool
    ConditionBtnsStyle: TbtnStyle
    ConditionActiveRowColor: QColor

    # As forms call them.
    def setWorkAreaHideSelection(self, value: bool) -> None: ...
    def setWorkAreaDragFieldName(self, value: bool) -> None: ...
    def setWorkAreaFlat(self, value: bool) -> None: ...
    def setWorkAreaShowFieldsType(self, value: bool) -> None: ...
    def setWorkAreaFlatCaptionBtns(self, value: bool) -> None: ...
    def setWorkAreaTableBorder(self, value: TBorderKind) -> None: ...
    def setWorkAreaFont(self, value: QFont) -> None: ...
    def setWorkAreaTableColor(self, value: QColor) -> None: ...
    def setWorkAreaProcedureColor(self, value: QColor) -> None: ...
    def setConditionSelectRow(self, value: bool) -> None: ...
    def setConditionBtnsStyle(self, value: TbtnStyle) -> None: ...
    def setConditionActiveRowColor(self, value: QColor) -> None: ...
    def setAlign(self, value: TAlign) -> None: ...
    def setTabsHeight(self, value: int) -> None: ...
    def setKeepMeaning(self, value: bool) -> None: ...
    def setTailText(self, value: str) -> None: ...
    def setOperatorsList(self, value: Iterable[str]) -> None: ...

    def GetSQLStatment(self) -> str: ...
    def LoadSQL(self, Text: str) -> None: ...
    def TableAsWritten(self) -> str: ...
    def LoadReport(self) -> List[Finding]: ...
    def Validate(self) -> List[Finding]: ...
    def Clear(self) -> None: ...
    def SaveState(self) -> bytes: ...
    def RestoreState(self, json: Union[bytes, bytearray, QByteArray]) -> None: ...
    def CommitPendingEdits(self) -> None: ...
    def SelectedFields(self) -> List[str]: ...
    def AllFields(self) -> List[str]: ...
    def DragMimeData(self) -> Optional[QMimeData]: ...
    def ModifyOperators(self, Restrictions: Iterable[ORVQDWindow__1] = ...) -> None: ...

class UndoRecorder(QObject):
    def __init__(
        self,
        builder: TorvQueryBuilder,
        stack: QUndoStack,
        parent: Optional[QObject] = None,
    ) -> None: ...
    def reset(self) -> None: ...
    def record(self) -> None: ...
    def isRestoring(self) -> bool: ...

    class Group:
        def __init__(self, recorder: UndoRecorder, text: str = ...) -> None: ...
        def __enter__(self) -> UndoRecorder.Group: ...
        def __exit__(self, type: Any, value: Any, traceback: Any) -> None: ...

def ProcessName(Name: str) -> str: ...
def reservedWords() -> List[str]: ...
def setReservedWords(words: Iterable[str]) -> None: ...
def setErrorHandler(
    handler: Optional[Callable[[str], Any]],
) -> Optional[Callable[[str], Any]]: ...
def setMessageService(
    service: Optional[Callable[[MessageRequest], Optional[MessageAnswer]]],
) -> Optional[Callable[[MessageRequest], Optional[MessageAnswer]]]: ...
