// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDUndoText.h"

#include <QCoreApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QStringList>

namespace orv {

namespace {

constexpr int mostNames = 3;

QString text(const char* source) {
    return QCoreApplication::translate("orv::UndoRecorder", source);
}

using Boxes = QMap<QString, QJsonObject>;  // by alias

class Change {
public:
    Change(const QByteArray& before, const QByteArray& after)
        : m_before(QJsonDocument::fromJson(before).object()),
          m_after(QJsonDocument::fromJson(after).object()),
          m_boxesBefore(boxesOf(m_before)),
          m_boxesAfter(boxesOf(m_after)) {}

    [[nodiscard]] QString description() const {
        for (const auto part : {&Change::boxes, &Change::links, &Change::columns, &Change::others,
                                &Change::parameters, &Change::layout}) {
            QString words = (this->*part)();
            if (!words.isEmpty()) return words;
        }
        return text("changing the query");
    }

private:
    static Boxes boxesOf(const QJsonObject& state) {
        Boxes boxes;
        for (const auto& value : state[QLatin1String("tables")].toArray()) {
            const QJsonObject box = value.toObject();
            boxes.insert(box[QLatin1String("alias")].toString(), box);
        }
        return boxes;
    }

    static QStringList missing(const Boxes& some, const Boxes& others) {
        QStringList aliases;
        for (auto box = some.begin(); box != some.end(); ++box) {
            if (!others.contains(box.key())) aliases += box.key();
        }
        return aliases;
    }

    static QString named(const QStringList& aliases) {
        if (aliases.size() <= mostNames) return aliases.join(QStringLiteral(", "));
        return text("%1 tables").arg(aliases.size());
    }

    static QJsonValue in(const Boxes& boxes, const QString& alias, const char* key) {
        return boxes.value(alias).value(QLatin1String(key));
    }

    [[nodiscard]] bool differs(const char* key) const {
        return m_before[QLatin1String(key)] != m_after[QLatin1String(key)];
    }
    [[nodiscard]] qsizetype growth(const char* key) const {
        return m_after[QLatin1String(key)].toArray().size() -
               m_before[QLatin1String(key)].toArray().size();
    }

    [[nodiscard]] QString boxes() const {
        const QStringList added = missing(m_boxesAfter, m_boxesBefore);
        const QStringList removed = missing(m_boxesBefore, m_boxesAfter);
        if (added.isEmpty() && removed.isEmpty()) return {};
        if (m_boxesAfter.isEmpty() && removed.size() > 1) return text("clearing the diagram");
        if (removed.isEmpty()) return text("adding %1").arg(named(added));
        if (added.isEmpty()) return text("removing %1").arg(named(removed));
        const bool isRenamed =
            added.size() == 1 && removed.size() == 1 &&
            in(m_boxesAfter, added[0], "name") == in(m_boxesBefore, removed[0], "name");
        if (isRenamed) return text("renaming %1 to %2").arg(removed[0], added[0]);
        return text("replacing the query");
    }

    [[nodiscard]] QString links() const {
        const qsizetype more = growth("links");
        const QJsonArray links = m_after[QLatin1String("links")].toArray();
        if (more == 1) {
            const QJsonObject link = links.last().toObject();
            return text("linking %1 and %2")
                .arg(link[QLatin1String("table1")].toString(),
                     link[QLatin1String("table2")].toString());
        }
        if (more > 1) return text("linking tables");
        if (more < 0) return more == -1 ? text("removing a link") : text("removing links");
        if (!differs("joins") && links == withoutBends(m_before, m_after)) return {};
        if (!differs("joins") && isMutingOnly("links")) {
            return mutesMore("links") ? text("muting a link") : text("unmuting a link");
        }
        return text("changing a join");
    }

    // The value with nothing muted; `muted` counts what is.
    static QJsonValue withoutMarks(const QJsonValue& value, int& muted) {
        if (value.isArray()) {
            QJsonArray result;
            for (const auto& element : value.toArray()) result += withoutMarks(element, muted);
            return result;
        }
        if (!value.isObject()) return value;
        QJsonObject result = value.toObject();
        if (result.contains(QLatin1String("muted"))) ++muted;
        result.remove(QLatin1String("muted"));
        for (auto entry = result.begin(); entry != result.end(); ++entry) {
            entry.value() = withoutMarks(entry.value(), muted);
        }
        return result;
    }
    [[nodiscard]] bool isMutingOnly(const char* key) const {
        int muted = 0;
        return withoutMarks(m_before[QLatin1String(key)], muted) ==
               withoutMarks(m_after[QLatin1String(key)], muted);
    }
    [[nodiscard]] bool mutesMore(const char* key) const {
        int before = 0;
        int after = 0;
        static_cast<void>(withoutMarks(m_before[QLatin1String(key)], before));
        static_cast<void>(withoutMarks(m_after[QLatin1String(key)], after));
        return after > before;
    }

