// SPDX-License-Identifier: MIT
#include "criteria/ORVQDWhereRows.h"

#include "core/Text.h"

#include <algorithm>
#include <limits>

namespace {

constexpr int fixedElements = 5;
constexpr int longestShownText = 30;
constexpr int mostOperands = 1000;
constexpr int indentUnitBlanks = 3;
constexpr int elementGapPx = 5;
const QString crLf = QStringLiteral("\r\n");

bool isSet(const QString& text) {
    return !orv::orvTrim(QStringView(text)).isEmpty();
}

QString withoutLeadingBlanks(const QString& text) {
    qsizetype start = 0;
    while (start < text.size() && text[start].unicode() <= u' ') ++start;
    return text.mid(start);
}

}  // namespace

namespace orv {

TextWidths::~TextWidths() = default;

TOperatorList::Entry expressionOperator() {
    static const TOperatorList::Entry entry =
        std::make_shared<TorvQDOperator>(TorvQDOperator{{}, {}, {}, {}, {}, 0});
    return entry;
}

const TorvQDGroupFunc* findGroupOperator(const TGroupOperators& list, const QString& name) {
    const auto found = std::find_if(list.begin(), list.end(), [&](const TorvQDGroupFunc& entry) {
        return entry.Caption.toUpper() == name.toUpper();
    });
    return found == list.end() ? nullptr : &*found;
}

int operandCount(const TOperatorList::Entry& entry) {
    return entry ? std::clamp(entry->Count, 0, mostOperands) : 1;
}

}  // namespace orv

// --- elements ---

void TorvQDControl::SetText(const QString& text) {
    QString shown = text.isEmpty() ? orv::blankText() : text;
    if (shown.size() > longestShownText) {
        const bool splitsPair = shown[longestShownText - 1].isHighSurrogate();
        shown = shown.left(longestShownText - (splitsPair ? 1 : 0)) + QStringLiteral("...");
    }
    shown.replace(u'\r', u' ');
    shown.replace(u'\n', u' ');
    m_text = shown;
}

// --- collections ---

TorvQDWhereRows::TorvQDWhereRows(const orv::ConditionContext* context, TorvQDWhereRow* ownerRow)
    : TCollectionEx([this] { return std::make_unique<TorvQDWhereRow>(this); }),
      m_context(context),
      m_ownerRow(ownerRow) {}

TorvQDWhereRow* TorvQDWhereRows::Row(int Index) const {
    return static_cast<TorvQDWhereRow*>(GetItem(Index));
}

TorvQDWhereRow* TorvQDWhereRows::AddRow() {
    return static_cast<TorvQDWhereRow*>(Add());
}

void TorvQDWhereRows::Update(TCollectionItemEx* Item) {
    if (m_context->changed) m_context->changed(static_cast<TorvQDWhereRow*>(Item));
}

// Rows that changed meanwhile told nobody.
void TorvQDWhereRows::EndUpdate() {
    for (int index = 0; index < GetCount(); ++index) Row(index)->m_isPlaced = false;
    TCollectionEx::EndUpdate();
}

// --- references ---

namespace orv {

ElementRef::ElementRef(const TorvQDControl* element) {
    if (!element) return;
    m_row = element->Row->handle();
    m_kind = element->Kind;
}

TorvQDWhereRow* ElementRef::row() const {
    const std::shared_ptr<TorvQDWhereRow*> row = m_row.lock();
    return row ? *row : nullptr;
}

TorvQDControl* ElementRef::get() const {
    const TorvQDWhereRow* found = row();
    if (!found || m_kind >= int(found->Controls.size())) return nullptr;
    return found->Controls[std::size_t(m_kind)].get();
}

}  // namespace orv

// --- rows ---

TorvQDWhereRow::TorvQDWhereRow(TorvQDWhereRows* collection)
    : SubRows(std::make_unique<TorvQDWhereRows>(&collection->context(), this)),
      FieldFunc(orv::blankText()),
      FieldName(orv::blankText()),
      ArgFunc(orv::blankText()),
      m_handle(std::make_shared<TorvQDWhereRow*>(this)) {
    if (collection->context().operators) Operator = collection->context().operators->Items(0);
    SetArgumentStrings();
}

// Groups may nest deeply: what is below goes row by row, not by recursion.
TorvQDWhereRow::~TorvQDWhereRow() {
    std::vector<std::unique_ptr<TCollectionItemEx>> going = SubRows->takeAll();
    while (!going.empty()) {
        const std::unique_ptr<TCollectionItemEx> item = std::move(going.back());
        going.pop_back();
        for (auto& below : static_cast<TorvQDWhereRow&>(*item).SubRows->takeAll()) {
            going.push_back(std::move(below));
        }
    }
}

void TorvQDWhereRow::takeSubRows(TorvQDWhereRow& from) {
    SubRows.swap(from.SubRows);
    SubRows->m_ownerRow = this;
    from.SubRows->m_ownerRow = &from;
    SubRows->Changed();
}

void TorvQDWhereRow::SetArgumentStrings() {
    const int count = orv::operandCount(Operator);
    while (Arguments.size() > count) Arguments.removeLast();
    while (Arguments.size() < count) Arguments << orv::blankText();
    setArguments(Arguments);
}

