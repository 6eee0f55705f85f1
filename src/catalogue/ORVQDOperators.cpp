// SPDX-License-Identifier: MIT
#include "catalogue/ORVQDOperators.h"

#include "core/Error.h"

#include <QPointer>

#include <algorithm>

namespace {

constexpr int textsPerEntry = 6;

QString damage(const QString& what) {
    return QStringLiteral("The stored operator list is damaged: ") + what;
}

QString noNumber(qsizetype entry) {
    return QStringLiteral("the count of operator %1 is no number").arg(entry);
}

/// What stands in front of each value of a stored list.
enum class Mark : quint8 { ListEnd = 0, ListBegin = 1, Number = 2, Text = 3 };

QDataStream& operator<<(QDataStream& stream, Mark mark) {
    return stream << quint8(mark);
}

/// Reads the entries of a stored list. Raises orv::Error where it is damaged.
class EntryReader {
public:
    explicit EntryReader(QDataStream& stream) : m_stream(stream) {}

    void read(std::vector<TOperatorList::Entry>& entries) {
        if (readMark() != Mark::ListBegin) fail(QStringLiteral("it does not begin as one"));
        for (m_number = 1;; ++m_number) {
            const Mark mark = readMark();
            if (mark == Mark::ListEnd) return;
            auto entry = std::make_shared<TorvQDOperator>();
            readText(mark, entry->Name, "name");
            readText(readMark(), entry->Caption, "caption");
            readText(readMark(), entry->Relate, "relate text");
            readText(readMark(), entry->Prefix, "prefix");
            readText(readMark(), entry->Postfix, "postfix");
            entry->Count = readCount();
            entries.push_back(std::move(entry));
        }
    }

private:
    [[noreturn]] void fail(const QString& what) {
        if (m_stream.status() == QDataStream::Ok) m_stream.setStatus(QDataStream::ReadCorruptData);
        throw orv::Error(damage(what));
    }

    template <typename Value>
    [[nodiscard]] Value readValue() {
        Value value = {};
        m_stream >> value;
        if (m_stream.status() == QDataStream::Ok) return value;
        fail(m_number == 0 ? QStringLiteral("it is empty")
                           : QStringLiteral("it breaks off at operator %1").arg(m_number));
    }

    [[nodiscard]] Mark readMark() { return Mark(readValue<quint8>()); }

    void readText(Mark mark, QString& text, const char* name) {
        if (mark != Mark::Text) {
            fail(QStringLiteral("the %1 of operator %2 is no text")
                     .arg(QLatin1String(name))
                     .arg(m_number));
        }
        text = readValue<QString>();
    }

    [[nodiscard]] int readCount() {
        if (readMark() != Mark::Number) fail(noNumber(m_number));
        return readValue<qint32>();
    }

    QDataStream& m_stream;
    qsizetype m_number = 0;  // of the entry that is being read, from 1
};

std::vector<TOperatorList::Entry> copies(const std::vector<TOperatorList::Entry>& entries) {
    std::vector<TOperatorList::Entry> result;
    result.reserve(entries.size());
    for (const TOperatorList::Entry& entry : entries) {
        result.push_back(std::make_shared<TorvQDOperator>(*entry));
    }
    return result;
}

TorvQDOperator plainOperator(const QString& name) {
    TorvQDOperator result;
    result.Name = name;
    result.Caption = name;
    return result;
}

}  // namespace

TOperatorList::TOperatorList(QObject* parent) : TPersistent(parent) {}

template <typename Change>
void TOperatorList::change(const Change& apply) {
    // The list may die in a handler.
    const QPointer<TOperatorList> self(this);
    if (const std::function<void()> handler = aboutToChange) handler();
    if (!self) return;
    apply();
    if (const std::function<void()> handler = changed) handler();
}

TOperatorList::Entry TOperatorList::Items(int Index) const {
    return Index >= 0 && Index < Count() ? m_items[std::size_t(Index)] : nullptr;
}

int TOperatorList::Add(Entry Operator) {
    Q_ASSERT(Operator);
    const int index = Count();
    change([&] { m_items.push_back(std::move(Operator)); });
    return index;
}

int TOperatorList::Add(const TorvQDOperator& Operator) {
    return Add(std::make_shared<TorvQDOperator>(Operator));
}

void TOperatorList::Delete(int Index) {
    if (Index < 0 || Index >= Count()) return;
    change([&] { m_items.erase(m_items.begin() + Index); });
}

void TOperatorList::Clear() {
    change([&] { m_items.clear(); });
}

TOperatorList::Entry TOperatorList::FindName(const QString& Name) const {
    const auto found = std::find_if(m_items.begin(), m_items.end(),
                                    [&](const Entry& entry) { return entry->Name == Name; });
    return found == m_items.end() ? nullptr : *found;
}

