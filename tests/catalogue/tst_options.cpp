// SPDX-License-Identifier: MIT
#include "catalogue/ORVQDOptions.h"
#include "core/Error.h"

#include <QGuiApplication>
#include <QMetaProperty>
#include <QPalette>
#include <QTest>

namespace {

QStringList propertiesOf(const QObject& object) {
    QStringList names;
    const QMetaObject* meta = object.metaObject();
    for (int index = meta->propertyOffset(); index < meta->propertyCount(); ++index) {
        names << QString::fromLatin1(meta->property(index).name());
    }
    return names;
}

void setAll(TorvQDWorkAreaOptions& options) {
    options.SetHideSelection(false);
    options.SetDragFieldName(true);
    options.SetFlat(true);
    options.SetShowFieldsType(true);
    options.SetFlatCaptionBtns(false);
    options.SetTableBorder(edgeEtched);
    options.SetFont(QFont(QStringLiteral("Courier"), 20));
    options.SetTableColor(Qt::red);
    options.SetProcedureColor(Qt::blue);
}

}  // namespace

class TestOptions : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void borderKindOrdinals();
    void buttonStyleOrdinals();
    void workAreaDefaults();
    void workAreaPropertiesInOrder();
    void procedureColorFollowsThePaletteUntilSet();
    void fontNotifiesOncePerChange();
    void fontWithoutNotificationIsStored();
    void equalFontNotifiesNobody();
    void fontHandlerMayReplaceItself();
    void everyOtherOptionTellsOfItsChange();
    void equalOptionTellsNothing();
    void workAreaAssignCopiesEverything();
    void workAreaAssignCopiesAnUnsetProcedureColor();
    void workAreaAssignOfAnotherClassRaises();
    void conditionDefaults();
    void conditionPropertiesInOrder();
    void conditionOptionsTellOfTheirChange();
    void conditionAssignCopiesEverything();
    void conditionAssignOfAnotherClassRaises();
};

void TestOptions::borderKindOrdinals() {
    QCOMPARE(int(edgeBump), 0);
    QCOMPARE(int(edgeEtched), 1);
    QCOMPARE(int(edgeRaised), 2);
    QCOMPARE(int(edgeSunken), 3);
}

void TestOptions::buttonStyleOrdinals() {
    QCOMPARE(int(btnFlat), 0);
    QCOMPARE(int(btn3DLook), 1);
    QCOMPARE(int(btnRaise), 2);
}

void TestOptions::workAreaDefaults() {
    const TorvQDWorkAreaOptions options;
    QCOMPARE(options.GetHideSelection(), true);
    QCOMPARE(options.GetDragFieldName(), false);
    QCOMPARE(options.GetFlat(), false);
    QCOMPARE(options.GetShowFieldsType(), false);
    QCOMPARE(options.GetFlatCaptionBtns(), true);
    QCOMPARE(options.GetTableBorder(), edgeRaised);
    QCOMPARE(options.GetFont().family(), QStringLiteral("Arial"));
    QCOMPARE(options.GetTableColor(), QColor(0xFF, 0xFF, 0xFF));
    QCOMPARE(options.GetProcedureColor(), QGuiApplication::palette().color(QPalette::ToolTipBase));
}

void TestOptions::workAreaPropertiesInOrder() {
    QCOMPARE(
        propertiesOf(TorvQDWorkAreaOptions()),
        QStringList({"HideSelection", "DragFieldName", "Flat", "ShowFieldsType", "FlatCaptionBtns",
                     "TableBorder", "Font", "TableColor", "ProcedureColor"}));
}

void TestOptions::procedureColorFollowsThePaletteUntilSet() {
    const QPalette before = QGuiApplication::palette();
    QPalette palette = before;
    palette.setColor(QPalette::ToolTipBase, QColor(1, 2, 3));
    QGuiApplication::setPalette(palette);
    TorvQDWorkAreaOptions options;
    const QColor followed = options.GetProcedureColor();
    options.SetProcedureColor(Qt::green);
    const QColor set = options.GetProcedureColor();
    QGuiApplication::setPalette(before);
    QCOMPARE(followed, QColor(1, 2, 3));
    QCOMPARE(set, QColor(Qt::green));
}

void TestOptions::fontNotifiesOncePerChange() {
    TorvQDWorkAreaOptions options;
    QList<int> sizes;
    options.OnChangeFont = [&](const QFont& font) { sizes << font.pointSize(); };
    QFont font = options.GetFont();
    font.setPointSize(20);
    options.SetFont(font);
    QCOMPARE(sizes, QList<int>({20}));
    QCOMPARE(options.GetFont(), font);
    font.setPointSize(21);
    options.SetFont(font);
    QCOMPARE(sizes, QList<int>({20, 21}));
}

void TestOptions::fontWithoutNotificationIsStored() {
    TorvQDWorkAreaOptions options;
    const QFont font(QStringLiteral("Courier"), 20);
    options.SetFont(font);
    QCOMPARE(options.GetFont(), font);
}

