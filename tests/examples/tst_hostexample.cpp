// SPDX-License-Identifier: MIT
#include "HostWindow.h"
#include "Lending.h"
#include "support/TestTools.h"
#include <orvquerybuilder/ORVQDFloatPanel.h>
#include <orvquerybuilder/ORVQDFloatTable.h>
#include <orvquerybuilder/ORVQDLinks.h>

#include <QCheckBox>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStatusBar>
#include <QTest>

// What a programmer copies from the example works.
class tst_HostExample : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init();
    void aDroppedTableLiesWhereItWasDropped();
    void nothingButTheListIsDropped();
    void aClosedTableIsRefusedWithItsReason();
    void fieldsOfDifferentTypesAreNotLinked();
    void fieldsOfOneTypeAreLinked();
    void itsOperatorsAreOffered();
    void theStatementFollowsTheDiagram();
    void anEditedStatementIsLoaded();
    void aFindingShowsItsPlace();
    void whatIsNoSelectIsTold();
};

namespace {

// The window with its parts, as a person sees them.
struct Scene {
    HostWindow window;
    TorvQueryBuilder* builder = window.findChild<TorvQueryBuilder*>();
    QPlainTextEdit* statement = nullptr;
    QListWidget* tables = nullptr;
    QListWidget* findings = nullptr;

    Scene() {
        // The control has lists and edits of its own.
        for (QListWidget* list : window.findChildren<QListWidget*>()) {
            if (builder->isAncestorOf(list)) continue;
            (list->dragEnabled() ? tables : findings) = list;
        }
        for (QPlainTextEdit* edit : window.findChildren<QPlainTextEdit*>()) {
            if (!builder->isAncestorOf(edit)) statement = edit;
        }
    }

    [[nodiscard]] QString told() const { return window.statusBar()->currentMessage(); }

    // Drags the name over the diagram and lets it go there, when it may.
    bool drop(const QString& name, QObject* source, const QPoint& at) const {
        tables->setCurrentItem(tables->findItems(name, Qt::MatchExactly).value(0));
        bool accepted = false;
        builder->OnDragOver(builder, source, at.x(), at.y(), accepted);
        if (accepted) builder->OnDragDrop(builder, source, at.x(), at.y());
        return accepted;
    }

    [[nodiscard]] TorvQDTable* box(const QString& alias) const {
        return builder->ListOfTables->tableByAlias(alias);
    }

    // Links the two fields as a drag of one onto the other does.
    [[nodiscard]] TorvQDLink* link(const QString& alias1, const QString& field1,
                                   const QString& alias2, const QString& field2) const {
        TorvQDTable* table1 = box(alias1);
        TorvQDTable* table2 = box(alias2);
        return builder->WorkArea->AddLink(table1, table2, table1->GetFieldItem(field1),
                                          table2->GetFieldItem(field2));
    }

    void pressLoad() const {
        for (QPushButton* button : window.findChildren<QPushButton*>()) {
            if (!builder->isAncestorOf(button)) button->click();
        }
    }
};

}  // namespace

void tst_HostExample::init() {
    orvtest::failOnAnyWarning();
}

void tst_HostExample::aDroppedTableLiesWhereItWasDropped() {
    Scene scene;
    QVERIFY(scene.drop("BOOKS", scene.tables, {120, 70}));
    QCOMPARE(scene.builder->ListOfTables->TablesCount(), 1);
    QCOMPARE(scene.box("BOOKS")->Left, 120);
    QCOMPARE(scene.box("BOOKS")->Top, 70);
    QCOMPARE(int(scene.box("BOOKS")->Items.size()), 5);
    QCOMPARE(scene.told(), QString("BOOKS was added."));
}

void tst_HostExample::nothingButTheListIsDropped() {
    Scene scene;
    QVERIFY(!scene.drop("BOOKS", scene.findings, {120, 70}));
    QVERIFY(!scene.drop("BOOKS", nullptr, {120, 70}));
    QCOMPARE(scene.builder->ListOfTables->TablesCount(), 0);
}

