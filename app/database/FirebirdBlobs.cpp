// SPDX-License-Identifier: MIT
#include "database/FirebirdBlobs.h"

#include <QByteArray>
#include <QLibrary>
#include <QSqlQuery>
#include <QSqlResult>
#include <QVariant>

#include <array>
#include <cstdint>
#include <limits>

namespace orvquery {

namespace {

// What a statement is asked for, and a sub type, as Firebird's ibase.h has them.
constexpr char outputColumns = 4;
constexpr char describeBegin = 7;
constexpr char describeEnd = 8;
constexpr char columnNumber = 9;
constexpr char subType = 12;
constexpr int textSubType = 1;

using Handle = unsigned int;
using InfoFunction = std::intptr_t (*)(std::intptr_t* status, Handle* statement, short itemsSize,
                                       const char* items, short answerSize, char* answer);

// The lowest byte first.
int numberAt(const QByteArray& bytes, qsizetype position, qsizetype size) {
    int number = 0;
    for (qsizetype byte = size - 1; byte >= 0; --byte) {
        number = (number << 8) | quint8(bytes[position + byte]);
    }
    return number;
}

// An item that has a number is followed by its size in two bytes and the number.
QSet<int> textsIn(const QByteArray& answer) {
    constexpr qsizetype headSize = 3;
    QSet<int> texts;
    int column = -1;
    for (qsizetype at = 0; at + headSize <= answer.size();) {
        const char item = answer[at];
        if (item == outputColumns || item == describeEnd) {
            ++at;
            continue;
        }
        const bool isKnown = item == describeBegin || item == columnNumber || item == subType;
        const qsizetype size = numberAt(answer, at + 1, 2);
        if (!isKnown || size > qsizetype(sizeof(int)) || at + headSize + size > answer.size()) {
            break;
        }
        const int number = numberAt(answer, at + headSize, size);
        if (item == columnNumber) column = number - 1;
        if (item == subType && number == textSubType) texts.insert(column);
        at += headSize + size;
    }
    return texts;
}

}  // namespace

QSet<int> firebirdTextBlobs(const QSqlQuery& query) {
    static const auto info = [] {
        QLibrary library(QStringLiteral("fbclient"), 2);
        return reinterpret_cast<InfoFunction>(library.resolve("isc_dsql_sql_info"));
    }();
    const QVariant handle = query.result()->handle();
    if (info == nullptr || handle.metaType() != QMetaType::fromType<Handle>()) return {};
    constexpr std::array items = {outputColumns, describeBegin, columnNumber, subType, describeEnd};
    std::array<std::intptr_t, 20> status = {};
    Handle statement = *static_cast<const Handle*>(handle.constData());
    QByteArray answer(std::numeric_limits<short>::max(), 0);
    if (info(status.data(), &statement, short(items.size()), items.data(), short(answer.size()),
             answer.data()) != 0) {
        return {};
    }
    return textsIn(answer);
}

}  // namespace orvquery