void TestOptions::equalFontNotifiesNobody() {
    TorvQDWorkAreaOptions options;
    int calls = 0;
    options.OnChangeFont = [&](const QFont&) { ++calls; };
    options.SetFont(QFont(options.GetFont()));
    QCOMPARE(calls, 0);
}

void TestOptions::fontHandlerMayReplaceItself() {
    TorvQDWorkAreaOptions options;
    const QString text = QStringLiteral("still there behind the replacement");
    QString seen;
    options.OnChangeFont = [&options, &seen, text](const QFont&) {
        options.OnChangeFont = nullptr;
        seen = text;
    };
    options.SetFont(QFont(QStringLiteral("Courier"), 20));
    QCOMPARE(seen, text);
}

void TestOptions::everyOtherOptionTellsOfItsChange() {
    TorvQDWorkAreaOptions options;
    int calls = 0;
    options.changed = [&] { ++calls; };
    options.SetHideSelection(false);
    options.SetDragFieldName(true);
    options.SetFlat(true);
    options.SetShowFieldsType(true);
    options.SetFlatCaptionBtns(false);
    options.SetTableBorder(edgeBump);
    options.SetTableColor(Qt::red);
    options.SetProcedureColor(Qt::red);
    QCOMPARE(calls, 8);
}

void TestOptions::equalOptionTellsNothing() {
    TorvQDWorkAreaOptions options;
    int calls = 0;
    options.changed = [&] { ++calls; };
    options.SetHideSelection(true);
    options.SetTableBorder(edgeRaised);
    options.SetTableColor(Qt::white);
    QCOMPARE(calls, 0);
}

void TestOptions::workAreaAssignCopiesEverything() {
    TorvQDWorkAreaOptions source;
    setAll(source);
    TorvQDWorkAreaOptions dest;
    int fonts = 0;
    dest.OnChangeFont = [&](const QFont&) { ++fonts; };
    dest.Assign(&source);
    for (const QString& name : propertiesOf(source)) {
        const QByteArray property = name.toLatin1();
        QCOMPARE(dest.property(property.constData()), source.property(property.constData()));
        QVERIFY(dest.property(property.constData()) !=
                TorvQDWorkAreaOptions().property(property.constData()));
    }
    QCOMPARE(fonts, 1);
}

void TestOptions::workAreaAssignCopiesAnUnsetProcedureColor() {
    const TorvQDWorkAreaOptions source;
    TorvQDWorkAreaOptions dest;
    dest.SetProcedureColor(QColor(1, 2, 3));
    dest.Assign(&source);
    QCOMPARE(dest.GetProcedureColor(), QGuiApplication::palette().color(QPalette::ToolTipBase));
}

void TestOptions::workAreaAssignOfAnotherClassRaises() {
    TorvQDWorkAreaOptions options;
    TorvQDConditionOptions other;
    QVERIFY_THROWS_EXCEPTION(orv::Error, options.Assign(&other));
    QVERIFY_THROWS_EXCEPTION(orv::Error, options.AssignTo(&other));
}

void TestOptions::conditionDefaults() {
    const TorvQDConditionOptions options;
    QCOMPARE(options.GetSelectRow(), true);
    QCOMPARE(options.GetBtnsStyle(), btnFlat);
    QCOMPARE(options.GetActiveRowColor(), QColor(0xFF, 0xFF, 0xFF));
}

void TestOptions::conditionPropertiesInOrder() {
    QCOMPARE(propertiesOf(TorvQDConditionOptions()),
             QStringList({"SelectRow", "BtnsStyle", "ActiveRowColor"}));
}

void TestOptions::conditionOptionsTellOfTheirChange() {
    TorvQDConditionOptions options;
    int calls = 0;
    options.changed = [&] { ++calls; };
    options.SetSelectRow(true);
    QCOMPARE(calls, 0);
    options.SetSelectRow(false);
    options.SetBtnsStyle(btnRaise);
    options.SetActiveRowColor(Qt::red);
    QCOMPARE(calls, 3);
}

void TestOptions::conditionAssignCopiesEverything() {
    TorvQDConditionOptions source;
    source.SetSelectRow(false);
    source.SetBtnsStyle(btn3DLook);
    source.SetActiveRowColor(Qt::red);
    TorvQDConditionOptions dest;
    dest.Assign(&source);
    QCOMPARE(dest.GetSelectRow(), false);
    QCOMPARE(dest.GetBtnsStyle(), btn3DLook);
    QCOMPARE(dest.GetActiveRowColor(), QColor(Qt::red));
}

void TestOptions::conditionAssignOfAnotherClassRaises() {
    TorvQDConditionOptions options;
    TorvQDWorkAreaOptions other;
    QVERIFY_THROWS_EXCEPTION(orv::Error, options.Assign(&other));
    QVERIFY_THROWS_EXCEPTION(orv::Error, options.AssignTo(&other));
}

QTEST_MAIN(TestOptions)
#include "tst_options.moc"
