// SPDX-License-Identifier: MIT
// Statements as people write them, each with the state that it loads as, what is told of it, and
// the text that is written: the cases stand in tests/data/sql.
#include "SqlCaseFile.h"
#include "core/Error.h"
#include "core/Text.h"
#include "criteria/ORVQDWherePanel.h"
#include "diagram/ORVQDFloatTable.h"
#include "diagram/ORVQDLinks.h"
#include "querybuilder/ORVQDWindow.h"
#include "selection/ORVQDSelectOrder.h"
#include "support/TestTools.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QDir>
#include <QTest>

namespace {

const QString crLf = QStringLiteral("\r\n");

const QString cellBorder = QStringLiteral(" | ");

// A cell with the function in front of it: "SUM: O.PRICE".
QString cell(const QString& function, const QString& text) {
    const QString name = function.trimmed();
    return name.isEmpty() ? text.trimmed() : name + QStringLiteral(": ") + text.trimmed();
}

QString conditionLine(const TorvQDWhereRow& row) {
    if (row.isExpression()) return QStringLiteral("text: ") + row.FieldName;
    QStringList cells = {cell(row.FieldFunc, row.FieldName),
                         row.Operator ? row.Operator->Name : QString()};
    for (const QString& argument : row.Arguments) cells << cell(row.ArgFunc, argument);
    return cells.join(cellBorder);
}

// A group by its name and what it holds below it, two blanks further right.
void appendConditions(const TorvQDWhereRow& row, const QString& indent, QStringList& lines) {
    lines << indent + (row.isGroup() ? row.GroupOper : conditionLine(row));
    for (int index = 0; index < row.SubRows->GetCount(); ++index)
        appendConditions(*row.SubRows->Row(index), indent + QStringLiteral("  "), lines);
}

/// A builder over the tables of a case file.
class CaseBuilder {
public:
    CaseBuilder(const SqlCaseFile& file, bool keepMeaning) {
        builder.setKeepMeaning(keepMeaning);
        builder.OnGetTableFields = [&file](const QString& name, std::unique_ptr<TDataSet>& dataSet,
                                           std::unique_ptr<TParams>& params) {
            const auto found = file.tables.constFind(name.toUpper());
            if (found != file.tables.constEnd()) dataSet = std::make_unique<TDataSet>(*found);
            const auto procedure = file.procedures.constFind(name.toUpper());
            if (procedure != file.procedures.constEnd()) {
                params = std::make_unique<TParams>(*procedure);
            }
        };
    }

    void load(const QString& text) {
        error.clear();
        try {
            builder.LoadSQL(text);
        } catch (const orv::Error& raised) {
            error = raised.Message();
        }
    }

    [[nodiscard]] QString text() {
        try {
            return builder.GetSQLStatment();
        } catch (const orv::Error& raised) {
            return QStringLiteral("! ") + raised.Message();
        }
    }

    [[nodiscard]] QStringList tables() const {
        QStringList names;
        for (const TorvQDTable* table : builder.WorkArea->tablesByCreation()) {
            names << (table->GetAlias() == table->TableName
                          ? table->TableName
                          : table->TableName + u' ' + table->GetAlias());
        }
        return names;
    }

    // "O klInnerJoin C", and behind a line what its ON says beside the links.
    [[nodiscard]] QStringList joins() const {
        QStringList lines;
        for (const auto& join : builder.WorkArea->Joins()) {
            const QString line = join->Table1->GetAlias() + u' ' +
                                 orv::joinKindIdentifier(join->KindOfJoin) + u' ' +
                                 join->Table2->GetAlias();
            lines << (join->Text.isEmpty() ? line : line + cellBorder + join->Text);
        }
        return lines;
    }

    // "O.CUSTNO = C.CUSTNO"
    [[nodiscard]] QStringList links() const {
        QStringList lines;
        for (const auto& link : builder.WorkArea->Links()) {
            const auto side = [](const TorvQDTable* table, const TorvQDListItem* item) {
                return table->GetAlias() + u'.' + item->Name;
            };
            lines << side(link->Join->Table1, link->Item1) + u' ' + link->operatorText() + u' ' +
                         side(link->Join->Table2, link->Item2);
        }
        return lines;
    }

    [[nodiscard]] static QStringList conditions(const TorvQDWherePanel& panel) {
        QStringList lines;
        appendConditions(*panel.rootRow(), QString(), lines);
        return lines;
    }

    [[nodiscard]] QStringList order() const {
        QStringList lines;
        for (const orv::SortList::Line& line : builder.OrderPanel->sortList().lines())
            lines << line.name + cellBorder + line.direction;
        return lines;
    }

    [[nodiscard]] QStringList columns() const {
        QStringList lines;
        for (const orv::OutputColumn& column : builder.SelectPanel->grid()->columns()) {
            const QStringList cells = {column.name, column.aggregate, column.source};
            lines << cells.join(cellBorder);
        }
        return lines;
    }

