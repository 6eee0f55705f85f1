// SPDX-License-Identifier: MIT
// A form with all properties of the control: compiled by uic, and loaded at run time.
#include "querybuilder/ORVQDWindow.h"
#include "support/BuilderTools.h"
#include "ui_everyproperty.h"

#include <QMetaProperty>
#include <QTest>
#include <QUiLoader>

#include <memory>

namespace {

/// The form as a program gets it that was compiled with it, or that loads it.
class Form {
public:
    explicit Form(bool isCompiled) {
        if (isCompiled) {
            window = std::make_unique<QWidget>();
            ui.setupUi(window.get());
        } else {
            QUiLoader loader;
            loader.setWorkingDirectory({});
            loader.clearPluginPaths();
            loader.addPluginPath(QStringLiteral(ORV_PLUGIN_PATH "/designer"));
            QFile file(QStringLiteral(ORV_FORM));
            if (file.open(QIODevice::ReadOnly)) window.reset(loader.load(&file));
        }
        if (window) builder = window->findChild<TorvQueryBuilder*>(QStringLiteral("queryBuilder"));
    }

    Ui::EveryProperty ui{};
    std::unique_ptr<QWidget> window;
    TorvQueryBuilder* builder = nullptr;
};

}  // namespace

class TestUiForms : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void formSetsEveryProperty_data() { bothWays(); }
    void formSetsEveryProperty() {
        QFETCH(bool, isCompiled);
        const Form form(isCompiled);
        QVERIFY(form.builder);
        const TorvQueryBuilder& builder = *form.builder;
        QVERIFY(builder.WorkArea);  // it is a live one
        QCOMPARE(builder.Align(), TorvQueryBuilder::alRight);
        QCOMPARE(builder.TabsHeight(), 180);
        QCOMPARE(builder.OperatorsList(),
                 QStringList({"=", "is", "", "", "", "1", "NOT IN",
                              QStringLiteral(u"is \"none\" of \u00e4"), " , ", "(", ")", "2"}));
        QVERIFY(builder.KeepMeaning());
        QCOMPARE(builder.TailText(), "LIMIT 7\nOFFSET 3");
        const TorvQDWorkAreaOptions& area = *builder.WorkAreaOptions;
        QVERIFY(!area.GetHideSelection());
        QVERIFY(area.GetDragFieldName());
        QVERIFY(area.GetFlat());
        QVERIFY(area.GetShowFieldsType());
        QVERIFY(!area.GetFlatCaptionBtns());
        QCOMPARE(area.GetTableBorder(), edgeEtched);
        QCOMPARE(area.GetFont().family(), "DejaVu Sans");
        QCOMPARE(area.GetFont().pointSize(), 12);
        QVERIFY(area.GetFont().bold());
        QCOMPARE(area.GetTableColor(), QColor(230, 240, 250));
        QCOMPARE(area.GetProcedureColor(), QColor(250, 240, 230));
        const TorvQDConditionOptions& conditions = *builder.ConditionOptions;
        QVERIFY(!conditions.GetSelectRow());
        QCOMPARE(conditions.GetBtnsStyle(), btn3DLook);
        QCOMPARE(conditions.GetActiveRowColor(), QColor(10, 20, 30));
    }

    void bothFormsHaveTheSameProperties() {
        const Form compiled(true);
        const Form loaded(false);
        QVERIFY(compiled.builder && loaded.builder);
        const QMetaObject* meta = compiled.builder->metaObject();
        QCOMPARE(loaded.builder->metaObject(), meta);
        int compared = 0;
        QCOMPARE(loaded.builder->geometry(), compiled.builder->geometry());
        for (int index = meta->propertyOffset(); index < meta->propertyCount(); ++index) {
            const QMetaProperty property = meta->property(index);
            if (!property.isWritable()) continue;
            ++compared;
            QVERIFY2(property.read(compiled.builder) == property.read(loaded.builder),
                     property.name());
        }
        QCOMPARE(compared, 17);
    }

    void bothFormsBehaveTheSame() {
        const Form compiled(true);
        const Form loaded(false);
        orvtest::Host host;
        QStringList statements;
        QList<QImage> pictures;
        for (const Form* form : {&compiled, &loaded}) {
            host.attach(*form->builder);
            form->builder->setTailText({});
            form->builder->LoadSQL("select t.a from t where t.a not in (1 , 2) limit 3");
            statements << form->builder->GetSQLStatment();
            form->window->resize(700, 500);
            form->window->show();
            QCoreApplication::processEvents();
            // At the right edge of its window, as high as that, with pages of its own height.
            QCOMPARE(form->builder->geometry(), QRect(100, 0, 600, 500));
            QCOMPARE(form->builder->PageCtrl->height(), 180);
            form->window->hide();
            pictures << form->builder->grab().toImage();
        }
        QVERIFY(statements[0].contains("T.A NOT IN (1 , 2)"));
        QVERIFY(statements[0].endsWith("limit 3"));
        QCOMPARE(statements[1], statements[0]);
        QCOMPARE(pictures[1], pictures[0]);
    }

    // What is SQL is set once, not with each change of the language.
    void anotherLanguageLeavesTheOperatorsAlone() {
        Form form(true);
        form.builder->resetOperatorsList();
        form.builder->setTailText("LIMIT 1");
        const QStringList operators = form.builder->OperatorsList();
        form.ui.retranslateUi(form.window.get());
        QCOMPARE(form.builder->OperatorsList(), operators);
        QCOMPARE(form.builder->TailText(), "LIMIT 1");
    }

private:
    static void bothWays() {
        QTest::addColumn<bool>("isCompiled");
        QTest::newRow("compiled") << true;
        QTest::newRow("loaded") << false;
    }
};

QTEST_MAIN(TestUiForms)
#include "tst_uiforms.moc"
