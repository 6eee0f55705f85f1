// SPDX-License-Identifier: MIT
// What README.md and docs/embedding.md show, compiled and run: a piece from "// shown" to "// end"
// stands there word by word, which tests/tools/tst_documents.py compares.
#include <orvquerybuilder/Error.h>
#include <orvquerybuilder/ORVQDFloatPanel.h>
#include <orvquerybuilder/ORVQDFloatTable.h>
#include <orvquerybuilder/ORVQDSProc.h>
#include <orvquerybuilder/ORVQDUndo.h>
#include <orvquerybuilder/ORVQDWindow.h>
#include <orvquerybuilder/Services.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QUndoStack>

namespace {

// What a host knows of its database.
const QHash<QString, TDataSet>& catalogue() {
    static const QHash<QString, TDataSet> tables = {
        {"ORDERS", TDataSet{{{"CUSTNO", ftInteger}, {"PRICE", ftFloat}}}},
        {"CUSTOMERS", TDataSet{{{"CUSTNO", ftInteger}, {"NAME", ftString}}}}};
    return tables;
}

void answerTables(TorvQueryBuilder* builder) {
    // shown
    builder->OnGetTableFields = [](const QString& name, std::unique_ptr<TDataSet>& columns,
                                   std::unique_ptr<TParams>&) {
        const auto table = catalogue().constFind(name.toUpper());
        if (table != catalogue().constEnd()) columns = std::make_unique<TDataSet>(*table);
    };
    // end
}

}  // namespace

class tst_Embedding : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void firstSteps();
    void tables();
    void procedures();
    void vetoes();
    void errors();
    void meaning();
    void busy();
    void later();
    void states();
    void undoing();
    void darkLook();
};

void tst_Embedding::firstSteps() {
    // clang-format off
    // shown
    TorvQueryBuilder builder;                                   // a QWidget: give it a parent, a layout
    builder.OnGetTableFields = [](const QString& NameOfTable, std::unique_ptr<TDataSet>& ADataSet,
                                  std::unique_ptr<TParams>&) {  // asked when a statement names a table
        if (NameOfTable.toUpper() != "ORDERS") return;            // it is not known
        ADataSet = std::make_unique<TDataSet>(TDataSet{{{"CUSTNO", ftInteger}, {"PRICE", ftFloat}}});
    };
    builder.LoadSQL("select o.custno from orders o");           // or ListOfTables->AddTable("ORDERS", ...)
    QString text = builder.GetSQLStatment();
    for (const orv::Finding& finding : builder.LoadReport()) qInfo() << finding.text;
    // end
    // clang-format on
    QCOMPARE(text.simplified(), QString("SELECT O.CUSTNO FROM ORDERS O"));
    QCOMPARE(builder.LoadReport().size(), 0);
}

void tst_Embedding::tables() {
    auto owned = std::make_unique<TorvQueryBuilder>();
    TorvQueryBuilder* builder = owned.get();
    answerTables(builder);
    // shown
    TorvQDTable* orders = builder->ListOfTables->AddTable("ORDERS", catalogue()["ORDERS"]);
    orders->findItem("PRICE")->SetCheck(true);  // as a click on its check box does
    // end
    QCOMPARE(builder->GetSQLStatment(), QString("SELECT ORDERS.PRICE\r\nFROM ORDERS"));
    builder->LoadSQL("select c.name from customers c, nowhere n");
    QCOMPARE(builder->ListOfTables->TablesCount(), 1);
    QCOMPARE(builder->LoadReport().size(), std::size_t(1));
}

void tst_Embedding::procedures() {
    auto owned = std::make_unique<TorvQueryBuilder>();
    TorvQueryBuilder* builder = owned.get();
    // shown
    builder->ListOfTables->AddProc("SALES_OF", TDataSet{{{"TOTAL", ftFloat}}},
                                   TParams{{{"YEAR", ftInteger, ptInput}}});
    builder->OnEnterProcParameter = [](QObject*, TorvQDTable* box, TorvQDListItem* row) {
        // A host asks its user here.
        if (auto* procedure = qobject_cast<TorvQDSProc*>(box)) procedure->setParameter(row, 2024);
    };
    // end
    TorvQDTable* box = builder->ListOfTables->Tables(0);
    builder->WorkArea->DoEnterParameter(box, box->GetFieldItem("YEAR"));
    box->findItem("TOTAL")->SetCheck(true);
    QCOMPARE(builder->GetSQLStatment(), QString("SELECT SALES_OF.TOTAL\r\nFROM SALES_OF(2024)"));
}

void tst_Embedding::vetoes() {
    auto owned = std::make_unique<TorvQueryBuilder>();
    TorvQueryBuilder* builder = owned.get();
    // shown
    builder->OnAddRemoveTable = [](QObject*, TorvQDTable* box, TAddRemove action, bool& canDo) {
        canDo = action == araRemove || !box->TableName.startsWith("SECRET");
    };
    // end
    QVERIFY(!builder->ListOfTables->AddTable("SECRETS", nullptr));
    QVERIFY(builder->ListOfTables->AddTable("ORDERS", nullptr));
}

