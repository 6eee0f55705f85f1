// SPDX-License-Identifier: MIT
#include "parameters/DiagramParameters.h"

#include "core/Text.h"
#include "data/SqlText.h"
#include "parameters/Placeholders.h"
#include "parser/ORVQDNormalise.h"
#include "parser/ORVQDTokens.h"
#include "querybuilder/ORVQDWindow.h"
#include "workarea/ORVQDSProc.h"

#include <QCoreApplication>
#include <QHash>

namespace orvquery {

namespace {

using Descriptions = QHash<QString, ParameterDescription>;

void addProcedure(Descriptions& known, const TorvQDSProc& procedure) {
    const std::vector<TorvQDListItem*> rows = procedure.parameterRows();
    const std::vector<TParam>& parameters = procedure.Params().Items;
    for (std::size_t index = 0; index < std::min(rows.size(), parameters.size()); ++index) {
        const TorvQDListItem& row = *rows[index];
        const QString name = parameterPlaceholder(row);
        if (name.isEmpty()) continue;
        if (!known.contains(name)) {
            const QVariant& value = parameters[index].Value;
            const bool isSql = value.metaType() == QMetaType::fromType<orv::SqlText>();
            known.insert(name, {name, row.FieldType, isSql ? QVariant() : value});
        }
        known[name].takers += QCoreApplication::translate("orvquery", "%1 of %2")
                                  .arg(orv::unquotedName(row.Name), procedure.GetCaption());
    }
}

// The type of a column as it stands in a condition; without its table only when one table has it.
TFieldType columnType(const TorvQueryBuilder& builder, const QString& text) {
    const orv::QualifiedName name = orv::splitQualifiedName(text);
    TFieldType type = ftUnknown;
    for (int index = 0; index < builder.ListOfTables->TablesCount(); ++index) {
        const TorvQDTable* table = builder.ListOfTables->Tables(index);
        if (!name.alias.isEmpty() && table->GetAlias() != name.alias) continue;
        const TorvQDListItem* item = table->findItem(name.field);
        if (item == nullptr || item->ParamType != ptOutput) continue;
        if (type != ftUnknown) return ftUnknown;
        type = item->FieldType;
    }
    return type;
}

// Reads "FIELD = :X" and "FIELD BETWEEN :X AND :Y" from the placeholder backwards. Behind LIKE
// stands a pattern, which is a text whatever the column is.
class ConditionReader {
public:
    explicit ConditionReader(const QString& statement)
        : m_normalised(orv::NormaliseSQL(statement)),
          m_tokens(orv::tokenise(m_normalised.text)),
          m_run(m_normalised.text, m_tokens.data(), m_tokens.data() + m_tokens.size()) {}

    void addTo(Descriptions& known, const TorvQueryBuilder& builder) const {
        for (int index = 2; index < m_run.size(); ++index) {
            if (!m_run.textOf(index).startsWith(u':')) continue;
            const QString name = m_run.textOf(index).sliced(1).toString().toUpper();
            const int field = fieldOf(index);
            if (known.contains(name) || field < 0) continue;
            const TFieldType type = columnType(builder, m_run.textOf(field).toString());
            if (type != ftUnknown) known.insert(name, {name, type});
        }
    }

private:
    [[nodiscard]] int fieldOf(int placeholder) const {
        static const QStringList comparisons = {"=", "<>", "!=", "<", ">", "<=", ">="};
        const QString before = m_run.textOf(placeholder - 1).toString().toUpper();
        if (comparisons.contains(before) || before == u"BETWEEN") return placeholder - 2;
        const bool isSecond =
            before == u"AND" && placeholder >= 4 && m_run.is(placeholder - 3, u"BETWEEN");
        return isSecond ? placeholder - 4 : -1;
    }

    orv::NormalisedSQL m_normalised;
    orv::SqlTokens m_tokens;
    orv::TokenRun m_run;
};

}  // namespace

QString parameterPlaceholder(const TorvQDListItem& row) {
    if (row.ParamType != ptInput) return {};
    const QVariant value = TorvQDSProc::valueOf(row);
    if (!value.isValid()) return TorvQDSProc::placeholderName(row).toUpper();
    if (value.metaType() != QMetaType::fromType<orv::SqlText>()) return {};
    const QString text = value.value<orv::SqlText>().text.trimmed();
    const std::vector<Placeholder> found = placeholders(text);
    return found.size() == 1 && found.front().length == text.size() ? found.front().name
                                                                    : QString();
}

std::vector<ParameterDescription> describeParameters(const QString& statement,
                                                     const TorvQueryBuilder& builder,
                                                     ColumnTypes columnTypes) {
    Descriptions known;
    for (int index = 0; index < builder.ListOfTables->TablesCount(); ++index) {
        const auto* procedure = qobject_cast<TorvQDSProc*>(builder.ListOfTables->Tables(index));
        if (procedure != nullptr) addProcedure(known, *procedure);
    }
    if (columnTypes == ColumnTypes::AreStrict) {
        ConditionReader(statement).addTo(known, builder);
    }
    std::vector<ParameterDescription> result;
    for (const QString& name : placeholderNames(statement)) {
        result.push_back(known.value(name, {name}));
        result.back().takers.sort();
    }
    return result;
}

}  // namespace orvquery