void TorvQDWhereRow::setArguments(const QStringList& texts) {
    Arguments = texts;
    const std::size_t elements = std::size_t(fixedElements + texts.size());
    if (Controls.size() > elements) Controls.resize(elements);
    while (Controls.size() < elements) {
        Controls.push_back(std::make_unique<TorvQDControl>(this, int(Controls.size())));
    }
    contentChanged();
}

void TorvQDWhereRow::contentChanged() {
    m_isPlaced = false;
    if (collection()) Changed(false);
}

void TorvQDWhereRow::setOperator(const TOperatorList::Entry& entry) {
    Operator = entry;
    SetArgumentStrings();
}

void TorvQDWhereRow::SetGroupOper(const QString& Name) {
    GroupOper = Name;
    Expanded = true;
    contentChanged();
    SubRows->Changed();
}

void TorvQDWhereRow::SetExpanded(bool Value) {
    Expanded = Value;
    contentChanged();
    SubRows->Changed();
}

void TorvQDWhereRow::SetMuted(bool Value) {
    Muted = Value;
    contentChanged();
    // Texts of collapsed groups around it have changed, and the looks of what is in it.
    if (rows()) rows()->Changed();
}

bool TorvQDWhereRow::isWritten() const {
    if (Muted) return false;
    const int count = SubRows->GetCount();
    if (!isGroup() || count == 0) return true;
    for (int index = 0; index < count; ++index) {
        if (SubRows->Row(index)->isWritten()) return true;
    }
    return false;
}

bool TorvQDWhereRow::isMutedWithin() const {
    for (const TorvQDWhereRow* row = this; row; row = row->parentRow()) {
        if (row->Muted) return true;
    }
    return false;
}

void TorvQDWhereRow::refreshTexts() {
    refreshTexts(GetFullIndex());
}

void TorvQDWhereRow::refreshTexts(const QString& number) {
    Controls[0]->SetText(number);
    if (isGroup()) {
        Controls[1]->SetText(Expanded ? GroupOper : shortCondition(longestShownText + 1));
        return;
    }
    Controls[1]->SetText(FieldFunc);
    Controls[2]->SetText(FieldName);
    Controls[3]->SetText(Operator ? Operator->Caption : QString());
    Controls[4]->SetText(ArgFunc);
    for (qsizetype index = 0; index < Arguments.size(); ++index) {
        Controls[std::size_t(fixedElements + index)]->SetText(Arguments[index]);
    }
}

// --- geometry ---

void TorvQDWhereRow::SetDimentionControls(int left) {
    placeControls(left, GetFullIndex());
}

void TorvQDWhereRow::placeControls(int left, const QString& number) {
    refreshTexts(number);
    const orv::ConditionContext& context = rows()->context();
    const auto width = [&](const QString& text, bool isEmphasised = true) {
        return context.widths ? context.widths->width(text, isEmphasised) : 0;
    };
    int x = left;
    const auto place = [&](TorvQDControl& control, int controlWidth) {
        control.Left = x;
        control.Width = controlWidth;
    };
    place(*Controls[ekButton], context.rowHeight + width(Controls[ekButton]->GetText()));
    x += Controls[ekButton]->Width + elementGapPx;
    const int separator =
        isGroup() || !Operator ? elementGapPx : width(Operator->Relate, false) + elementGapPx;
    for (std::size_t index = 1; index < Controls.size(); ++index) {
        TorvQDControl& control = *Controls[index];
        const bool isFunction = index == ekFieldFunc || index == ekArgFunc;
        const bool isShown = isGroup() ? index == ekGroupOper : !isFunction || context.functions;
        place(control, isShown ? width(control.GetText()) : 0);
        if (isShown) x += control.Width + (index >= ekArgument ? separator : elementGapPx);
    }
    m_placedRight = rightBound();
    m_isPlaced = true;
}

int TorvQDWhereRow::GetTopBound() const {
    return m_shownAt < 0 ? -1 : m_shownAt * rows()->context().rowHeight;
}

void TorvQDWhereRow::OffsetControls(int fromIndex, int dx) {
    for (std::size_t index = std::size_t(std::max(0, fromIndex)); index < Controls.size();
         ++index) {
        Controls[index]->Left -= dx;
    }
}

int TorvQDWhereRow::rightBound() const {
    int right = 0;
    for (const auto& control : Controls) right = std::max(right, control->Left + control->Width);
    return right;
}

QString* TorvQDWhereRow::textOf(int kind) {
    if (isGroup()) return nullptr;
    if (kind == ekFieldName) return &FieldName;
    const qsizetype index = kind - ekArgument;
    return index >= 0 && index < Arguments.size() ? &Arguments[index] : nullptr;
}

// --- where a row stands ---

TorvQDWhereRows* TorvQDWhereRow::rows() const {
    return static_cast<TorvQDWhereRows*>(collection());
}

TorvQDWhereRow* TorvQDWhereRow::parentRow() const {
    return rows() ? rows()->ownerRow() : nullptr;
}

