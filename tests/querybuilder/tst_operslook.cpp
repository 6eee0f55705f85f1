// SPDX-License-Identifier: MIT
#include "querybuilder/OpersForm.h"

#include <QAccessible>
#include <QFontMetrics>
#include <QScrollArea>
#include <QStyleFactory>

using orvtest::OpersForm;

namespace {

template <typename Widget>
QList<Widget*> all(const QWidget& parent) {
    return parent.findChildren<Widget*>();
}

/// What does not show whole; empty when everything does.
QStringList clipped(const TorvQDOperatorsPropertyDlg& dialog) {
    QStringList names;
    const auto lies = [&](const QWidget* widget) {
        return widget->parentWidget()->rect().contains(widget->geometry());
    };
    for (const QLabel* label : all<QLabel>(dialog)) {
        if (!label->isVisible() || label == dialog.lblSQL) continue;
        const QSize needed = label->minimumSizeHint();
        const bool fits = label->width() >= needed.width() && label->height() >= needed.height();
        if (!fits || !lies(label)) names << label->objectName();
    }
    for (const QPushButton* button : all<QPushButton>(dialog)) {
        const int text = button->fontMetrics().horizontalAdvance(button->text());
        const bool fits =
            button->width() >= text && button->height() >= button->sizeHint().height();
        if (button->isVisible() && (!fits || !lies(button))) names << button->objectName();
    }
    for (const QLineEdit* edit : all<QLineEdit>(dialog)) {
        const bool fits = edit->height() >= edit->minimumSizeHint().height();
        if (edit->isVisible() && (!fits || !lies(edit))) names << edit->objectName();
    }
    for (const QGroupBox* group : all<QGroupBox>(dialog)) {
        if (!lies(group) || group->width() < group->minimumSizeHint().width()) {
            names << group->objectName();
        }
    }
    return names;
}

/// Puts the style and font of the program back when it dies.
class ProgramLook {
public:
    ProgramLook() : m_font(QApplication::font()), m_palette(QApplication::palette()) {}
    ~ProgramLook() {
        QApplication::setFont(m_font);
        QApplication::setPalette(m_palette);
    }
    ProgramLook(const ProgramLook&) = delete;
    ProgramLook& operator=(const ProgramLook&) = delete;

private:
    QFont m_font;
    QPalette m_palette;
};

}  // namespace

class OpersLookTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void textsAreFixed() {
        const TorvQDOperatorsPropertyDlg dialog;
        QCOMPARE(dialog.windowTitle(), "Operator properties");
        QCOMPARE(dialog.GroupBox1->title(), "Available operators");
        QCOMPARE(dialog.btnAdd->text(), "Add operator");
        QCOMPARE(dialog.btnDelete->text(), "Delete operator");
        QCOMPARE(dialog.Features->title(), "Features");
        QCOMPARE(dialog.lblName->text(), "Operator name:");
        QCOMPARE(dialog.lblCaption->text(), "Display name: ");
        QCOMPARE(dialog.lblCount->text(), "Count of operands:");
        QCOMPARE(dialog.lblPrefix->text(), "Prefix:");
        QCOMPARE(dialog.lblRelate->text(), "Relate:");
        QCOMPARE(dialog.lblPostfix->text(), "Postfix:");
        QCOMPARE(dialog.lblSQLCaption->text(), "SQL expression:");
        QCOMPARE(dialog.btnOK->text(), "OK");
        QCOMPARE(dialog.btnCancel->text(), "Cancel");
    }

    void hintStandsBelowBothColumns() {
        const OpersForm on;
        const TorvQDOperatorsPropertyDlg& dialog = on.dialog;
        QCOMPARE(dialog.lblHint->geometry().left(), dialog.GroupBox1->geometry().left());
        QCOMPARE(dialog.lblHint->geometry().right(), dialog.Features->geometry().right());
    }

    void controlsAreCalledWhatTheyAre() {
        const TorvQDOperatorsPropertyDlg dialog;
        const std::pair<const QWidget*, const char*> controls[] = {
            {dialog.GroupBox1, "GroupBox1"}, {dialog.lbOperators, "lbOperators"},
            {dialog.btnAdd, "btnAdd"},       {dialog.btnDelete, "btnDelete"},
            {dialog.Features, "Features"},   {dialog.lblName, "lblName"},
            {dialog.ebName, "ebName"},       {dialog.lblCaption, "lblCaption"},
            {dialog.ebCaption, "ebCaption"}, {dialog.lblCount, "lblCount"},
            {dialog.ebCount, "ebCount"},     {dialog.lblPrefix, "lblPrefix"},
            {dialog.ebPrefix, "ebPrefix"},   {dialog.lblRelate, "lblRelate"},
            {dialog.ebRelate, "ebRelate"},   {dialog.lblPostfix, "lblPostfix"},
            {dialog.ebPostfix, "ebPostfix"}, {dialog.lblSQLCaption, "lblSQLCaption"},
            {dialog.lblSQL, "lblSQL"},       {dialog.btnOK, "btnOK"},
            {dialog.btnCancel, "btnCancel"}};
        for (const auto& [control, name] : controls) QCOMPARE(control->objectName(), name);
    }

    void sizesAreNoSmallerThanDesigned() {
        OpersForm on;
        on.user->select("BETWEEN");
        const TorvQDOperatorsPropertyDlg& dialog = on.dialog;
        const std::pair<const QWidget*, QSize> sizes[] = {
            {&dialog, {415, 318}},         {dialog.GroupBox1, {129, 249}},
            {dialog.btnAdd, {89, 25}},     {dialog.btnDelete, {81, 25}},
            {dialog.Features, {257, 209}}, {dialog.ebName, {153, 21}},
            {dialog.ebCaption, {153, 21}}, {dialog.ebCount, {57, 21}},
            {dialog.ebPrefix, {80, 21}},   {dialog.ebRelate, {80, 21}},
            {dialog.ebPostfix, {80, 21}},  {dialog.lblSQL, {241, 19}},
            {dialog.btnOK, {105, 25}},     {dialog.btnCancel, {89, 25}}};
        for (const auto& [control, least] : sizes) {
            QVERIFY2(control->width() >= least.width() && control->height() >= least.height(),
                     qPrintable(control->objectName()));
        }
    }

    void nothingIsCut_data() {
        QTest::addColumn<QString>("style");
        QTest::addColumn<double>("points");
        for (const QString& style : QStyleFactory::keys()) {
            for (const double points : {6.0, 9.0, 14.0, 24.0}) {
                QTest::addRow("%s %g", qPrintable(style), points) << style << points;
            }
        }
    }
    void nothingIsCut() {
        QFETCH(QString, style);
        QFETCH(double, points);
        const ProgramLook look;
        const QString before = QApplication::style()->objectName();
        const auto back = qScopeGuard([&] { QApplication::setStyle(before); });
        QApplication::setStyle(style);
        QFont font = QApplication::font();
        font.setPointSizeF(points);
        QApplication::setFont(font);
        OpersForm on;
        QCOMPARE(clipped(on.dialog).join(' '), QString());
        on.user->select("BETWEEN");
        on.user->type(on.dialog.ebRelate, ", ");
        QVERIFY(on.dialog.lblHint->isVisible());
        QCoreApplication::processEvents();
        QCOMPARE(clipped(on.dialog).join(' '), QString());
        on.dialog.resize(1, 1);
        QCoreApplication::processEvents();
        QCOMPARE(clipped(on.dialog).join(' '), QString());
    }

    // The list has a scroll bar for them, the preview wraps.
    void longTextsDoNotWidenTheDialog() {
        OpersForm on;
        const QSize before = on.dialog.size();
        on.user->select("IN");
        on.user->type(on.dialog.ebName, QString("NAME ").repeated(60));
        QCoreApplication::processEvents();
        QCOMPARE(on.dialog.size(), before);
        QCOMPARE(clipped(on.dialog).join(' '), QString());
        auto* preview = on.dialog.findChild<QScrollArea*>();
        QVERIFY(on.dialog.lblSQL->height() > preview->viewport()->height());
        QCOMPARE(preview->focusPolicy(), Qt::StrongFocus);
        on.user->type(on.dialog.ebName, "N");
        QCoreApplication::processEvents();
        QCOMPARE(preview->focusPolicy(), Qt::NoFocus);
    }

    void hidingTheFeaturesMovesNothing() {
        OpersForm on;
        const QRect list = on.dialog.GroupBox1->geometry();
        const QRect ok = on.dialog.btnOK->geometry();
        on.user->select("IN");
        on.user->type(on.dialog.ebPrefix, "[");
        QCoreApplication::processEvents();
        QCOMPARE(on.dialog.GroupBox1->geometry(), list);
        QCOMPARE(on.dialog.btnOK->geometry(), ok);
    }

    void growsWithItsWindow() {
        OpersForm on;
        on.user->select("IN");
        const int list = on.dialog.lbOperators->height();
        const int name = on.dialog.ebName->width();
        const int listWidth = on.dialog.lbOperators->width();
        on.dialog.resize(on.dialog.width() + 200, on.dialog.height() + 200);
        QCoreApplication::processEvents();
        QVERIFY(on.dialog.lbOperators->height() >= list + 200);
        QVERIFY(on.dialog.ebName->width() > name);
        QVERIFY(on.dialog.lbOperators->width() > listWidth + 20);
    }

    void namesAreNoMarkup() {
        OpersForm on;
        on.user->select("IN");
        on.user->type(on.dialog.ebName, "<b>&x");
        QCOMPARE(on.dialog.lblSQL->textFormat(), Qt::PlainText);
        QCOMPARE(on.dialog.lblSQL->text(), "??? <b>&x( ??? )");
    }

    void colorsAreThoseOfThePalette() {
        const ProgramLook look;
        QPalette dark(QColor(40, 44, 52));
        dark.setColor(QPalette::Window, QColor(40, 44, 52));
        dark.setColor(QPalette::WindowText, QColor(220, 220, 220));
        dark.setColor(QPalette::Base, QColor(20, 22, 26));
        dark.setColor(QPalette::Text, QColor(220, 220, 220));
        QApplication::setPalette(dark);
        OpersForm on;
        on.user->select("BETWEEN");
        on.user->type(on.dialog.ebPrefix, "x");
        const QImage image = on.dialog.grab().toImage();
        const auto brightest = [&](const QWidget* widget) {
            const QRect area(widget->mapTo(&on.dialog, QPoint()), widget->size());
            int most = 0;
            for (int y = area.top(); y <= area.bottom(); ++y) {
                for (int x = area.left(); x <= area.right(); ++x) {
                    most = qMax(most, qGray(image.pixel(x, y)));
                }
            }
            return most;
        };
        for (const QLabel* label : all<QLabel>(on.dialog)) {
            const QRect area(label->mapTo(&on.dialog, QPoint()), label->size());
            QVERIFY2(qGray(image.pixel(area.topLeft())) < 90, qPrintable(label->objectName()));
            QVERIFY2(brightest(label) > 150, qPrintable(label->objectName()));
        }
        // The preview has no background of its own.
        const auto corner = [&](const QWidget* widget) {
            return image.pixel(widget->mapTo(&on.dialog, QPoint()));
        };
        QCOMPARE(corner(on.dialog.lblSQL), corner(on.dialog.lblSQLCaption));
    }

    // --- what is read out

    void everyControlHasAName() {
        OpersForm on;
        on.user->select("IN");
        const std::pair<QWidget*, const char*> names[] = {
            {on.dialog.lbOperators, "Available operators"},
            {on.dialog.ebName, "Operator name"},
            {on.dialog.ebCaption, "Display name"},
            {on.dialog.ebCount, "Count of operands"},
            {on.dialog.ebPrefix, "Prefix"},
            {on.dialog.ebRelate, "Relate"},
            {on.dialog.ebPostfix, "Postfix"},
            {on.dialog.btnAdd, "Add operator"},
            {on.dialog.lblSQL, "??? IN( ??? )"}};
        for (const auto& [control, name] : names) {
            QCOMPARE(QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name), name);
        }
    }

    void labelsBelongToTheirEdits() {
        const TorvQDOperatorsPropertyDlg dialog;
        QCOMPARE(dialog.lblName->buddy(), dialog.ebName);
        QCOMPARE(dialog.lblCaption->buddy(), dialog.ebCaption);
        QCOMPARE(dialog.lblCount->buddy(), dialog.ebCount);
        QCOMPARE(dialog.lblPrefix->buddy(), dialog.ebPrefix);
        QCOMPARE(dialog.lblRelate->buddy(), dialog.ebRelate);
        QCOMPARE(dialog.lblPostfix->buddy(), dialog.ebPostfix);
    }

    void onlyOKIsTheDefault() {
        OpersForm on;
        QVERIFY(on.dialog.btnOK->isDefault());
        for (const QPushButton* button : all<QPushButton>(on.dialog)) {
            if (button != on.dialog.btnOK) QVERIFY(!button->autoDefault());
        }
    }
};

QTEST_MAIN(OpersLookTest)
#include "tst_operslook.moc"