void TOperatorList::Assign(const TPersistent* Source) {
    const auto* list = qobject_cast<const TOperatorList*>(Source);
    if (!list) {
        TPersistent::Assign(Source);
        return;
    }
    if (list != this) Assign(list->m_items);
}

void TOperatorList::Assign(const std::vector<Entry>& Source) {
    replace(copies(Source));
}

void TOperatorList::AssignTo(std::vector<Entry>& Dest) const {
    Dest = copies(m_items);
}

void TOperatorList::replace(std::vector<Entry> entries) {
    change([&] { m_items = std::move(entries); });
}

void TOperatorList::AssignTo(TPersistent* Dest) const {
    if (auto* list = qobject_cast<TOperatorList*>(Dest)) {
        list->Assign(this);
        return;
    }
    TPersistent::AssignTo(Dest);
}

QStringList TOperatorList::toStrings() const {
    QStringList texts;
    texts.reserve(qsizetype(m_items.size()) * textsPerEntry);
    for (const Entry& entry : m_items) {
        texts << entry->Name << entry->Caption << entry->Relate << entry->Prefix << entry->Postfix
              << QString::number(entry->Count);
    }
    return texts;
}

void TOperatorList::fromStrings(const QStringList& texts) {
    std::vector<Entry> entries;
    QString problem;
    for (qsizetype at = 0; problem.isEmpty() && at < texts.size(); at += textsPerEntry) {
        const qsizetype number = at / textsPerEntry + 1;
        bool isNumber = false;
        const int count = texts.value(at + textsPerEntry - 1).toInt(&isNumber);
        if (texts.size() - at < textsPerEntry) {
            problem = QStringLiteral("it breaks off at operator %1").arg(number);
        } else if (!isNumber) {
            problem = noNumber(number);
        } else {
            entries.push_back(std::make_shared<TorvQDOperator>(TorvQDOperator{
                texts[at], texts[at + 1], texts[at + 2], texts[at + 4], texts[at + 3], count}));
        }
    }
    if (problem.isEmpty() || !entries.empty()) replace(std::move(entries));
    if (!problem.isEmpty()) throw orv::Error(damage(problem));
}

QDataStream& operator<<(QDataStream& stream, const TOperatorList& list) {
    stream << Mark::ListBegin;
    for (int index = 0; index < list.Count(); ++index) {
        const TOperatorList::Entry entry = list.Items(index);
        for (const QString& text :
             {entry->Name, entry->Caption, entry->Relate, entry->Prefix, entry->Postfix}) {
            stream << Mark::Text << text;
        }
        stream << Mark::Number << qint32(entry->Count);
    }
    return stream << Mark::ListEnd;
}

QDataStream& operator>>(QDataStream& stream, TOperatorList& list) {
    std::vector<TOperatorList::Entry> entries;
    try {
        EntryReader(stream).read(entries);
    } catch (const orv::Error&) {
        list.replace(std::move(entries));
        throw;
    }
    list.replace(std::move(entries));
    return stream;
}

namespace orv {

QString blankText() {
    return QStringLiteral("         ");
}

void fillSmallOperators(TOperatorList& list) {
    for (const char* name : {"=", "<>", "<", ">", "<=", ">="}) {
        list.Add(plainOperator(QString::fromLatin1(name)));
    }
}

void fillOperators(TOperatorList& list) {
    fillSmallOperators(list);
    const auto add = [&list](const char* name, const char* relate, const char* prefix,
                             const char* postfix, int count) {
        TorvQDOperator entry = plainOperator(QString::fromLatin1(name));
        entry.Relate = QString::fromLatin1(relate);
        entry.Prefix = QString::fromLatin1(prefix);
        entry.Postfix = QString::fromLatin1(postfix);
        entry.Count = count;
        list.Add(entry);
    };
    add("LIKE", "", "", "", 1);
    add("NOT LIKE", "", "", "", 1);
    add("IN", "", "(", ")", 1);
    add("NOT IN", "", "(", ")", 1);
    add("BETWEEN", " and ", "", "", 2);
    add("NOT BETWEEN", " and ", "", "", 2);
    add("IS NULL", "", "", "", 0);
    add("IS NOT NULL", "", "", "", 0);
}

void fillGroupOperators(TGroupOperators& list, QObject* owner) {
    const auto add = [&](const char* caption, const char* prefix, const char* connector) {
        list.push_back({owner, QString::fromLatin1(caption), QString::fromLatin1(prefix),
                        QString::fromLatin1(connector)});
    };
    list.push_back({owner});
    add("Any", " ", " or ");
    add("None", "not", " and ");
    add("Not all", "not", " or ");
}

void fillAggregates(QStringList& list) {
    list << blankText();
    for (const char* name : {"SUM", "MIN", "MAX", "AVG", "COUNT"}) {
        list << QString::fromLatin1(name);
    }
}

}  // namespace orv