int TorvQDWhereRow::depth() const {
    int depth = 1;
    for (const TorvQDWhereRow* row = parentRow(); row; row = row->parentRow()) ++depth;
    return depth;
}

QString TorvQDWhereRow::GetFullIndex() const {
    if (!parentRow()) return QStringLiteral(" ");
    QString number;
    for (const TorvQDWhereRow* row = this; row->parentRow(); row = row->parentRow()) {
        number.prepend(QString::number(row->GetIndex() + 1) + u'.');
    }
    return number;
}

TorvQDWhereRow* TorvQDWhereRow::GetPreviousRow() const {
    const int index = GetIndex();
    if (index <= 0) return parentRow();
    TorvQDWhereRow* row = rows()->Row(index - 1);
    while (row->Expanded && row->SubRows->GetCount() > 0) {
        row = row->SubRows->Row(row->SubRows->GetCount() - 1);
    }
    return row;
}

TorvQDWhereRow* TorvQDWhereRow::GetNextRow() const {
    if (Expanded) return SubRows->Row(0);
    for (const TorvQDWhereRow* row = this; row->parentRow(); row = row->parentRow()) {
        if (TorvQDWhereRow* next = row->rows()->Row(row->GetIndex() + 1)) return next;
    }
    return nullptr;
}

void TorvQDWhereRow::Assign(const TCollectionItemEx& Source) {
    const auto* row = dynamic_cast<const TorvQDWhereRow*>(&Source);
    if (!row || row == this) return;
    GroupOper = row->GroupOper;
    FieldFunc = row->FieldFunc;
    FieldName = row->FieldName;
    ArgFunc = row->ArgFunc;
    Operator = row->Operator;
    SetArgumentStrings();
    for (qsizetype index = 0; index < Arguments.size(); ++index) {
        Arguments[index] = row->Arguments.value(index, orv::blankText());
    }
    Valid = row->Valid;
    AuxText = row->AuxText;
    Expanded = row->Expanded;
    Muted = row->Muted;
    contentChanged();
}

// --- SQL text ---

/// One buffer for the text of a whole tree.
struct TorvQDWhereRow::Writer {
    QString text;
    bool multiLine;
    qsizetype limit;  // no more is written once the text is longer

    [[nodiscard]] bool isFull() const { return text.size() > limit; }
    void newLine(int depth) {
        if (!multiLine) return;
        text += crLf;
        text.resize(text.size() + qsizetype(depth) * indentUnitBlanks, u' ');
    }
    // Blanks in front of a word are for one line only.
    void word(const QString& texts) { text += multiLine ? withoutLeadingBlanks(texts) : texts; }
};

QString TorvQDWhereRow::GetSQLCondition(bool MultiLine) const {
    Writer writer{{}, MultiLine, std::numeric_limits<qsizetype>::max()};
    append(writer, depth());
    return writer.text;
}

QString TorvQDWhereRow::shortCondition(int limit) const {
    Writer writer{{}, false, limit};
    append(writer, 1);
    return writer.text;
}

QString TorvQDWhereRow::conditionAsRoot() const {
    Writer writer{{}, true, std::numeric_limits<qsizetype>::max()};
    append(writer, 1);
    return writer.text;
}

void TorvQDWhereRow::append(Writer& writer, int depth) const {
    if (writer.isFull()) return;
    if (isGroup()) {
        appendGroup(writer, depth);
    } else {
        appendSimple(writer, depth);
    }
}

void TorvQDWhereRow::appendGroup(Writer& writer, int depth) const {
    const TGroupOperators* list = rows()->context().groupOperators;
    const TorvQDGroupFunc* group = list ? orv::findGroupOperator(*list, GroupOper) : nullptr;
    std::vector<const TorvQDWhereRow*> written;
    for (int index = 0; index < SubRows->GetCount(); ++index) {
        if (SubRows->Row(index)->isWritten()) written.push_back(SubRows->Row(index));
    }
    if (!group || written.empty()) {
        writer.text += orv::blankText();
        return;
    }
    writer.newLine(depth);
    writer.word(group->Prefix);
    writer.text += u'(';
    for (const TorvQDWhereRow* row : written) {
        if (writer.isFull()) break;
        if (row != written.front()) {
            writer.newLine(depth);
            writer.word(group->Connector);
        }
        row->append(writer, depth + 1);
    }
    writer.newLine(depth);
    writer.text += u')';
}

void TorvQDWhereRow::appendSimple(Writer& writer, int depth) const {
    writer.newLine(depth);
    writer.text += u'(';
    if (isExpression()) {
        writer.text += FieldName + u')';
        return;
    }
    const TorvQDOperator operation = Operator ? *Operator : TorvQDOperator();
    const bool callsArgument = Arguments.size() == 1 && isSet(ArgFunc);
    writer.text += isSet(FieldFunc) ? FieldFunc + u'(' + FieldName + u')' : FieldName;
    writer.text += u' ' + operation.Name + u' ';
    writer.text += callsArgument ? ArgFunc + u'(' : operation.Prefix;
    writer.text += Arguments.join(operation.Relate);
    if (callsArgument) writer.text += u')';
    writer.text += operation.Postfix + u')';
}
