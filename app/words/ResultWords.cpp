// SPDX-License-Identifier: MIT
#include "words/ResultWords.h"

#include "catalogue/ORVQDOperators.h"
#include "core/Text.h"

#include <algorithm>

namespace orvquery {

namespace {

constexpr qsizetype mostInOneSentence = 6;

// Lists phrases; columns side by side of one table share its name: "the NAME and the CITY of
// CUSTOMERS".
class Gatherer {
public:
    explicit Gatherer(const QueryNames& names) : m_names(names) {}

    void add(const QString& phrase) {
        close();
        m_phrases += phrase;
    }
    void add(const QueryNames::Field& field) {
        if (field.table != m_table) close();
        m_table = field.table;
        m_open += QStringLiteral("the ") + field.name;
        m_last = field;
    }
    [[nodiscard]] QStringList takePhrases() {
        close();
        return m_phrases;
    }

private:
    void close() {
        if (m_open.isEmpty()) return;
        m_open.back() = m_names.theColumn(m_last);
        m_phrases += enumeration(m_open);
        m_open.clear();
        m_table = -1;
    }

    const QueryNames& m_names;
    QStringList m_phrases;
    int m_table = -1;
    QStringList m_open;
    QueryNames::Field m_last;
};

// An expression that is loaded without a name gets one with a number that chance gives.
bool isInvented(const QString& name) {
    const QLatin1String prefix("FIELD_NAME");
    return name.size() > prefix.size() && name.startsWith(prefix) &&
           std::all_of(name.begin() + prefix.size(), name.end(),
                       [](QChar character) { return character >= u'0' && character <= u'9'; });
}

// Where one of them is an enumeration itself, the last one is set off more clearly.
QString enumerationOfAll(const QStringList& phrases) {
    const bool isMixed = std::any_of(phrases.begin(), phrases.end(), [](const QString& phrase) {
        return phrase.contains(QLatin1String(" and "));
    });
    return enumeration(phrases, isMixed ? QStringLiteral("as well as") : QStringLiteral("and"));
}

}  // namespace

ResultWords::ResultWords(const QueryNames& names) : m_names(names) {
    orv::fillAggregates(m_aggregates);
    const orv::QueryState& state = names.state();
    std::copy_if(state.columns.begin(), state.columns.end(), std::back_inserter(m_columns),
                 [](const orv::OutputColumn& column) {
                     return !orv::isBlank(column.source) && !column.muted;
                 });
    m_isAggregated =
        std::any_of(m_columns.begin(), m_columns.end(),
                    [this](const orv::OutputColumn& column) { return !isPlain(column); });
    if (!m_isAggregated) return;
    for (const orv::OutputColumn& column : m_columns) {
        const QString source = orv::orvTrim(column.source);
        const bool groups = isPlain(column) && (column.grouped || m_names.field(source));
        if (groups && !m_groups.contains(source)) m_groups += source;
    }
}

bool ResultWords::isPlain(const orv::OutputColumn& column) const {
    return orv::isBlank(column.aggregate) && !orv::callsAggregate(column.source, m_aggregates);
}

QString ResultWords::source(const orv::OutputColumn& column) const {
    const QString source = orv::orvTrim(column.source);
    if (!orv::isBlank(column.aggregate)) return m_names.aggregate(column.aggregate, source);
    if (source == u"*") return QStringLiteral("all columns");
    if (source.endsWith(QLatin1String(".*"))) {
        const QString alias = orv::withoutQuotes(source.chopped(2));
        for (std::size_t index = 0; index < m_names.state().tables.size(); ++index) {
            if (orv::withoutQuotes(m_names.state().tables[index].alias) == alias) {
                return QStringLiteral("all columns of ") + m_names.table(int(index));
            }
        }
    }
    return m_names.operand(source);
}

bool ResultWords::hasOwnName(const orv::OutputColumn& column) const {
    const QString name = orv::orvTrim(column.name);
    if (isInvented(name) && !m_names.field(column.source)) return false;
    return !name.isEmpty() && name != orv::orvTrim(column.source) &&
           name != orv::createFieldName(column.aggregate, column.source);
}

QString ResultWords::withOutputName(const QString& phrase, const orv::OutputColumn& column) const {
    if (!hasOwnName(column)) return phrase;
    return QStringLiteral("%1 (called %2)").arg(phrase, orv::withoutQuotes(column.name));
}

QString ResultWords::column(const orv::OutputColumn& column) const {
    return withOutputName(source(column), column);
}

QStringList ResultWords::columnPhrases() const {
    QStringList phrases;
    for (const orv::OutputColumn& column : m_columns) phrases += this->column(column);
    return phrases;
}

// The groups have been named with their tables: the name of the column is enough where but one of
// them has it.
bool ResultWords::isClearGroup(const QueryNames::Field& field) const {
    return isGrouped() &&
           std::count_if(m_groups.begin(), m_groups.end(), [&](const QString& group) {
               const auto other = m_names.field(group);
               return other && other->name == field.name;
           }) == 1;
}

QStringList ResultWords::gathered() const {
    Gatherer gatherer(m_names);
    for (const orv::OutputColumn& column : m_columns) {
        const auto field = isPlain(column) ? m_names.field(column.source) : std::nullopt;
        if (field && isClearGroup(*field)) {
            gatherer.add(withOutputName(QStringLiteral("the ") + field->name, column));
        } else if (field && !hasOwnName(column)) {
            gatherer.add(*field);
        } else {
            gatherer.add(this->column(column));
        }
    }
    return gatherer.takePhrases();
}

QString ResultWords::groupPhrase() const {
    Gatherer gatherer(m_names);
    for (const QString& group : m_groups) {
        if (const auto field = m_names.field(group)) {
            gatherer.add(*field);
        } else {
            gatherer.add(m_names.operand(group));
        }
    }
    if (m_groups.size() > 1) {
        return QStringLiteral("each combination of ") + enumerationOfAll(gatherer.takePhrases());
    }
    const auto field = m_names.field(m_groups.front());
    return field ? QStringLiteral("each ") + m_names.column(*field)
                 : QStringLiteral("each value of ") + m_names.operand(m_groups.front());
}

// A selection with aggregates has no statement while another column fits no group.
std::vector<WordsLine> ResultWords::misfits() const {
    std::vector<WordsLine> lines;
    if (!m_isAggregated) return lines;
    for (const orv::OutputColumn& column : m_columns) {
        const bool fits = !isPlain(column) || m_groups.contains(orv::orvTrim(column.source));
        if (fits) continue;
        lines.push_back({0, QStringLiteral("There is no statement yet: %1 has no aggregate "
                                           "function, as it needs beside columns that have one.")
                                .arg(source(column))});
    }
    return lines;
}

std::vector<WordsLine> ResultWords::sentences() const {
    if (m_columns.empty()) {
        return {{0, QStringLiteral("Nothing is chosen to be returned: the statement is not "
                                   "complete without a column.")}};
    }
    std::vector<WordsLine> lines = misfits();
    QString lead = QStringLiteral("Returns ");
    if (isGrouped())
        lead += QStringLiteral("one row for ") + groupPhrase() + QStringLiteral(", with ");
    if (m_isAggregated && !isGrouped()) lead += QStringLiteral("a single row with ");
    if (qsizetype(m_columns.size()) > mostInOneSentence) {
        const QString these = QStringLiteral("these %1 columns:").arg(qsizetype(m_columns.size()));
        lines.push_back({0, lead + these});
        for (const QString& phrase : columnPhrases()) lines.push_back({1, phrase});
    } else {
        lines.push_back({0, lead + enumerationOfAll(gathered()) + u'.'});
    }
    if (m_names.state().distinct) {
        lines.push_back({0, QStringLiteral("Rows that are alike in all columns are returned "
                                           "once.")});
    }
    return lines;
}

const orv::OutputColumn* ResultWords::sortedColumn(const orv::SortList::Line& line) const {
    QStringList names;
    for (const orv::OutputColumn& column : m_names.state().columns) names += column.name;
    const int row = orv::SortList::rowOf(line, names);
    return row < 1 ? nullptr : &m_names.state().columns[std::size_t(row - 1)];
}

Scale ResultWords::scale(const orv::OutputColumn* column) const {
    if (column == nullptr) return Scale::Unknown;
    const QString function = orv::orvTrim(column->aggregate).toUpper();
    if (function == u"COUNT" || function == u"SUM" || function == u"AVG") return Scale::Number;
    const bool keepsType = function.isEmpty() || function == u"MIN" || function == u"MAX";
    const auto field = keepsType ? m_names.field(column->source) : std::nullopt;
    return field ? scaleOf(field->type) : Scale::Unknown;
}

QString ResultWords::sortLine(const orv::SortList::Line& line) const {
    const orv::OutputColumn* column = sortedColumn(line);
    const bool isDown = line.direction == orv::descendingText();
    const bool isDescribed = column && !orv::isBlank(column->source) && !hasOwnName(*column);
    const QString what =
        isDescribed ? source(*column) : orv::withoutQuotes(orv::orvTrim(line.name));
    switch (scale(column)) {
    case Scale::Text:
        return what + (isDown ? QStringLiteral(", from Z to A") : QStringLiteral(", from A to Z"));
    case Scale::Time:
        return what + (isDown ? QStringLiteral(", the latest first")
                              : QStringLiteral(", the earliest first"));
    case Scale::Number:
    case Scale::Unknown: break;
    }
    return what + (isDown ? QStringLiteral(", the greatest first")
                          : QStringLiteral(", the smallest first"));
}

std::vector<WordsLine> ResultWords::orderSentences() const {
    const orv::QueryState& state = m_names.state();
    if (m_columns.empty()) return {};
    QStringList parts;
    for (const orv::SortList::Line& line : state.order) {
        const orv::OutputColumn* column = sortedColumn(line);
        if (!column || !column->muted) parts += sortLine(line);
    }
    if (parts.isEmpty()) {
        // What follows the last clause may sort, too.
        if (!orv::isBlank(state.tail) || (m_isAggregated && !isGrouped())) return {};
        return {{0, QStringLiteral("The rows come in no certain order.")}};
    }
    return {{0, QStringLiteral("Sorted by ") + parts.join(QStringLiteral("; then by ")) + u'.'}};
}

}  // namespace orvquery
