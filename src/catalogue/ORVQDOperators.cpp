// SPDX-License-Identifier: MIT
#include "catalogue/ORVQDOperators.h"

#include "core/Error.h"

#include <algorithm>

namespace {

constexpr int textsPerEntry = 6;

QString damagedStream() {
    return QStringLiteral("The stored operator list is damaged");
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
    if (aboutToChange) aboutToChange();
    apply();
    if (changed) changed();
}

TOperatorList::Entry TOperatorList::Items(int Index) const {
    return Index >= 0 && Index < Count() ? m_items[std::size_t(Index)] : nullptr;
}

int TOperatorList::Add(Entry Operator) {
    change([&] { m_items.push_back(std::move(Operator)); });
    return Count() - 1;
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
    if (list == this) return;
    change([&] {
        m_items.clear();
        for (const Entry& entry : list->m_items) {
            m_items.push_back(std::make_shared<TorvQDOperator>(*entry));
        }
    });
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
    bool whole = true;
    change([&] {
        m_items.clear();
        for (qsizetype at = 0; whole && at < texts.size(); at += textsPerEntry) {
            bool isNumber = false;
            const int count = texts.value(at + textsPerEntry - 1).toInt(&isNumber);
            whole = isNumber && at + textsPerEntry <= texts.size();
            if (!whole) break;
            m_items.push_back(std::make_shared<TorvQDOperator>(TorvQDOperator{
                texts[at], texts[at + 1], texts[at + 2], texts[at + 4], texts[at + 3], count}));
        }
    });
    if (!whole) throw orv::Error(damagedStream());
}

QDataStream& operator<<(QDataStream& stream, const TOperatorList& list) {
    stream << qint32(list.Count());
    for (int index = 0; index < list.Count(); ++index) {
        const TOperatorList::Entry entry = list.Items(index);
        stream << entry->Name << entry->Caption << entry->Relate << entry->Prefix << entry->Postfix
               << qint32(entry->Count);
    }
    return stream;
}

QDataStream& operator>>(QDataStream& stream, TOperatorList& list) {
    list.Clear();
    qint32 entries = 0;
    stream >> entries;
    for (qint32 index = 0; index < entries && stream.status() == QDataStream::Ok; ++index) {
        TorvQDOperator entry;
        qint32 count = 0;
        stream >> entry.Name >> entry.Caption >> entry.Relate >> entry.Prefix >> entry.Postfix >>
            count;
        entry.Count = count;
        if (stream.status() == QDataStream::Ok) list.Add(entry);
    }
    if (stream.status() != QDataStream::Ok || entries < 0) throw orv::Error(damagedStream());
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