void tst_Embedding::errors() {
    auto owned = std::make_unique<TorvQueryBuilder>();
    TorvQueryBuilder* builder = owned.get();
    answerTables(builder);
    QStringList log;
    const auto showError = [&log](const QString& text) { log << text; };
    // shown
    try {
        builder->LoadSQL("delete from orders");
    } catch (const orv::Error& error) {
        showError(error.Message());  // "Given statement is not SELECT clause"
    }
    orv::setErrorHandler(showError);  // what is raised inside an action of the user
    orv::setMessageService([&](const orv::MessageRequest& request) {
        showError(request.text);  // a program without a screen cannot be asked
        return request.buttons == orv::MessageButtons::YesNo ? orv::MessageAnswer::No
                                                             : orv::MessageAnswer::Ok;
    });
    // end
    QCOMPARE(log, QStringList{"Given statement is not SELECT clause"});
    orv::reportError("x");
    QCOMPARE(log.last(), QString("x"));
    orv::setErrorHandler({});
    orv::setMessageService({});
}

void tst_Embedding::meaning() {
    auto owned = std::make_unique<TorvQueryBuilder>();
    TorvQueryBuilder* builder = owned.get();
    answerTables(builder);
    QStringList log;
    const auto showError = [&log](const QString& text) { log << text; };
    // shown
    builder->setKeepMeaning(true);
    builder->LoadSQL("select c.name from customers c join orders o using (custno)");
    for (const orv::Finding& finding : builder->LoadReport()) {
        showError(finding.text + ": " + finding.what);  // its place: finding.start and .length
    }
    // end
    QCOMPARE(log.size(), 1);
    QVERIFY2(log.first().contains("This join has no ON condition"), qPrintable(log.first()));
}

void tst_Embedding::busy() {
    TorvQueryBuilder builder;
    QStringList raised;
    const auto attempt = [&](const std::function<void()>& call) {
        try {
            call();
        } catch (const orv::Error& error) {
            raised << error.Message();
        }
    };
    builder.OnGetTableFields = [&](const QString&, std::unique_ptr<TDataSet>& columns,
                                   std::unique_ptr<TParams>&) {
        attempt([&] { builder.LoadSQL("select a.b from a"); });
        attempt([&] { builder.Clear(); });
        attempt([&] { builder.RestoreState({}); });
        attempt([&] { builder.ModifyOperators(); });
        columns = std::make_unique<TDataSet>(catalogue()["ORDERS"]);
    };
    builder.LoadSQL("select o.price from orders o");
    QCOMPARE(raised, QStringList(4, "LoadSQL is running"));
}

void tst_Embedding::later() {
    auto owned = std::make_unique<TorvQueryBuilder>();
    TorvQueryBuilder* builder = owned.get();
    answerTables(builder);
    const QString text = "select o.price from orders o";
    // shown
    QObject::connect(builder, &TorvQueryBuilder::LayoutChanged, builder, [builder, text] {
        QMetaObject::invokeMethod(
            builder, [builder, text] { builder->LoadSQL(text); }, Qt::QueuedConnection);
    });
    // end
    Q_EMIT builder->LayoutChanged();
    QCOMPARE(builder->ListOfTables->TablesCount(), 0);
    builder->disconnect(SIGNAL(LayoutChanged()));
    QCoreApplication::processEvents();
    QCOMPARE(builder->ListOfTables->TablesCount(), 1);
}

void tst_Embedding::states() {
    auto owned = std::make_unique<TorvQueryBuilder>();
    TorvQueryBuilder* builder = owned.get();
    answerTables(builder);
    builder->LoadSQL("select o.price from orders o");
    const QTemporaryDir folder;
    QFile file(folder.filePath("query.json"));
    // shown
    if (file.open(QIODevice::WriteOnly)) file.write(builder->SaveState());
    file.close();
    builder->Clear();
    if (file.open(QIODevice::ReadOnly)) builder->RestoreState(file.readAll());
    // end
    QCOMPARE(builder->GetSQLStatment(), QString("SELECT O.PRICE\r\nFROM ORDERS O"));
}

void tst_Embedding::undoing() {
    QWidget window;
    auto* builder = new TorvQueryBuilder(&window);
    answerTables(builder);
    // shown
    auto* stack = new QUndoStack(&window);
    auto* recorder = new orv::UndoRecorder(builder, stack, &window);
    {
        const orv::UndoRecorder::Group group(recorder, "open the report");  // one step
        builder->LoadSQL("select o.price from orders o");
        builder->setTailText("LIMIT 10");
    }
    stack->undo();
    // end
    QCOMPARE(stack->count(), 1);
    QCOMPARE(builder->ListOfTables->TablesCount(), 0);
}

void tst_Embedding::darkLook() {
    TorvQueryBuilder owned;
    TorvQueryBuilder* builder = &owned;
    answerTables(builder);
    const QColor ink(250, 10, 210);
    QPalette palette;
    palette.setColor(QPalette::WindowText, ink);
    builder->setPalette(palette);
    builder->resize(700, 500);
    builder->LoadSQL("select c.name from customers c join orders o on c.custno = o.custno");
    const auto isPainted = [&] {
        const QImage image = builder->WorkArea->viewport()->grab().toImage();
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y) == ink) return true;
            }
        }
        return false;
    };
    QVERIFY(!isPainted());
    // shown
    builder->WorkArea->setLinkColor(builder->palette().color(QPalette::WindowText));
    // end
    QVERIFY(isPainted());
}

QTEST_MAIN(tst_Embedding)
#include "tst_embedding.moc"
