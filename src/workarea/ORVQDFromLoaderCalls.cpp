// SPDX-License-Identifier: MIT
// The calls of procedures in a FROM clause: their arguments, read into values of parameters.
#include "data/ProcessName.h"
#include "data/SqlText.h"
#include "workarea/ORVQDFromLoader.h"
#include "workarea/ORVQDSProc.h"

#include <algorithm>

namespace {

orv::TokenRun behindName(const orv::TokenRun& run) {
    const auto* open = std::find_if(run.begin(), run.end(), [](const orv::SqlToken& token) {
        return token.kind == orv::SqlToken::Open;
    });
    return run.mid(int(open - run.begin()));
}

}  // namespace

// A procedure without brackets is called without arguments.
std::vector<FromLoader::Argument> FromLoader::argumentsOf(const TorvQDParser& node) const {
    if (!m_ledger) return argumentsOfTree(node);
    const orv::TokenRun bracket = behindName(m_ledger->tokensIn(node.Start(), node.End()));
    if (bracket.size() < 2) return {};
    const bool isClosed = bracket[0].closeOffset > 0;
    const orv::TokenRun inside = bracket.mid(1, bracket.behindBracket(0) - (isClosed ? 2 : 1));
    std::vector<Argument> arguments;
    for (const orv::TokenRun& part : inside.splitAtCommas()) {
        arguments.push_back({part.sourceText(), part.start(), part.endPosition()});
    }
    return arguments;
}

// Of a node alone, without the text that it was parsed from: one argument for each child, the sign
// in front of a number aside.
std::vector<FromLoader::Argument> FromLoader::argumentsOfTree(const TorvQDParser& node) {
    std::vector<Argument> arguments;
    QString sign;
    if (node.Location() != inFunction) return arguments;
    for (const TorvQDParser::Node& child : node.Children()) {
        if (child->Kind() == otAlias) continue;
        const QString text = child->Count() > 0 ? child->FillArguments(true) : child->Text();
        if (child->Kind() == otOperator && (text == u"+" || text == u"-")) {
            sign = text;
            continue;
        }
        arguments.push_back({std::exchange(sign, {}) + text, child->Start(), child->End()});
    }
    return arguments;
}

// The arguments become the values of the input parameters in their order, whatever values the host
// gave them. What has no argument is left out again with the meaning kept, else is a placeholder.
void FromLoader::fillParameters(const std::vector<Argument>& arguments, const TorvQDParser& node,
                                int columns, TParams& params) {
    std::size_t next = 0;
    bool isShort = false;
    for (std::size_t index = 0; index < params.Items.size(); ++index) {
        TParam& param = params.Items[index];
        if (param.ParamType != ptInput || param.Name.isEmpty()) continue;
        param.Value = {};
        if (next == arguments.size()) {
            isShort = true;
            if (m_keepsMeaning) param.Value = QVariant::fromValue(orv::SqlText());
            continue;
        }
        const Argument& argument = arguments[next++];
        const QString name =
            TorvQDSProc::placeholderName(ProcessName(param.Name), columns + int(index));
        if (argument.text.isEmpty()) {
            report(node.Start(), node.End(),
                   QStringLiteral("An argument is missing between two commas: its parameter is "
                                  "written."));
        } else if (isPlaceholder(argument.text, name)) {
            if (QStringView(argument.text).mid(1) == name) continue;
            report(argument.start, argument.end,
                   QStringLiteral("The placeholder is written as :%1, which a database may take "
                                  "for another one.")
                       .arg(name));
        } else {
            param.Value = TorvQDSProc::valueFromText(argument.text, param.DataType, m_keepsMeaning);
        }
    }
    if (!m_keepsMeaning && node.Location() != inFunction) {
        report(node.Start(), node.End(),
               QStringLiteral("The call has no brackets: it is written with them."));
    }
    if (isShort && !m_keepsMeaning) {
        report(node.Start(), node.End(),
               QStringLiteral("The procedure has more parameters than this gives values: they are "
                              "written, too."));
    }
    if (next < arguments.size()) {
        report(arguments[next].start, arguments.back().end,
               QStringLiteral("The procedure has no parameter for this: it is not loaded."));
    }
}

// Databases tell :a from :A.
bool FromLoader::isPlaceholder(const QString& text, const QString& name) const {
    const auto sensitivity = m_keepsMeaning ? Qt::CaseSensitive : Qt::CaseInsensitive;
    return text.startsWith(u':') && QStringView(text).mid(1).compare(name, sensitivity) == 0;
}

void FromLoader::loseArguments(const TorvQDParser& node) {
    if (!m_ledger) return;
    const orv::TokenRun bracket = behindName(m_ledger->tokensIn(node.Start(), node.End()));
    report(bracket.start(), bracket.endPosition(),
           QStringLiteral("The program knows this as a table, which has no arguments: they are not "
                          "loaded."));
}

void FromLoader::rememberArguments(TorvQDTable* box, const std::vector<Argument>& arguments) {
    const auto* procedure = qobject_cast<const TorvQDSProc*>(box);
    if (!procedure) return;
    std::size_t next = 0;
    for (const TorvQDListItem* row : procedure->parameterRows()) {
        if (row->ParamType != ptInput || next == arguments.size()) continue;
        const Argument& argument = arguments[next++];
        m_arguments.push_back({row, argument.start, argument.end});
    }
}

// An argument must not stand in front of a table that it names.
void FromLoader::reportArguments() {
    const std::vector<TorvQDListItem*> early = m_area.earlyArguments();
    for (const LoadedArgument& argument : m_arguments) {
        if (std::find(early.begin(), early.end(), argument.row) == early.end()) continue;
        report(argument.start, argument.end,
               QStringLiteral("This argument is written in front of a table that it names."));
    }
}
