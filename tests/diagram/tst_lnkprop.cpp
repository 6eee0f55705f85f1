// SPDX-License-Identifier: MIT
#include "diagram/Orvqdlnkprop.h"
#include "support/FakeCanvas.h"
#include "support/TestTools.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFontMetrics>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTextDocumentFragment>
#include <QTimer>

#include <algorithm>

using orvtest::FakeCanvas;

namespace {

TDataSet oneField(const QString& name) {
    TDataSet dataSet;
    dataSet.FieldDefs.push_back({name, ftInteger});
    return dataSet;
}

/// Two boxes with a link between them, and the dialog.
struct Form {
    explicit Form(const QString& table1 = "CUSTOMER", const QString& table2 = "ORDERS",
                  const QString& field1 = "ID", const QString& field2 = "CUSTID")
        : fields1(oneField(field1)),
          fields2(oneField(field2)),
          first(&canvas, &fields1, table1),
          second(&canvas, &fields2, table2),
          join(&canvas, &first, &second) {
        link = addLink();
        dialog = std::make_unique<TdlgLnkProp>();
    }

    std::unique_ptr<TorvQDLink> addLink() {
        return std::make_unique<TorvQDLink>(&canvas, &join, first.Items[0].get(),
                                            second.Items[0].get());
    }

    /// Opens the dialog, lets the user do that, and returns what edit() tells.
    bool edit(const std::function<void(TdlgLnkProp&)>& user) {
        services.onDialog = [user](QDialog& shown) {
            const QPointer<QDialog> self(&shown);
            shown.show();
            user(static_cast<TdlgLnkProp&>(shown));
            return self ? shown.result() : int(QDialog::Rejected);
        };
        return dialog->edit(link.get());
    }

    orvtest::RecordedServices services;
    FakeCanvas canvas;
    TDataSet fields1;
    TDataSet fields2;
    TorvQDTable first;
    TorvQDTable second;
    TorvQDJoin join;
    std::unique_ptr<TorvQDLink> link;
    std::unique_ptr<TdlgLnkProp> dialog;
};

QRect spanOf(const QWidget* widget) {
    return widget->geometry();
}

}  // namespace

class LnkPropTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    // --- what it shows

    void showsTheLinkItsTablesAndItsFields() {
        Form on;
        on.dialog->CurrentLnk = on.link.get();
        on.dialog->FormShow();
        QCOMPARE(on.dialog->windowTitle(), "Link properties");
        QCOMPARE(on.dialog->lblCaption->text(), "join tables: CUSTOMER and ORDERS");
        QCOMPARE(on.dialog->lblLeftField->text(), "ID");
        QCOMPARE(on.dialog->lblRightField->text(), "CUSTID");
        QCOMPARE(on.dialog->btnLeftOuter->text(), "Include all from CUSTOMER");
        QCOMPARE(on.dialog->btnRightOuter->text(), "Include all from ORDERS");
        QCOMPARE(on.dialog->btnOK->text(), "OK");
        QCOMPARE(on.dialog->btnCancel->text(), "Cancel");
    }

    // The names of the tables, not what the statement calls them.
    void showsNamesNotAliases() {
        Form on;
        on.first.SetAlias("C");
        on.dialog->CurrentLnk = on.link.get();
        on.dialog->FormShow();
        QCOMPARE(on.dialog->lblCaption->text(), "join tables: CUSTOMER and ORDERS");
    }

    void showsTheKindOfTheJoin_data() { kinds(); }
    void showsTheKindOfTheJoin() {
        QFETCH(int, kind);
        QFETCH(bool, left);
        QFETCH(bool, right);
        Form on;
        on.dialog->CurrentLnk = on.link.get();
        // What the last link left behind must not stay.
        for (QCheckBox* box : {on.dialog->btnLeftOuter, on.dialog->btnRightOuter}) {
            box->setChecked(true);
        }
        on.join.KindOfJoin = TKindOfJoin(kind);
        on.dialog->FormShow();
        QCOMPARE(on.dialog->btnLeftOuter->isChecked(), left);
        QCOMPARE(on.dialog->btnRightOuter->isChecked(), right);
    }

    void offersTheOperatorsAndNothingElse() {
        Form on;
        QStringList items;
        for (int index = 0; index < on.dialog->cbConditions->count(); ++index) {
            items << on.dialog->cbConditions->itemText(index);
        }
        QCOMPARE(items, QStringList({"=", ">", "<", ">=", "<=", "<>"}));
        QVERIFY(!on.dialog->cbConditions->isEditable());
        on.dialog->CurrentLnk = on.link.get();
        for (int index = 0; index < int(items.size()); ++index) {
            on.link->Operator = index;
            on.dialog->FormShow();
            QCOMPARE(on.dialog->cbConditions->currentText(), items[index]);
        }
    }

    void unlistedOperatorIsNoSelection() {
        Form on;
        on.link->setOperatorText("!=");
        on.dialog->CurrentLnk = on.link.get();
        on.dialog->FormShow();
        QCOMPARE(on.dialog->cbConditions->currentIndex(), -1);
        QCOMPARE(on.dialog->cbConditions->currentText(), QString());
        on.link->Operator = 6;
        on.dialog->FormShow();
        QCOMPARE(on.dialog->cbConditions->currentIndex(), -1);
    }

    void namesAreNeitherKeysNorMarkup() {
        Form on("\"A&B\"", "\"<b>T&&</b>\"", "\"X&Y\"", "\"<i>F</i>\"");
        on.dialog->CurrentLnk = on.link.get();
        on.dialog->FormShow();
        QCOMPARE(on.dialog->lblCaption->text(), "join tables: \"A&B\" and \"<b>T&&</b>\"");
        QCOMPARE(on.dialog->lblLeftField->text(), "\"X&Y\"");
        QCOMPARE(on.dialog->lblRightField->text(), "\"<i>F</i>\"");
        for (const QLabel* label :
             {on.dialog->lblCaption, on.dialog->lblLeftField, on.dialog->lblRightField}) {
            QCOMPARE(label->textFormat(), Qt::PlainText);
            QVERIFY(!label->buddy());
        }
        // A check box draws "&&" as "&".
        QCOMPARE(on.dialog->btnLeftOuter->text(), "Include all from \"A&&B\"");
        QCOMPARE(on.dialog->btnRightOuter->text(), "Include all from \"<b>T&&&&</b>\"");
        QVERIFY(on.dialog->btnLeftOuter->shortcut().isEmpty());
        QVERIFY(on.dialog->btnRightOuter->shortcut().isEmpty());
    }

    void screenReadersAreToldWhatIsWhat() {
        Form on;
        on.dialog->CurrentLnk = on.link.get();
        on.dialog->FormShow();
        QCOMPARE(on.dialog->cbConditions->accessibleName(), "Operator");
        QCOMPARE(on.dialog->cbConditions->accessibleDescription(), "Compares ID with CUSTID");
        QCOMPARE(on.dialog->lblLeftField->accessibleName(), "Left field: ID");
        QCOMPARE(on.dialog->lblRightField->accessibleName(), "Right field: CUSTID");
        QVERIFY(!on.dialog->edJoinText->accessibleName().isEmpty());
    }

    // --- without a link

    void withoutALinkItIsNotShown() {
        Form on;
        QCOMPARE(orvtest::errorOf([&] { on.dialog->FormShow(); }), "Invalid link");
        QCOMPARE(orvtest::errorOf([&] { on.dialog->edit(nullptr); }), "Invalid link");
        QVERIFY(on.services.dialogs.isEmpty());
        QVERIFY(!on.dialog->isVisible());
        on.dialog->btnOKClick();
    }

    void deadLinkIsNoLink() {
        Form on;
        on.dialog->CurrentLnk = on.link.get();
        on.link.reset();
        QVERIFY(!on.dialog->CurrentLnk);
        QCOMPARE(orvtest::errorOf([&] { on.dialog->FormShow(); }), "Invalid link");
    }

    // --- what it writes

    void ticksAreTheKindOfTheJoin_data() { kinds(); }
    void ticksAreTheKindOfTheJoin() {
        QFETCH(int, kind);
        QFETCH(bool, left);
        QFETCH(bool, right);
        for (const TKindOfJoin before : {klInnerJoin, klLOuterJoin, klROuterJoin, klFOuterJoin}) {
            Form on;
            on.join.KindOfJoin = before;
            const bool changed = on.edit([&](TdlgLnkProp& dialog) {
                dialog.btnLeftOuter->setChecked(left);
                dialog.btnRightOuter->setChecked(right);
                dialog.btnOK->click();
            });
            QCOMPARE(int(on.join.KindOfJoin), kind);
            QCOMPARE(changed, before != kind);
            QCOMPARE(on.dialog->result(), int(QDialog::Accepted));
            QVERIFY(!on.dialog->isVisible());
            QCOMPARE(on.dialog->CurrentLnk.data(), on.link.get());
        }
    }

    void kindIsThatOfAllLinksBetweenTheTables() {
        Form on;
        const std::unique_ptr<TorvQDLink> other = on.addLink();
        other->setOperatorText("<");
        QVERIFY(on.edit([](TdlgLnkProp& dialog) {
            dialog.btnLeftOuter->setChecked(true);
            dialog.cbConditions->setCurrentIndex(3);
            dialog.btnOK->click();
        }));
        QCOMPARE(other->Join->KindOfJoin, klLOuterJoin);
        QCOMPARE(other->operatorText(), "<");
        QCOMPARE(on.link->operatorText(), ">=");
    }

    void selectedOperatorIsStored() {
        for (int index = 0; index < 6; ++index) {
            Form on;
            on.link->setOperatorText("!=");
            QVERIFY(on.edit([&](TdlgLnkProp& dialog) {
                dialog.cbConditions->setCurrentIndex(index);
                dialog.btnOK->click();
            }));
            QCOMPARE(on.link->Operator, index);
            QCOMPARE(on.link->OperatorSource, QString());
        }
    }

    void withoutASelectionTheOperatorStays() {
        Form on;
        on.link->setOperatorText("!=");
        QVERIFY(!on.edit([](TdlgLnkProp& dialog) { dialog.btnOK->click(); }));
        QCOMPARE(on.link->Operator, -1);
        QCOMPARE(on.link->OperatorSource, "!=");
        QVERIFY(on.edit([](TdlgLnkProp& dialog) {
            dialog.btnRightOuter->setChecked(true);
            dialog.btnOK->click();
        }));
        QCOMPARE(on.join.KindOfJoin, klROuterJoin);
        QCOMPARE(on.link->OperatorSource, "!=");
        on.link->Operator = 6;
        QVERIFY(!on.edit([](TdlgLnkProp& dialog) { dialog.btnOK->click(); }));
        QCOMPARE(on.link->Operator, 6);
    }

    void nothingIsChangedWithoutOK_data() {
        QTest::addColumn<int>("way");
        QTest::newRow("cancel") << 0;
        QTest::newRow("escape") << 1;
        QTest::newRow("close") << 2;
    }
    void nothingIsChangedWithoutOK() {
        QFETCH(int, way);
        Form on;
        on.join.KindOfJoin = klROuterJoin;
        on.link->setOperatorText("!=");
        const bool changed = on.edit([&](TdlgLnkProp& dialog) {
            dialog.btnLeftOuter->setChecked(true);
            dialog.cbConditions->setCurrentIndex(4);
            if (way == 0) dialog.btnCancel->click();
            if (way == 1) QTest::keyClick(dialog.cbConditions, Qt::Key_Escape);
            if (way == 2) dialog.close();
        });
        QVERIFY(!changed);
        QVERIFY(!on.dialog->isVisible());
        QCOMPARE(on.dialog->result(), int(QDialog::Rejected));
        QCOMPARE(on.join.KindOfJoin, klROuterJoin);
        QCOMPARE(on.link->Operator, -1);
        QCOMPARE(on.link->OperatorSource, "!=");
    }

    void cancelledDialogShowsTheLinkAsItIsNextTime() {
        Form on;
        (void)on.edit([](TdlgLnkProp& dialog) {
            dialog.btnLeftOuter->setChecked(true);
            dialog.cbConditions->setCurrentIndex(4);
            dialog.btnCancel->click();
        });
        QVERIFY(!on.edit([](TdlgLnkProp& dialog) { dialog.btnOK->click(); }));
        QCOMPARE(on.join.KindOfJoin, klInnerJoin);
        QCOMPARE(on.link->Operator, 0);
    }

    void whatOneLinkChangedIsNotToldOfTheNext() {
        Form on;
        QVERIFY(on.edit([](TdlgLnkProp& dialog) {
            dialog.cbConditions->setCurrentIndex(1);
            dialog.btnOK->click();
        }));
        QVERIFY(!on.edit([](TdlgLnkProp& dialog) { dialog.btnCancel->click(); }));
    }

    // --- what dies or is asked meanwhile

    void linkMayDieWhileTheDialogIsOpen() {
        Form on;
        QVERIFY(!on.edit([&](TdlgLnkProp& dialog) {
            dialog.btnLeftOuter->setChecked(true);
            on.link.reset();
            dialog.btnOK->click();
        }));
        QCOMPARE(on.join.KindOfJoin, klInnerJoin);
        QVERIFY(!on.dialog->isVisible());
    }

    void dialogMayDieWhileItIsOpen() {
        Form on;
        QVERIFY(!on.edit([&](TdlgLnkProp&) { on.dialog.reset(); }));
        QCOMPARE(on.join.KindOfJoin, klInnerJoin);
        QCOMPARE(on.services.dialogs, QStringList("Link properties"));
    }

    void dialogMayDieWithItsOwnerInItsOwnLoop() {
        Form on;
        orv::setDialogRunner({});
        auto* owner = new QWidget;
        auto* dialog = new TdlgLnkProp(owner);
        QTimer::singleShot(0, owner, [owner] { delete owner; });
        QVERIFY(!dialog->edit(on.link.get()));
    }

    void openDialogTakesNoOtherLink() {
        Form on;
        const std::unique_ptr<TorvQDLink> other = on.addLink();
        bool second = true;
        QVERIFY(on.edit([&](TdlgLnkProp& dialog) {
            dialog.cbConditions->setCurrentIndex(2);
            second = dialog.edit(other.get());
            dialog.btnOK->click();
        }));
        QVERIFY(!second);
        QCOMPARE(on.services.dialogs.size(), 1);
        QCOMPARE(on.link->Operator, 2);
        QCOMPARE(other->Operator, 0);
    }

    // --- layout

    void controlsAreCentred_data() {
        QTest::addColumn<int>("formWidth");
        QTest::addColumn<int>("operatorWidth");
        QTest::addColumn<std::vector<int>>("lefts");
        const auto row = [](const char* name, int formWidth, int operatorWidth,
                            const std::vector<int>& lefts) {
            QTest::newRow(name) << formWidth << operatorWidth << lefts;
        };
        // Operator, left and right field, left and right check box, OK, Cancel.
        row("both even", 360, 50, {155, 89, 206, 7, 184, 85, 200});
        row("width odd", 361, 50, {155, 89, 206, 7, 184, 85, 200});
        row("operator odd", 360, 49, {155, 89, 205, 7, 184, 85, 200});
        row("both odd", 361, 49, {156, 90, 206, 7, 184, 85, 200});
        row("wide", 1000, 60, {470, 404, 531, 327, 504, 405, 520});
    }
    void controlsAreCentred() {
        QFETCH(int, formWidth);
        QFETCH(int, operatorWidth);
        QFETCH(std::vector<int>, lefts);
        const orv::LnkPropWidths widths = {operatorWidth, 65, 75, 169, 147, 75, 75};
        const orv::LnkPropLefts expected = {lefts[0], lefts[1], lefts[2], lefts[3],
                                            lefts[4], lefts[5], lefts[6]};
        QVERIFY(orv::lnkPropLayout(formWidth, widths) == expected);
    }

    void leastWidthShowsTheLongestLine() {
        orv::LnkPropWidths widths = {50, 60, 70, 100, 166, 75, 75};
        QCOMPARE(orv::lnkPropMinWidth(widths, 338), 360);
        QCOMPARE(orv::lnkPropMinWidth(widths, 339), 361);
        widths.btnRightOuter = 167;
        QCOMPARE(orv::lnkPropMinWidth(widths, 338), 362);
        std::swap(widths.btnLeftOuter, widths.btnRightOuter);
        QCOMPARE(orv::lnkPropMinWidth(widths, 338), 362);
        widths.btnLeftOuter = 100;
        widths.lblRightField = 145;
        QCOMPARE(orv::lnkPropMinWidth(widths, 338), 362);
        std::swap(widths.lblLeftField, widths.lblRightField);
        QCOMPARE(orv::lnkPropMinWidth(widths, 338), 362);
    }

    void shortNamesLeaveTheLeastWidth() {
        Form on("A", "B", "X", "Y");
        on.dialog->CurrentLnk = on.link.get();
        on.dialog->FormShow();
        QCOMPARE(on.dialog->MinWidth, 360);
        QCOMPARE(on.dialog->minimumWidth(), 360);
        QCOMPARE(on.dialog->width(), 360);
    }

    void longNamesWidenTheDialog() {
        const QString first(40, 'W');
        const QString second(40, 'M');
        Form on(first, second);
        on.dialog->CurrentLnk = on.link.get();
        on.dialog->FormShow();
        const auto textWidth = [](const QWidget* widget, const QString& text) {
            return QFontMetrics(widget->font()).horizontalAdvance(text);
        };
        const TdlgLnkProp& dialog = *on.dialog;
        const int caption = textWidth(dialog.lblCaption, dialog.lblCaption->text());
        QVERIFY(dialog.MinWidth > 360);
        QVERIFY(dialog.MinWidth >= caption + 22);
        QVERIFY(dialog.btnLeftOuter->width() >=
                textWidth(dialog.btnLeftOuter, "Include all from " + first) + 20);
        QVERIFY(dialog.btnRightOuter->width() >=
                textWidth(dialog.btnLeftOuter, "Include all from " + second) + 20);
        const int boxes = std::max(dialog.btnLeftOuter->width(), dialog.btnRightOuter->width());
        QCOMPARE(dialog.MinWidth, std::max(caption + 22, 2 * boxes + 28));
        QCOMPARE(dialog.minimumWidth(), dialog.MinWidth);
        QCOMPARE(dialog.width(), dialog.MinWidth);
        QCOMPARE(dialog.lblCaption->width(), dialog.MinWidth);
        QVERIFY(dialog.btnLeftOuter->x() >= 0);
        QVERIFY(spanOf(dialog.btnRightOuter).right() < dialog.width());
    }

    void longFieldsWidenTheDialog() {
        Form on("A", "B", "X", QString(60, 'W'));
        on.dialog->CurrentLnk = on.link.get();
        on.dialog->FormShow();
        const int field = on.dialog->lblRightField->width();
        QVERIFY(field >= on.dialog->lblRightField->fontMetrics().horizontalAdvance(
                             on.dialog->lblRightField->text()));
        QCOMPARE(on.dialog->MinWidth, 2 * field + on.dialog->cbConditions->width() + 22);
    }

    // A dialog once widened keeps its width, as one that the user has widened; it may get smaller.
    void dialogKeepsItsWidthForTheNextLink() {
        Form wide(QString(40, 'W'), QString(40, 'W'));
        Form small("A", "B", "X", "Y");
        wide.dialog->CurrentLnk = wide.link.get();
        wide.dialog->FormShow();
        const int width = wide.dialog->width();
        wide.dialog->CurrentLnk = small.link.get();
        wide.dialog->FormShow();
        QCOMPARE(wide.dialog->width(), width);
        QCOMPARE(wide.dialog->minimumWidth(), 360);
    }

    void heightIsFixedAndWidthHasALeast() {
        Form on;
        (void)on.edit([](TdlgLnkProp& dialog) {
            const int height = dialog.height();
            QVERIFY(height >= 129);
            dialog.resize(dialog.MinWidth + 101, height + 50);
            QCOMPARE(dialog.size(), QSize(dialog.MinWidth + 101, height));
            dialog.resize(10, 10);
            QCOMPARE(dialog.size(), QSize(dialog.MinWidth, height));
        });
    }

    void controlsFollowTheWidth() {
        Form on;
        (void)on.edit([](TdlgLnkProp& dialog) {
            const int top = dialog.btnOK->y();
            for (const int width : {dialog.MinWidth, 501, 800}) {
                dialog.resize(width, dialog.height());
                const int middle = width / 2;
                QCOMPARE(dialog.lblCaption->width(), width);
                QCOMPARE(dialog.cbConditions->x(), (width - dialog.cbConditions->width()) / 2);
                QCOMPARE(spanOf(dialog.lblLeftField).right() + 2, dialog.cbConditions->x());
                QVERIFY(dialog.lblRightField->x() > spanOf(dialog.cbConditions).right());
                QCOMPARE(spanOf(dialog.btnLeftOuter).right() + 1, middle - 4);
                QCOMPARE(dialog.btnRightOuter->x(), middle + 4);
                QCOMPARE(spanOf(dialog.btnOK).right() + 1, middle - 20);
                QCOMPARE(dialog.btnCancel->x(), middle + 20);
                QCOMPARE(dialog.btnOK->y(), top);
            }
        });
    }

    void rowsHaveTheirPlaceAndHoldTheirControls_data() {
        QTest::addColumn<int>("fontPx");
        QTest::addColumn<QString>("text");
        for (const int fontPx : {9, 12, 30}) {
            QTest::addRow("font of %d", fontPx) << fontPx << QString();
            QTest::addRow("font of %d, text", fontPx) << fontPx << QStringLiteral("A.X > 5");
        }
    }
    void rowsHaveTheirPlaceAndHoldTheirControls() {
        QFETCH(int, fontPx);
        QFETCH(QString, text);
        Form on;
        on.join.Text = text;
        QFont font = on.dialog->font();
        font.setPixelSize(fontPx);
        on.dialog->setFont(font);
        on.dialog->CurrentLnk = on.link.get();
        on.dialog->FormShow();
        const TdlgLnkProp& dialog = *on.dialog;
        std::vector<std::vector<const QWidget*>> rows = {
            {dialog.lblCaption},
            {dialog.lblLeftField, dialog.cbConditions, dialog.lblRightField},
            {dialog.btnLeftOuter, dialog.btnRightOuter},
            {dialog.lblJoinText, dialog.edJoinText},
            {dialog.btnOK, dialog.btnCancel}};
        std::vector<int> tops = {0, 32, 64, 81, 96};
        if (text.isEmpty()) {
            rows.erase(rows.begin() + 3);
            tops.erase(tops.begin() + 3);
        }
        int bottom = 0;
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const int above = bottom;
            int right = 0;
            for (const QWidget* control : rows[row]) {
                QVERIFY(control->y() >= above);
                QVERIFY(control->y() >= tops[row]);
                QVERIFY(control->height() >= control->sizeHint().height());
                QVERIFY(control->x() >= right);
                bottom = std::max(bottom, spanOf(control).bottom() + 1);
                right = spanOf(control).right() + 1;
                if (control == dialog.lblCaption || control == dialog.edJoinText) continue;
                QVERIFY(control->width() >= control->sizeHint().width());
            }
            QVERIFY(right <= dialog.width());
        }
        QVERIFY(dialog.height() > bottom);
    }

    void namesStandOut() {
        Form on;
        on.dialog->CurrentLnk = on.link.get();
        on.dialog->FormShow();
        QVERIFY(on.dialog->lblCaption->font().bold());
        QVERIFY(!on.dialog->lblLeftField->font().bold());
        QCOMPARE(on.dialog->lblCaption->alignment(), Qt::AlignHCenter | Qt::AlignVCenter);
        QCOMPARE(on.dialog->lblLeftField->alignment(), Qt::AlignRight | Qt::AlignVCenter);
        const int small = QFontInfo(on.dialog->btnLeftOuter->font()).pixelSize();
        for (const QLabel* label :
             {on.dialog->lblCaption, on.dialog->lblLeftField, on.dialog->lblRightField}) {
            QVERIFY(label->font().pixelSize() >= 13);
            QVERIFY(label->font().pixelSize() > small);
        }
        // Showing it again must not make them larger still.
        const int size = on.dialog->lblCaption->font().pixelSize();
        on.dialog->FormShow();
        QCOMPARE(on.dialog->lblCaption->font().pixelSize(), size);
    }

    // --- the join's own conditions

    void conditionsOfTheJoinAreShownReadOnly() {
        Form on;
        (void)on.edit([&](TdlgLnkProp& dialog) {
            QVERIFY(!dialog.edJoinText->isVisible());
            QVERIFY(!dialog.lblJoinText->isVisible());
        });
        const int height = on.dialog->height();
        const int top = on.dialog->btnOK->y();
        on.dialog->hide();
        const QString text = "CUSTOMER.A<5 AND '<b>' = " + QString(300, 'x');
        on.join.Text = text;
        (void)on.edit([&](TdlgLnkProp& dialog) {
            QVERIFY(dialog.edJoinText->isVisible());
            QCOMPARE(dialog.lblJoinText->text(), "and:");
            QCOMPARE(dialog.edJoinText->text(), text);
            QCOMPARE(dialog.edJoinText->cursorPosition(), 0);
            QVERIFY(dialog.edJoinText->isReadOnly());
            QTest::keyClicks(dialog.edJoinText, "z");
            QCOMPARE(dialog.edJoinText->text(), text);
            QCOMPARE(QTextDocumentFragment::fromHtml(dialog.edJoinText->toolTip()).toPlainText(),
                     text);
            QVERIFY(dialog.edJoinText->y() > spanOf(dialog.btnLeftOuter).bottom());
            QVERIFY(dialog.btnOK->y() > spanOf(dialog.edJoinText).bottom());
            dialog.btnLeftOuter->setChecked(true);
            dialog.btnOK->click();
        });
        QCOMPARE(on.dialog->height() - height, on.dialog->btnOK->y() - top);
        QVERIFY(on.dialog->height() > height);
        QCOMPARE(on.dialog->width(), on.dialog->MinWidth);
        QCOMPARE(on.join.Text, text);
        QCOMPARE(on.join.KindOfJoin, klLOuterJoin);
        on.join.Text.clear();
        (void)on.edit([&](TdlgLnkProp& dialog) {
            QVERIFY(!dialog.edJoinText->isVisible());
            QCOMPARE(dialog.height(), height);
        });
    }

    // --- the keyboard

    void tabGoesFromOKToTheCheckBoxes() {
        Form on;
        on.join.Text = "A.X > 5";
        (void)on.edit([](TdlgLnkProp& dialog) {
            QVERIFY(QTest::qWaitForWindowActive(&dialog));
            QWidget* const order[] = {
                dialog.btnOK,         dialog.btnCancel,  dialog.cbConditions, dialog.btnLeftOuter,
                dialog.btnRightOuter, dialog.edJoinText, dialog.btnOK};
            for (QWidget* control : order) {
                QCOMPARE(dialog.focusWidget(), control);
                QTest::keyClick(control, Qt::Key_Tab);
            }
        });
    }

    void focusStartsAtOKEachTime() {
        Form on;
        (void)on.edit([](TdlgLnkProp& dialog) {
            dialog.btnRightOuter->setFocus();
            dialog.btnCancel->click();
        });
        (void)on.edit([](TdlgLnkProp& dialog) {
            QVERIFY(QTest::qWaitForWindowActive(&dialog));
            QCOMPARE(dialog.focusWidget(), dialog.btnOK);
        });
    }

    void keyboardAloneWillDo() {
        Form on;
        const bool changed = on.edit([](TdlgLnkProp& dialog) {
            QVERIFY(QTest::qWaitForWindowActive(&dialog));
            const auto press = [&](Qt::Key key) { QTest::keyClick(dialog.focusWidget(), key); };
            press(Qt::Key_Tab);
            press(Qt::Key_Tab);
            press(Qt::Key_Down);
            press(Qt::Key_Down);
            press(Qt::Key_Tab);
            press(Qt::Key_Tab);
            press(Qt::Key_Space);
            press(Qt::Key_Return);
            QVERIFY(!dialog.isVisible());
        });
        QVERIFY(changed);
        QCOMPARE(on.link->operatorText(), "<");
        QCOMPARE(on.join.KindOfJoin, klROuterJoin);
    }

    void enterAcceptsFromEverywhereButCancel_data() {
        QTest::addColumn<int>("tabs");
        QTest::addColumn<int>("result");
        QTest::newRow("OK") << 0 << int(QDialog::Accepted);
        QTest::newRow("Cancel") << 1 << int(QDialog::Rejected);
        QTest::newRow("operator") << 2 << int(QDialog::Accepted);
        QTest::newRow("left") << 3 << int(QDialog::Accepted);
        QTest::newRow("right") << 4 << int(QDialog::Accepted);
        QTest::newRow("text") << 5 << int(QDialog::Accepted);
    }
    void enterAcceptsFromEverywhereButCancel() {
        QFETCH(int, tabs);
        QFETCH(int, result);
        Form on;
        on.join.Text = "A.X > 5";
        (void)on.edit([&](TdlgLnkProp& dialog) {
            QVERIFY(QTest::qWaitForWindowActive(&dialog));
            dialog.setResult(-1);
            for (int tab = 0; tab < tabs; ++tab) QTest::keyClick(dialog.focusWidget(), Qt::Key_Tab);
            QTest::keyClick(dialog.focusWidget(), Qt::Key_Return);
            QVERIFY(!dialog.isVisible());
        });
        QCOMPARE(on.dialog->result(), result);
    }

    void windowHasATitleAndAWayOutButNoSizeButtons() {
        Form on;
        const Qt::WindowFlags flags = on.dialog->windowFlags();
        QVERIFY(flags.testFlag(Qt::WindowTitleHint));
        QVERIFY(flags.testFlag(Qt::WindowCloseButtonHint));
        QVERIFY(!flags.testFlag(Qt::WindowMinimizeButtonHint));
        QVERIFY(!flags.testFlag(Qt::WindowMaximizeButtonHint));
        QVERIFY(!flags.testFlag(Qt::WindowContextHelpButtonHint));
    }

private:
    static void kinds() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("left");
        QTest::addColumn<bool>("right");
        QTest::newRow("inner") << int(klInnerJoin) << false << false;
        QTest::newRow("left") << int(klLOuterJoin) << true << false;
        QTest::newRow("right") << int(klROuterJoin) << false << true;
        QTest::newRow("full") << int(klFOuterJoin) << true << true;
    }
};

QTEST_MAIN(LnkPropTest)
#include "tst_lnkprop.moc"
