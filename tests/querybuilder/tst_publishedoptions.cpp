// SPDX-License-Identifier: MIT
// The options as properties of the control itself, which is what forms hold.
#include "querybuilder/ORVQDWindow.h"
#include "support/TestTools.h"
#include "workarea/ORVQDFloatPanel.h"

#include <QMetaEnum>
#include <QMetaProperty>
#include <QTest>

namespace {

/// The object and the property in it that a property of the control stands for.
struct Nested {
    QObject* object;
    QByteArray name;
};

Nested nestedOf(const TorvQueryBuilder& builder, const QByteArray& name) {
    if (name.startsWith("WorkArea")) return {builder.WorkAreaOptions.get(), name.mid(8)};
    return {builder.ConditionOptions.get(), name.mid(9)};
}

}  // namespace

class TestPublishedOptions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // None of the options is missing, and there is no other one.
    void everyOptionIsAPropertyOfTheControl() {
        QStringList expected;
        const auto add = [&](const QString& group, const QMetaObject& meta) {
            for (int index = meta.propertyOffset(); index < meta.propertyCount(); ++index) {
                expected << group + QLatin1String(meta.property(index).name());
            }
        };
        add(QStringLiteral("WorkArea"), TorvQDWorkAreaOptions::staticMetaObject);
        add(QStringLiteral("Condition"), TorvQDConditionOptions::staticMetaObject);
        QStringList published;
        const QMetaObject& meta = TorvQueryBuilder::staticMetaObject;
        for (int index = meta.propertyOffset(); index < meta.propertyCount(); ++index) {
            const QMetaProperty property = meta.property(index);
            const QLatin1String name(property.name());
            const bool isOption = name.startsWith(QLatin1String("WorkArea")) ||
                                  name.startsWith(QLatin1String("Condition"));
            if (isOption && property.isDesignable()) published << name;
        }
        QCOMPARE(published, expected);
        QCOMPARE(published.size(), 12);
    }

    void propertyIsTheOption_data() {
        QTest::addColumn<QVariant>("initial");
        QTest::addColumn<QVariant>("value");
        const auto row = [](const char* name, const QVariant& initial, const QVariant& value) {
            QTest::newRow(name) << initial << value;
        };
        row("WorkAreaHideSelection", true, false);
        row("WorkAreaDragFieldName", false, true);
        row("WorkAreaFlat", false, true);
        row("WorkAreaShowFieldsType", false, true);
        row("WorkAreaFlatCaptionBtns", true, false);
        row("WorkAreaTableBorder", QVariant::fromValue(edgeRaised), QVariant::fromValue(edgeBump));
        row("WorkAreaFont", QFont(QStringLiteral("Arial"), 8),
            QFont(QStringLiteral("Courier"), 20));
        row("WorkAreaTableColor", QColor(Qt::white), QColor(Qt::red));
        row("WorkAreaProcedureColor", QGuiApplication::palette().color(QPalette::ToolTipBase),
            QColor(Qt::blue));
        row("ConditionSelectRow", true, false);
        row("ConditionBtnsStyle", QVariant::fromValue(btnFlat), QVariant::fromValue(btnRaise));
        row("ConditionActiveRowColor", QColor(Qt::white), QColor(Qt::green));
    }
    void propertyIsTheOption() {
        QFETCH(QVariant, initial);
        QFETCH(QVariant, value);
        const char* name = QTest::currentDataTag();
        TorvQueryBuilder builder;
        const Nested nested = nestedOf(builder, name);
        QCOMPARE(builder.property(name), initial);
        QVERIFY(builder.setProperty(name, value));
        QCOMPARE(builder.property(name), value);
        QCOMPARE(nested.object->property(nested.name), value);
        // No other option was written to.
        const TorvQueryBuilder untouched;
        const QMetaObject* meta = builder.metaObject();
        for (int index = meta->propertyOffset(); index < meta->propertyCount(); ++index) {
            const QMetaProperty other = meta->property(index);
            if (!other.isWritable() || qstrcmp(other.name(), name) == 0) continue;
            QVERIFY2(other.read(&builder) == other.read(&untouched), other.name());
        }
        QVERIFY(nested.object->setProperty(nested.name, initial));
        QCOMPARE(builder.property(name), initial);
    }

    // They are those of the class in which a form names them.
    void enumerationsHaveNamesForForms() {
        const QMetaObject& meta = TorvQueryBuilder::staticMetaObject;
        const QMetaEnum border =
            meta.property(meta.indexOfProperty("WorkAreaTableBorder")).enumerator();
        QCOMPARE(border.scope(), "TorvQDWorkAreaOptions");
        QCOMPARE(border.keyCount(), 4);
        QCOMPARE(border.valueToKey(edgeEtched), "edgeEtched");
        const QMetaEnum style =
            meta.property(meta.indexOfProperty("ConditionBtnsStyle")).enumerator();
        QCOMPARE(style.scope(), "TorvQDConditionOptions");
        QCOMPARE(style.keyCount(), 3);
        QCOMPARE(style.keyToValue("btn3DLook"), int(btn3DLook));
        // Their names outside of any class are the same things.
        static_assert(std::is_same_v<TBorderKind, TorvQDWorkAreaOptions::TBorderKind>);
        // NOLINTNEXTLINE(misc-redundant-expression)
        static_assert(::edgeSunken == TorvQDWorkAreaOptions::edgeSunken);
        static_assert(std::is_same_v<TbtnStyle, TorvQDConditionOptions::TbtnStyle>);
    }

    void ownedObjectsAreReachedByName() {
        const TorvQueryBuilder builder;
        QCOMPARE(builder.property("WorkAreaOptions").value<TorvQDWorkAreaOptions*>(),
                 builder.WorkAreaOptions.get());
        QCOMPARE(builder.property("ConditionOptions").value<TorvQDConditionOptions*>(),
                 builder.ConditionOptions.get());
        QCOMPARE(builder.property("Operators").value<TOperatorList*>(), builder.Operators.get());
        for (const char* name : {"WorkAreaOptions", "ConditionOptions", "Operators"}) {
            const QMetaObject* meta = builder.metaObject();
            const QMetaProperty property = meta->property(meta->indexOfProperty(name));
            QVERIFY2(!property.isWritable() && !property.isDesignable() && !property.isStored(),
                     name);
        }
    }

    // --- back to the beginning

    void resetTakesAwayWhatWasSet() {
        TorvQueryBuilder builder;
        const QMetaObject* meta = builder.metaObject();
        const auto reset = [&](const char* name) {
            const QMetaProperty property = meta->property(meta->indexOfProperty(name));
            return property.isResettable() && property.reset(&builder);
        };
        builder.setOperatorsList({"~", "~", "", "", "", "1"});
        QVERIFY(reset("OperatorsList"));
        QCOMPARE(builder.OperatorsList(), TorvQueryBuilder().OperatorsList());
        QCOMPARE(builder.Operators->Count(), 14);
        builder.setTabsHeight(222);
        QVERIFY(reset("TabsHeight"));
        QCOMPARE(builder.TabsHeight(), 100);
        builder.setWorkAreaProcedureColor(Qt::red);
        QVERIFY(reset("WorkAreaProcedureColor"));
        QCOMPARE(builder.WorkAreaProcedureColor(),
                 QGuiApplication::palette().color(QPalette::ToolTipBase));
    }

    void resetHeightIsThatOfTheShownPages() {
        TorvQueryBuilder builder;
        builder.resize(600, 600);
        builder.show();
        QCoreApplication::processEvents();
        builder.setTabsHeight(300);
        QCOMPARE(builder.PageCtrl->height(), 300);
        builder.resetTabsHeight();
        QCOMPARE(builder.PageCtrl->height(), 100);
        QCOMPARE(builder.TabsHeight(), 100);
    }
};

QTEST_MAIN(TestPublishedOptions)
#include "tst_publishedoptions.moc"
