// SPDX-License-Identifier: MIT
// A tree of conditions comes back from the statement that is written of it, and a pasted text of
// conditions from its own text and from the statement. The first byte is what is done: "t" pastes
// the rest, "c" and others build the tree that the rest says, in the one mode or the other.
#include "ByteReader.h"
#include "FuzzBuilders.h"
#include "Targets.h"
#include "criteria/ORVQDConditionClipboard.h"
#include "criteria/ORVQDWherePanel.h"
#include "support/RandomTexts.h"
#include "support/WayBack.h"

#include <QRegularExpression>

namespace orvfuzz {

namespace {

namespace texts = orvtest::texts;
using orvtest::HostedBuilder;
using orvtest::StateForm;
using orvtest::StateView;

constexpr int deepest = 12;

// The numbered fields of a text of the lists are those of the two boxes.
QString withFields(QString text) {
    static const QStringList first = {"T.A", "T.B", "T.C"};
    static const QStringList second = {"U.A", "U.X", "U.Y"};
    for (int field = 0; field < 3; ++field) {
        text.replace(QStringLiteral("{0,%1}").arg(field), first[field]);
        text.replace(QStringLiteral("{1,%1}").arg(field), second[field]);
    }
    return text;
}

/// Builds rows as the bytes say.
class TreeMaker {
public:
    TreeMaker(HostedBuilder& on, QByteArrayView bytes) : m_on(on), m_bytes(bytes) {}

    void make() {
        TorvQDWhereRow* root = m_on.builder.WherePanel->rootRow();
        fill(*root, 1);
        if (root->SubRows->GetCount() == 0) m_on.builder.WherePanel->ClearContents();
    }

private:
    void fill(TorvQDWhereRow& group, int depth) {
        static const QStringList groups = {"All", "Any", "None", "Not all"};
        group.SetGroupOper(m_bytes.oneOf(groups));
        const int count = 1 + m_bytes.below(4);
        for (int index = 0; index < count && (index == 0 || !m_bytes.atEnd()); ++index) {
            TorvQDWhereRow* row = group.SubRows->AddRow();
            if (depth < deepest && m_bytes.oneIn(3)) {
                fill(*row, depth + 1);
            } else {
                fillCondition(*row);
            }
        }
    }

    void fillCondition(TorvQDWhereRow& row) {
        if (m_bytes.oneIn(6)) {
            const bool second = m_bytes.oneIn(2);
            row.FieldName =
                withFields(m_bytes.oneOf(second ? texts::wholeTextsOfDefaults : texts::wholeTexts));
            row.setOperator(orv::expressionOperator());
            return;
        }
        static const QString field = QStringLiteral("{0,0}");
        row.FieldName = withFields(m_bytes.oneIn(2) ? m_bytes.oneOf(texts::leftSides) : field);
        const TOperatorList& operators = *m_on.builder.Operators;
        row.setOperator(operators.Items(m_bytes.below(operators.Count())));
        for (QString& argument : row.Arguments) argument = withFields(operandOf(*row.Operator));
    }

    const QString& operandOf(const TorvQDOperator& operation) {
        const bool other = m_bytes.oneIn(2);
        if (operation.Count != 1) return m_bytes.oneOf(texts::rightSides);
        if (operation.Postfix == u")") return m_bytes.oneOf(texts::lists);
        if (other && operation.Name.endsWith(u"LIKE")) return m_bytes.oneOf(texts::likeTexts);
        if (other && operation.Name == u"=") return m_bytes.oneOf(texts::rightOfSigns);
        return m_bytes.oneOf(texts::rightSides);
    }