    // "[text] what became of it", the text of several lines on one.
    [[nodiscard]] QStringList findings() const {
        QStringList lines;
        for (const orv::Finding& finding : builder.LoadReport()) {
            lines << QStringLiteral("[%1] %2").arg(finding.text.simplified(), finding.what);
        }
        return lines;
    }

    TorvQueryBuilder builder;
    QString error;
};

// The lines of a section that may say "none".
QStringList linesOrNone(const SqlCase& sqlCase, const QString& section) {
    const QStringList lines = sqlCase.lines(section);
    return lines == QStringList{QStringLiteral("none")} ? QStringList() : lines;
}

}  // namespace

class tst_SqlCases : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void holds_data();
    void holds();

private:
    QMap<QString, SqlCaseFile> m_files;
};

void tst_SqlCases::initTestCase() {
    const QDir folder(QStringLiteral(ORV_SQL_CASES));
    const QStringList names = folder.entryList({QStringLiteral("*.txt")}, QDir::Files, QDir::Name);
    QVERIFY2(!names.isEmpty(), "there are no cases");
    for (const QString& name : names) {
        SqlCaseFile file = readSqlCases(folder.filePath(name));
        QVERIFY2(file.error.isEmpty(), qPrintable(file.error));
        m_files[QFileInfo(name).baseName()] = std::move(file);
    }
}

void tst_SqlCases::holds_data() {
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("index");
    for (auto file = m_files.constBegin(); file != m_files.constEnd(); ++file) {
        for (int index = 0; index < int(file->cases.size()); ++index) {
            const QString name = file.key() + u'/' + file->cases[std::size_t(index)].name;
            QTest::newRow(qPrintable(name)) << file.key() << index;
        }
    }
}

void tst_SqlCases::holds() {
    QFETCH(QString, file);
    QFETCH(int, index);
    const SqlCaseFile& cases = m_files[file];
    const SqlCase& sqlCase = cases.cases[std::size_t(index)];
    const bool keepMeaning = sqlCase.line("mode") != u"classic";
    orvtest::RecordedServices services;
    CaseBuilder loaded(cases, keepMeaning);
    loaded.load(sqlCase.lines("sql").join(u'\n'));

    QCOMPARE(loaded.error, sqlCase.line("error"));
    if (!loaded.error.isEmpty()) return;
    QCOMPARE(services.messages, sqlCase.lines("messages"));
    QCOMPARE(loaded.findings(), sqlCase.lines("findings"));
    QCOMPARE(loaded.text(), sqlCase.lines("text").join(crLf));
    if (sqlCase.has("tables")) {
        QCOMPARE(loaded.tables(), sqlCase.line("tables").split(QStringLiteral(", ")));
    }
    if (sqlCase.has("joins")) QCOMPARE(loaded.joins(), linesOrNone(sqlCase, "joins"));
    if (sqlCase.has("links")) QCOMPARE(loaded.links(), linesOrNone(sqlCase, "links"));
    if (sqlCase.has("where")) {
        QCOMPARE(CaseBuilder::conditions(*loaded.builder.WherePanel), sqlCase.lines("where"));
    }
    if (sqlCase.has("having")) {
        QCOMPARE(CaseBuilder::conditions(*loaded.builder.HavingPanel), sqlCase.lines("having"));
    }
    if (sqlCase.has("order")) QCOMPARE(loaded.order(), linesOrNone(sqlCase, "order"));
    if (sqlCase.has("columns")) QCOMPARE(loaded.columns(), sqlCase.lines("columns"));
    QCOMPARE(loaded.builder.TailText(), sqlCase.lines("tail").join(u'\n'));
    QCOMPARE(loaded.builder.SelectPanel->GetDistinct() != 0, sqlCase.line("distinct") == u"yes");
    const bool told = !loaded.builder.LoadReport().empty();
    if (told || sqlCase.line("reload") == u"no") return;

    // What is written is held without a word, and written again as it is.
    CaseBuilder second(cases, keepMeaning);
    second.load(loaded.text());
    QCOMPARE(second.error, QString());
    QCOMPARE(second.findings(), QStringList());
    if (sqlCase.line("reload") != u"simpler") {
        QCOMPARE(second.text().toUpper(), loaded.text().toUpper());
        return;
    }

    // A group of one row and a double negation are written shorter, once and for all.
    QVERIFY(second.text().size() < loaded.text().size());
    CaseBuilder third(cases, keepMeaning);
    third.load(second.text());
    QCOMPARE(third.findings(), QStringList());
    QCOMPARE(third.text(), second.text());
}

QTEST_MAIN(tst_SqlCases)
#include "tst_sqlcases.moc"
