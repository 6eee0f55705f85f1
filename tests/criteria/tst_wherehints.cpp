// SPDX-License-Identifier: MIT
// The tool tips of condition rows.
#include "criteria/ORVQDWherePanel.h"
#include "support/BuilderTools.h"

#include <QHelpEvent>
#include <QTextDocumentFragment>
#include <QToolTip>

using orvtest::HostedBuilder;

namespace {

/// A shown builder with conditions. A tip is what the panel shows for a place, without markup.
class Hinted : public HostedBuilder {
public:
    explicit Hinted(const QString& condition) : HostedBuilder(true) {
        builder.resize(800, 700);
        builder.LoadSQL("select t.a from t where " + condition);
        builder.show();
        QCoreApplication::processEvents();
    }
    ~Hinted() { forget(); }
    Hinted(const Hinted&) = delete;
    Hinted& operator=(const Hinted&) = delete;

    [[nodiscard]] TorvQDWherePanel& panel() const { return *builder.WherePanel; }
    [[nodiscard]] TorvQDWhereRow* row(int index) const {
        return panel().shownRows()[std::size_t(index)];
    }
    [[nodiscard]] QString shownAt(const QPoint& point) const {
        QWidget* view = panel().viewport();
        forget();
        QHelpEvent event(QEvent::ToolTip, point, view->mapToGlobal(point));
        QCoreApplication::sendEvent(view, &event);
        return QToolTip::text();
    }
    /// A tip that is hidden stays for a while; it goes at once when a window is deactivated.
    void forget() const {
        QEvent leaves(QEvent::WindowDeactivate);
        QCoreApplication::sendEvent(panel().viewport(), &leaves);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    [[nodiscard]] QString tipAt(const QPoint& point) const {
        return QTextDocumentFragment::fromHtml(shownAt(point)).toPlainText();
    }
    [[nodiscard]] QPoint placeOf(int index, int kind) const {
        return panel().elementRect(*row(index)->Controls[std::size_t(kind)]).center();
    }
    [[nodiscard]] QString tip(int index, int kind) const { return tipAt(placeOf(index, kind)); }
    /// In front of the row's button, where the sign of a problem is.
    [[nodiscard]] QString tipOfMark(int index) const {
        return tipAt({5, placeOf(index, ekButton).y()});
    }
};

}  // namespace

class WhereHintsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void textsThatAreShownWholeHaveNone() {
        const Hinted on("t.a = 1 and t.b between 1 and 2");
        for (const int kind : {int(ekButton), int(ekFieldName), int(ekOperator), int(ekArgument)}) {
            QCOMPARE(on.tip(1, kind), QString());
            QCOMPARE(on.tip(2, kind), QString());
        }
        QCOMPARE(on.tipOfMark(1), QString());
        QCOMPARE(on.tipAt({50, 200}), QString());
    }

    void textThatIsCutIsShownInFull() {
        const QString field = "T.A || " + QString(40, u'F');
        const QString argument = u'\'' + QString(25, u'x') + "    y <b>&amp;" + u'\'';
        const Hinted on("t.a = 1 and " + field + " = " + argument);
        QCOMPARE(on.row(2)->Controls[ekFieldName]->GetText().size(), 33);
        QCOMPARE(on.tip(2, ekFieldName), field);
        QCOMPARE(on.tip(2, ekOperator), QString());
        const QString tip = on.tip(2, ekArgument);
        QCOMPARE(QString(tip).replace(QChar::Nbsp, u' '), argument);
        // As long as what is shown at the most.
        on.row(1)->FieldName = u'\'' + QString(28, u'G') + u'\'';
        on.row(1)->Changed(false);
        QCOMPARE(on.tip(1, ekFieldName), QString());
    }