    HostedBuilder& m_on;
    ByteReader m_bytes;
};

void addBoxes(HostedBuilder& on) {
    on.addTable(QStringLiteral("T"));
    on.addTable(QStringLiteral("U"));
    on.tick(QStringLiteral("T"), QStringLiteral("A"));
}

void take(HostedBuilder& on, const orv::LooseConditions& conditions) {
    TorvQDWhereRow& root = *on.builder.WherePanel->rootRow();
    root.SetGroupOper(conditions.root().GroupOper);
    const TorvQDWhereRows& rows = *conditions.root().SubRows;
    for (int index = 0; index < rows.GetCount(); ++index) {
        (void)orv::copyRow(*rows.Row(index), *root.SubRows, index);
    }
}

bool hasWholeText(const TorvQDWhereRow& row) {
    if (!row.isGroup()) return row.isExpression();
    for (int index = 0; index < row.SubRows->GetCount(); ++index) {
        if (hasWholeText(*row.SubRows->Row(index))) return true;
    }
    return false;
}

// What a text says, taken over into two controls: at once, and by the text that it is written as.
void paste(FuzzBuilders& builders, const QString& text) {
    const orv::ConditionRules rules = builders.first.builder.WherePanel->readingRules(true);
    const TGroupOperators* groups = builders.first.builder.WherePanel->GroupOpers;
    try {
        take(builders.first, orv::LooseConditions(text, rules, groups));
    } catch (const orv::Error& error) {
        require(!error.Message().isEmpty(), "A text is no condition, without a reason.");
        return;
    }
    // Where no operator of the list fits, it is a guess whether words are a condition or prose.
    if (hasWholeText(*builders.first.builder.WherePanel->rootRow())) return;
    const QString written =
        orv::conditionText(*builders.first.builder.WherePanel->rootRow(), rules, groups);
    try {
        take(builders.second, orv::LooseConditions(written, rules, groups));
    } catch (const orv::Error& error) {
        throw Broken("Its own text is refused: " + error.Message() + '\n' + written);
    }
    const auto lines = [](HostedBuilder& on) {
        return orvtest::stateLines(on.builder, StateForm::Normal, StateView::Present);
    };
    const QString difference = orvtest::difference(lines(builders.first), lines(builders.second));
    require(difference.isEmpty(), "Its own text:\n" + written + '\n' + difference);
    builders.second.builder.Clear();
}

// Quoting of single databases, which is told when a statement is loaded.
bool hasForeignQuotes(const QString& text) {
    static const QRegularExpression quotes(QStringLiteral("(?<!\\w)[qQeE]'|\\$\\w*\\$"));
    return text.contains(quotes);
}

bool areSquareBracketsClosed(const QString& text) {
    int open = 0;
    for (const QChar character : text) {
        if (character == u'[') ++open;
        if (character == u']' && --open < 0) return false;
    }
    return open == 0;
}

void runConditions(QByteArrayView input) {
    if (input.isEmpty()) return;
    FuzzBuilders& builders = FuzzBuilders::emptied(input.front() != 'c');
    addBoxes(builders.first);
    addBoxes(builders.second);
    if (input.front() == 't') {
        // A line break in quotes becomes a blank when the statement is loaded, and is told then.
        QString text = QString::fromUtf8(input.sliced(1));
        text.replace(u'\n', u' ').replace(u'\r', u' ');
        // Nothing looks for the end of a square bracket, which hides the commas behind it.
        if (areSquareBracketsClosed(text) && !hasForeignQuotes(text)) paste(builders, text);
    } else {
        TreeMaker(builders.first, input.sliced(1)).make();
    }
    builders.second.builder.Clear();
    const QString fault =
        orvtest::faultOfWayBack(builders.first, builders.second, builders.third, builders.services);
    require(fault.isEmpty(), "Written:\n" + builders.first.builder.GetSQLStatment() + '\n' + fault);
    builders.settle();
}

QList<QByteArray> conditionsSeeds() {
    QList<QByteArray> seeds = {"k", "c", "t"};
    for (const QByteArray& statement : statementsOfCases()) {
        const qsizetype where = statement.toUpper().indexOf("WHERE ");
        if (where >= 0) seeds << 't' + statement.sliced(where + 6);
    }
    // Trees: small numbers make groups and conditions in turn.
    for (int number = 0; number < 64; ++number) {
        QByteArray tree(number % 2 ? "k" : "c");
        for (int at = 0; at < 8 + number; ++at) tree += char((number * 37 + at * at * 11) % 97);
        seeds << tree;
    }
    return seeds;
}

}  // namespace

Target conditionsTarget() {
    return {"conditions", true, runConditions, conditionsSeeds};
}

}  // namespace orvfuzz
