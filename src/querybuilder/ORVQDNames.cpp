// SPDX-License-Identifier: MIT
#include "querybuilder/ORVQDNames.h"

#include "core/Text.h"
#include "parser/ORVQDExpressions.h"
#include "parser/ORVQDTokens.h"
#include "querybuilder/ORVQDWindow.h"
#include "workarea/ORVQDFloatPanel.h"

namespace orv {

namespace {

// What is wrong with a name without a table; empty when nothing is.
QString bareNameProblem(const TorvQueryBuilder& builder, const QString& name) {
    static const QStringList known = {QStringLiteral("CURRENT_DATE"),
                                      QStringLiteral("CURRENT_TIME"),
                                      QStringLiteral("CURRENT_TIMESTAMP"),
                                      QStringLiteral("CURRENT_USER"),
                                      QStringLiteral("LOCALTIME"),
                                      QStringLiteral("LOCALTIMESTAMP"),
                                      QStringLiteral("SESSION_USER"),
                                      QStringLiteral("SYSDATE"),
                                      QStringLiteral("USER"),
                                      QStringLiteral("ROWNUM"),
                                      QStringLiteral("ROWID")};
    if (known.contains(name.toUpper()) || builder.resolveField(name)) return {};
    return builder.isAmbiguous(name) ? QStringLiteral("Several tables have this field.")
                                     : QStringLiteral("No table on the diagram has this field.");
}

QString qualifiedNameProblem(const TorvQueryBuilder& builder, const QString& name) {
    const QualifiedName parts = splitQualifiedName(name);
    const TorvQDTable* table = builder.WorkArea->findTable(parts.alias);
    if (!table) return QStringLiteral("There is no such table on the diagram.");
    const bool isWhole = parts.field.isEmpty() || parts.field == u"*";
    if (isWhole || table->findItem(parts.field)) return {};
    return QStringLiteral("The table has no such field.");
}

}  // namespace

void visitQualifiedNames(const QString& given, const std::function<void(const QString&)>& visit) {
    const QString text = withJoinedNames(given);
    const SqlTokens tokens = tokenise(text);
    const TokenRun run(text, tokens.data(), tokens.data() + tokens.size());
    for (int index = 0; index < run.size();) {
        const bool isSubQuery = run[index].kind == SqlToken::Open && index + 1 < run.size() &&
                                run.is(index + 1, u"SELECT");
        if (isSubQuery || run.is(index, u"SELECT")) {
            index = isSubQuery ? run.behindBracket(index) : run.size();
            continue;
        }
        const bool isCall = index + 1 < run.size() && run[index + 1].kind == SqlToken::Open;
        const QString word = run.textOf(index).toString();
        if (run[index].kind == SqlToken::Word && !isCall && firstFullStop(word) >= 0) visit(word);
        ++index;
    }
}

void visitArgumentProblems(
    const TorvQueryBuilder& builder, const QString& text, const TorvQDTable& procedure,
    const std::function<void(const QString& name, const QString& what)>& visit) {
    const QString name = withJoinedNames(text);
    const bool isBare = isFieldName(name) && firstFullStop(name) < 0;
    int others = 0;
    bool isOwn = false;
    for (const TorvQDTable* table : builder.WorkArea->tablesWithField(isBare ? name : QString())) {
        if (!table->findItem(name)) continue;
        if (table == &procedure) {
            isOwn = true;
        } else {
            ++others;
        }
    }
    if (!isOwn || others > 1) return visitNameProblems(builder, text, visit);
    if (others == 1) return;
    visit(name, QStringLiteral("An argument cannot mean a column of its own procedure."));
}

void visitNameProblems(const TorvQueryBuilder& builder, const QString& text,
                       const std::function<void(const QString& name, const QString& what)>& visit) {
    if (isFieldName(text) && firstFullStop(text) < 0) {
        const QString what = bareNameProblem(builder, text);
        if (!what.isEmpty()) visit(text, what);
    }
    visitQualifiedNames(text, [&](const QString& name) {
        const QString what = qualifiedNameProblem(builder, name);
        if (!what.isEmpty()) visit(name, what);
    });
}

}  // namespace orv