    void endlessTextIsCutInTheTipToo() {
        const Hinted on("t.a = 1");
        on.row(1)->FieldName = QString(50'000, u'F');
        const QString tip = on.tip(1, ekFieldName);
        QVERIFY(tip.size() > 1000 && tip.size() < 5000);
        QVERIFY(tip.contains("F...\n"));
        QVERIFY(
            tip.endsWith("F...: No table on the diagram has this field. A text stands in quotes: "
                         "'abc'."));
    }

    void lineBreaksOfATextAreShown() {
        const Hinted on("t.a = 1");
        on.row(1)->Arguments[0] = "'x\r\ny'";
        QCOMPARE(on.tip(1, ekArgument), "'x\ny'");
    }

    void longCaptionOfAnOperatorIsShownInFull() {
        Hinted on("t.a = 1");
        TorvQDOperator entry;
        entry.Name = "SOUNDS LIKE";
        entry.Caption = "sounds like, in the language of the server";
        on.builder.Operators->Add(entry);
        on.row(1)->setOperator(on.builder.Operators->FindName("SOUNDS LIKE"));
        QCOMPARE(on.tip(1, ekOperator), entry.Caption);
    }

    void groupTellsItsSql() {
        const Hinted on("not (t.a = 1 and t.b = 2) and (t.c = 3 or t.d < 4)");
        // The words of a group say little about what it asks for.
        QCOMPARE(on.tip(1, ekGroupOper), "not((T.A = 1) and (T.B = 2))");
        QCOMPARE(on.tip(4, ekGroupOper), "((T.C = 3) or (T.D < 4))");
        const QRect text = on.panel().elementRect(*on.row(4)->Controls[ekGroupOper]);
        QCOMPARE(on.tipAt({text.right() + 20, text.center().y()}), "((T.C = 3) or (T.D < 4))");
        QCOMPARE(on.tip(4, ekButton), QString());
        on.row(4)->SetExpanded(false);
        QCOMPARE(on.tip(4, ekGroupOper), "((T.C = 3) or (T.D < 4))");
        QVERIFY(on.tip(0, ekGroupOper).startsWith("(not((T.A = 1) and (T.B = 2)) and "));
    }

    void endlessConditionIsCutInTheTip() {
        const Hinted on(QString("t.a = 1") + QString(" or t.b = 2").repeated(500));
        const QString tip = on.tip(0, ekGroupOper);
        QVERIFY(tip.size() > 1000 && tip.size() < 5000);
        QVERIFY(tip.endsWith("..."));
    }

    void problemIsToldAtItsMarkAndInTheRow() {
        const Hinted on("t.a = 1 and x.y = 2 and t.c = 3");
        on.row(1)->Arguments[0] = orv::blankText();
        on.panel().rootRow()->SubRows->AddRow()->SetGroupOper("Any");
        const QString unfilled = "This condition is not filled in.";
        QCOMPARE(on.tipOfMark(1), unfilled);
        QCOMPARE(on.tip(1, ekButton), unfilled);
        QCOMPARE(on.tip(1, ekFieldName), unfilled);
        QCOMPARE(on.tip(1, ekOperator), unfilled);
        QVERIFY(on.tip(1, ekArgument).startsWith("A value belongs here"));
        QCOMPARE(on.tipOfMark(2), on.panel().rowProblem(*on.row(2)));
        QVERIFY(!on.tipOfMark(2).isEmpty());
        QCOMPARE(on.tipOfMark(3), QString());
        QCOMPARE(on.tipOfMark(4), "This group has no conditions.");
        QCOMPARE(on.tip(4, ekGroupOper), "This group has no conditions.");
    }

    void gapsTellWhatBelongsThere() {
        const Hinted on("t.a = 1 and t.b = 2");
        on.row(1)->FieldName = orv::blankText();
        on.row(2)->Operator = {};
        on.panel().refreshView();
        QCOMPARE(on.tip(1, ekFieldName), "A field or an expression belongs here.");
        QCOMPARE(on.tip(2, ekOperator), "A click chooses an operator.");
    }

    void typesThatDoNotGoTogetherAreTold() {
        const Hinted on("t.a = 1");
        QCOMPARE(on.tip(1, ekOperator), QString());
        on.row(1)->Valid = false;
        QCOMPARE(on.tip(1, ekOperator), "The types of the two sides do not go together.");
    }

    void markupIsNoMarkup() {
        const QString text = "'<b>bold</b> &lt; " + QString(30, u'x') + u'\'';
        const Hinted on("t.a = " + text);
        QCOMPARE(on.tip(1, ekArgument), text);
        QVERIFY(on.shownAt(on.placeOf(1, ekArgument)).contains("&lt;b&gt;"));
        QCOMPARE(on.tip(0, ekGroupOper), "((T.A = " + text + "))");
    }

    void scrolledRowsHaveTheirOwnTips() {
        QStringList conditions;
        for (int index = 10; index < 60; ++index) {
            conditions << QString("t.a = '%1%2'").arg(index).arg(QString(60, u'x'));
        }
        const Hinted on(conditions.join(" and "));
        on.builder.WherePanel->setFixedSize(120, 100);
        QCoreApplication::processEvents();
        on.panel().verticalScrollBar()->setValue(333);
        on.panel().horizontalScrollBar()->setValue(41);
        QCOMPARE(on.panel().verticalScrollBar()->value(), 333);
        QCOMPARE(on.panel().horizontalScrollBar()->value(), 41);
        int seen = 0;
        for (int index = 1; index <= 50; ++index) {
            const QRect rect = on.panel().elementRect(*on.row(index)->Controls[ekArgument]);
            const QRect inView = rect & on.panel().viewport()->rect();
            if (inView.isEmpty()) continue;
            ++seen;
            QCOMPARE(on.tipAt(inView.center()), on.row(index)->Arguments[0]);
        }
        QVERIFY(seen >= 3);
        // In front of the rows: what stood there has scrolled out.
        on.row(20)->FieldName = orv::blankText();
        on.panel().horizontalScrollBar()->setValue(0);
        QCOMPARE(on.tipOfMark(20), "This condition is not filled in.");
        QCOMPARE(on.tipOfMark(19), QString());
    }

    void problemStandsBelowTheTextThatIsCut() {
        const Hinted on("t.a = 1");
        on.row(1)->FieldName = "X.Y || " + QString(40, u'F');
        on.panel().refreshView();
        const QString tip = on.tip(1, ekFieldName);
        QVERIFY2(tip.startsWith(on.row(1)->FieldName + u'\n'), qPrintable(tip));
        QVERIFY2(tip.endsWith(on.panel().rowProblem(*on.row(1))), qPrintable(tip));
    }
};

QTEST_MAIN(WhereHintsTest)
#include "tst_wherehints.moc"
