// SPDX-License-Identifier: MIT
#include "documents/OtherKeys.h"

#include <QHash>
#include <QJsonArray>
#include <QStringList>

#include <vector>

namespace orvquery {

namespace {

/// The keys whose values tell the parts of a list from each other: those of a later entry are asked
/// when no part has the values of an earlier one.
using Identity = std::vector<QStringList>;

const Identity& identityIn(const QString& list) {
    static const auto keys = [](const char* names) {
        return QString::fromLatin1(names).split(u' ');
    };
    static const QHash<QString, Identity> identities = {
        {QStringLiteral("tables"), {keys("name alias"), keys("name")}},
        {QStringLiteral("fields"), {keys("name")}},
        {QStringLiteral("parameters"), {keys("name")}},
        {QStringLiteral("joins"), {keys("table1 table2")}},
        {QStringLiteral("links"),
         {keys("table1 field1 operator table2 field2"), keys("table1 field1 table2 field2")}},
        {QStringLiteral("rows"),
         {keys("group func field operator argFunc arguments"), keys("group field")}}};
    static const Identity none;
    const auto found = identities.constFind(list);
    return found == identities.cend() ? none : *found;
}

// For each part of the one list the place of the same part in the other, or -1. Of parts that
// cannot be told from each other the first is the first.
std::vector<int> placesIn(const QJsonArray& other, const QJsonArray& parts,
                          const Identity& identity) {
    std::vector<int> places(std::size_t(parts.size()), -1);
    std::vector<bool> isTaken(std::size_t(other.size()), false);
    const auto isSame = [](const QJsonObject& left, const QJsonObject& right,
                           const QStringList& keys) {
        for (const QString& key : keys) {
            if (left.value(key) != right.value(key)) return false;
        }
        return true;
    };
    for (const QStringList& keys : identity) {
        for (std::size_t part = 0; part < places.size(); ++part) {
            if (places[part] >= 0) continue;
            const QJsonObject object = parts[qsizetype(part)].toObject();
            for (std::size_t place = 0; place < isTaken.size(); ++place) {
                if (isTaken[place] || !isSame(object, other[qsizetype(place)].toObject(), keys)) {
                    continue;
                }
                places[part] = int(place);
                isTaken[place] = true;
                break;
            }
        }
    }
    return places;
}

QJsonObject withOthers(const QJsonObject& now, const QJsonObject& read,
                       const QJsonObject& understood);

QJsonArray withOthers(const QJsonArray& now, const QJsonArray& read, const QJsonArray& understood,
                      const Identity& identity) {
    const std::vector<int> readPlaces = placesIn(read, now, identity);
    const std::vector<int> understoodPlaces = placesIn(understood, read, identity);
    QJsonArray result = now;
    for (std::size_t part = 0; part < readPlaces.size(); ++part) {
        const int place = readPlaces[part];
        if (place < 0) continue;
        const int same = understoodPlaces[std::size_t(place)];
        if (same < 0) continue;
        result[qsizetype(part)] = withOthers(now[qsizetype(part)].toObject(),
                                             read[place].toObject(), understood[same].toObject());
    }
    return result;
}

QJsonObject withOthers(const QJsonObject& now, const QJsonObject& read,
                       const QJsonObject& understood) {
    QJsonObject result = now;
    for (auto each = read.begin(); each != read.end(); ++each) {
        const QString key = each.key();
        if (!now.contains(key)) {
            if (!understood.contains(key)) result.insert(key, each.value());
            continue;
        }
        const QJsonValue present = now.value(key);
        const Identity& identity = identityIn(key);
        if (present.isObject()) {
            result.insert(key, withOthers(present.toObject(), each.value().toObject(),
                                          understood.value(key).toObject()));
        } else if (present.isArray() && !identity.empty()) {
            result.insert(key, withOthers(present.toArray(), each.value().toArray(),
                                          understood.value(key).toArray(), identity));
        }
    }
    return result;
}

}  // namespace

QJsonObject OtherKeys::addedTo(const QJsonObject& query) const {
    return withOthers(query, m_read, m_understood);
}

}  // namespace orvquery