    // The links of the first, bent as those of the second.
    static QJsonArray withoutBends(const QJsonObject& first, const QJsonObject& second) {
        QJsonArray result;
        const QJsonArray links = first[QLatin1String("links")].toArray();
        const QJsonArray others = second[QLatin1String("links")].toArray();
        for (qsizetype index = 0; index < links.size(); ++index) {
            QJsonObject link = links[index].toObject();
            const QJsonValue points = others[index].toObject().value(QLatin1String("points"));
            if (points.isUndefined()) {
                link.remove(QLatin1String("points"));
            } else {
                link[QLatin1String("points")] = points;
            }
            result += link;
        }
        return result;
    }

    [[nodiscard]] QString columns() const {
        if (!differs("columns")) return {};
        const QJsonArray before = m_before[QLatin1String("columns")].toArray();
        const QJsonArray after = m_after[QLatin1String("columns")].toArray();
        const auto onlyNew = [](const QJsonArray& longer, const QJsonArray& shorter) {
            qsizetype index = 0;
            while (index < shorter.size() && longer[index] == shorter[index]) ++index;
            return longer[index].toArray()[0].toString();
        };
        if (after.size() == before.size() + 1) {
            return text("adding the column %1").arg(onlyNew(after, before));
        }
        if (before.size() == after.size() + 1) {
            return text("removing the column %1").arg(onlyNew(before, after));
        }
        return text("changing the columns");
    }

    [[nodiscard]] QString others() const {
        for (const char* key : {"where", "having"}) {
            if (!differs(key) || !isMutingOnly(key)) continue;
            return mutesMore(key) ? text("muting a condition") : text("unmuting a condition");
        }
        if (differs("where")) return text("changing the conditions");
        if (differs("having")) return text("changing the conditions of groups");
        if (differs("order")) return text("changing the order of rows");
        if (differs("mutedColumns")) {
            return growth("mutedColumns") < 0 ? text("unmuting a column") : text("muting a column");
        }
        if (differs("distinct")) return text("switching DISTINCT");
        if (differs("tail")) return text("changing the end of the statement");
        return {};
    }

    [[nodiscard]] QString parameters() const {
        for (auto box = m_boxesAfter.begin(); box != m_boxesAfter.end(); ++box) {
            const auto before = in(m_boxesBefore, box.key(), "parameters");
            if (before == box.value()[QLatin1String("parameters")]) continue;
            return text("changing the parameters of %1").arg(box.key());
        }
        return {};
    }

    [[nodiscard]] QString layout() const {
        QStringList moved;
        bool isResized = false;
        for (auto box = m_boxesAfter.begin(); box != m_boxesAfter.end(); ++box) {
            const QJsonArray before = in(m_boxesBefore, box.key(), "bounds").toArray();
            const QJsonArray after = box.value()[QLatin1String("bounds")].toArray();
            const bool wasCollapsed = in(m_boxesBefore, box.key(), "collapsed") !=
                                      box.value()[QLatin1String("collapsed")];
            if (before == after && !wasCollapsed) continue;
            moved += box.key();
            const bool hasOtherSize = before[2] != after[2] || before[3] != after[3];
            isResized = isResized || wasCollapsed || hasOtherSize;
        }
        if (moved.size() == 1) {
            return (isResized ? text("resizing %1") : text("moving %1")).arg(moved[0]);
        }
        if (moved.size() > 1) return text("arranging the tables");
        return differs("links") ? text("bending a link") : QString();
    }

    QJsonObject m_before;
    QJsonObject m_after;
    Boxes m_boxesBefore;
    Boxes m_boxesAfter;
};

}  // namespace

QString changeText(const QByteArray& before, const QByteArray& after) {
    return Change(before, after).description();
}

}  // namespace orv