void tst_HostExample::aClosedTableIsRefusedWithItsReason() {
    Scene scene;
    scene.drop("SALARIES", scene.tables, {10, 10});
    QCOMPARE(scene.builder->ListOfTables->TablesCount(), 0);
    QCOMPARE(scene.told(), QString("SALARIES is confidential."));
}

void tst_HostExample::fieldsOfDifferentTypesAreNotLinked() {
    Scene scene;
    scene.drop("BOOKS", scene.tables, {10, 10});
    scene.drop("LOANS", scene.tables, {200, 10});
    QVERIFY(!scene.link("BOOKS", "TITLE", "LOANS", "LENT"));
    QCOMPARE(scene.told(), QString("TITLE (String) and LENT (Date) cannot be compared."));
    QVERIFY(scene.builder->WorkArea->Links().empty());
}

void tst_HostExample::fieldsOfOneTypeAreLinked() {
    Scene scene;
    scene.drop("BOOKS", scene.tables, {10, 10});
    scene.drop("LOANS", scene.tables, {200, 10});
    QVERIFY(scene.link("BOOKS", "BOOK_ID", "LOANS", "BOOK_ID"));
    QVERIFY(scene.window.statement().contains("BOOKS.BOOK_ID = LOANS.BOOK_ID"));
}

void tst_HostExample::itsOperatorsAreOffered() {
    const Scene scene;
    const TOperatorList& operators = *scene.builder->Operators;
    QVERIFY(operators.FindName("CONTAINING"));
    QCOMPARE(operators.FindName("CONTAINING")->Caption, QString("containing"));
    QVERIFY(operators.FindName("STARTING WITH"));
    QVERIFY(operators.FindName("LIKE"));
}

void tst_HostExample::theStatementFollowsTheDiagram() {
    Scene scene;
    scene.drop("MEMBERS", scene.tables, {10, 10});
    scene.box("MEMBERS")->GetFieldItem("CITY")->SetCheck(true);
    QCOMPARE(scene.statement->toPlainText().simplified(),
             QString("SELECT MEMBERS.CITY FROM MEMBERS"));
}

void tst_HostExample::anEditedStatementIsLoaded() {
    Scene scene;
    scene.statement->setPlainText("select title from books where title containing 'sea'");
    scene.pressLoad();
    QCOMPARE(scene.builder->ListOfTables->TablesCount(), 1);
    QVERIFY(scene.builder->LoadReport().empty());
    QCOMPARE(scene.findings->count(), 1);
    QCOMPARE(scene.findings->item(0)->text(), QString("The whole statement was loaded."));
    QVERIFY(scene.window.statement().contains("CONTAINING 'sea'"));
}

void tst_HostExample::aFindingShowsItsPlace() {
    Scene scene;
    const orvtest::RecordedServices services;
    const QString text = "select title, amount from books, salaries";
    scene.window.load(text);
    QVERIFY(!scene.builder->LoadReport().empty());
    QCOMPARE(scene.findings->count(), int(scene.builder->LoadReport().size()));
    QCOMPARE(scene.statement->toPlainText(), text);

    const orv::Finding& first = scene.builder->LoadReport().front();
    scene.findings->setCurrentRow(0);
    QCOMPARE(scene.statement->textCursor().selectedText(), text.mid(first.start, first.length));
    QVERIFY(!scene.statement->textCursor().selectedText().isEmpty());
}

void tst_HostExample::whatIsNoSelectIsTold() {
    Scene scene;
    scene.window.load(lending::firstStatement());
    const QString before = scene.window.statement();
    scene.window.load("delete from books");
    QVERIFY(!scene.told().isEmpty());
    QVERIFY(scene.told() != QString("Drag tables onto the diagram, or double click them."));
    QCOMPARE(scene.window.statement(), before);
}

QTEST_MAIN(tst_HostExample)
#include "tst_hostexample.moc"
