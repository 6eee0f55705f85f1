// SPDX-License-Identifier: MIT
// What is muted in the whole of a query: states, steps, findings and looks.
#include "criteria/ORVQDWherePanel.h"
#include "querybuilder/ORVQDUndo.h"
#include "querybuilder/ORVQDValidate.h"
#include "support/ShownBuilder.h"

#include <QClipboard>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QTreeWidget>
#include <QUndoStack>

using orvtest::errorOf;
using orvtest::HostedBuilder;
using orvtest::ShownBuilder;

class MutedQueryTest : public QObject {
    Q_OBJECT

private:
    static TorvQDWhereRow& row(const HostedBuilder& on, const QList<int>& path) {
        TorvQDWhereRow* row = on.builder.WherePanel->rootRow();
        for (const int index : path) row = row->SubRows->Row(index);
        return *row;
    }
    static bool boxAt(const ShownBuilder& on, const QPoint& viewPoint) {
        for (const char* alias : {"T", "U"}) {
            const TorvQDTable* box = on.table(alias);
            if (box->toView(box->GetBoundsRect()).toQRect().contains(viewPoint)) return true;
        }
        return false;
    }
    static QStringList whats(HostedBuilder& on) {
        QStringList texts;
        for (const orv::Finding& finding : on.builder.Validate()) {
            texts << finding.text.simplified() + ": " + finding.what;
        }
        return texts;
    }

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void stateKeepsWhatIsMuted() {
        HostedBuilder on(true);
        on.builder.LoadSQL(
            "select T.A, T.B from T join U on T.A = U.A where T.B = 1 and (T.C = 2 or T.D = 3)");
        const QByteArray plain = on.builder.SaveState();
        QVERIFY(!plain.contains("uted"));
        row(on, {0}).SetMuted(true);
        row(on, {1, 1}).SetMuted(true);
        on.builder.WorkArea->muteLink(on.builder.WorkArea->Links()[0], true);
        on.grid()->SetMuted(1, true);
        const QByteArray state = on.builder.SaveState();
        HostedBuilder other(true);
        other.builder.RestoreState(state);
        QCOMPARE(other.builder.SaveState(), state);
        QVERIFY(row(other, {0}).Muted && row(other, {1, 1}).Muted && !row(other, {1}).Muted);
        QVERIFY(other.builder.WorkArea->Links()[0]->Muted);
        QCOMPARE(other.builder.GetSQLStatment(), on.builder.GetSQLStatment());
    }

    void stateThatContradictsItselfIsRefused() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select A from T where A = 1");
        const QByteArray state = on.builder.SaveState();
        QJsonObject json = QJsonDocument::fromJson(state).object();
        json["mutedColumns"] = QJsonArray{2};
        QVERIFY(errorOf([&] {
                    on.builder.RestoreState(QJsonDocument(json).toJson());
                }).contains("names no output column"));
        json = QJsonDocument::fromJson(state).object();
        QJsonObject where = json["where"].toObject();
        where["muted"] = true;
        json["where"] = where;
        QVERIFY(errorOf([&] {
                    on.builder.RestoreState(QJsonDocument(json).toJson());
                }).contains("cannot be muted as a whole"));
        QCOMPARE(on.builder.SaveState(), state);
    }

    void validateReadsOutWhatIsMuted() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select T.A, T.B as X from T join U on T.A = U.A where T.B = 1");
        QVERIFY(on.builder.Validate().empty());
        row(on, {0}).SetMuted(true);
        on.grid()->SetMuted(2, true);
        on.builder.WorkArea->muteLink(on.builder.WorkArea->Links()[0], true);
        QCOMPARE(whats(on),
                 QStringList({"U: Nothing links this with the other tables: each of its rows is "
                              "combined with each of theirs.",
                              "T.A = U.A: This link is muted: the statement does not have it.",
                              "T.B AS X: This column is muted: the statement does not have it.",
                              "1. (T.B = 1): This condition is muted: the statement does not "
                              "have it."}));
    }

    void mutedPartsAreGivenOnceEach() {
        HostedBuilder on(true);
        on.builder.LoadSQL(
            "select T.A, T.B as X from T join U on T.A = U.A where T.B = 1 and (T.A = 2 or T.A = "
            "3) and T.A = 4");
        QCOMPARE(orv::mutedParts(on.builder), QStringList());
        on.builder.WorkArea->muteLink(on.builder.WorkArea->Links()[0], true);
        on.grid()->SetMuted(2, true);
        row(on, {0}).SetMuted(true);
        row(on, {1, 0}).SetMuted(true);
        row(on, {1}).SetMuted(true);
        QStringList parts = orv::mutedParts(on.builder);
        for (QString& part : parts) part = part.simplified();
        QCOMPARE(parts, QStringList({"T.A = U.A", "T.B AS X", "1. (T.B = 1)", "2. ((T.A = 3))"}));
    }

    void unfilledConditionIsNoMatterWhileMuted() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select A from T");
        TorvQDWhereRow* added = row(on, {}).SubRows->AddRow();
        QVERIFY(whats(on).join('\n').contains("not filled in"));
        added->SetMuted(true);
        QVERIFY(!whats(on).join('\n').contains("not filled in"));
        QCOMPARE(on.builder.GetSQLStatment(), QString("SELECT A\r\nFROM T"));
    }

    void textOfTheStatementLeavesItAlone() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select A from T where A = 1 and B = 2");
        row(on, {0}).SetMuted(true);
        on.builder.LoadSQL(on.builder.GetSQLStatment());
        QVERIFY(row(on, {0}).Muted);
        on.builder.LoadSQL("select A from T where B = 3");
        QVERIFY(!row(on, {0}).Muted);
    }

    // One step and one signal each, named after what happened.
    void mutingIsOneStep_data() {
        QTest::addColumn<QString>("what");
        for (const char* what : {"condition", "group", "link", "column"}) {
            QTest::newRow(what) << what;
        }
    }
    void mutingIsOneStep() {
        QFETCH(QString, what);
        ShownBuilder on(true);
        on.builder.LoadSQL(
            "select T.A, T.B from T left join U on T.A = U.A where T.B = 1 and (T.C = 2 or T.D = "
            "3)");
        TorvQDWherePanel& panel = *on.builder.WherePanel;
        QUndoStack stack;
        orv::UndoRecorder recorder(&on.builder, &stack);
        const auto mute = [&](bool isMuted) {
            if (what == "link") return on.area().muteLink(on.area().Links()[0], isMuted);
            if (what == "column") return on.grid()->SetMuted(1, isMuted);
            panel.setCurrentElement(row(on, {what == "group"}).Controls[0].get());
            panel.MuteCondition();
        };
        const QString named = what == "group" ? QString("condition") : what;
        const QString before = on.builder.GetSQLStatment();
        const QByteArray state = on.builder.SaveState();
        on.changes = 0;
        mute(true);
        QCOMPARE(on.changes, 1);
        QCOMPARE(stack.count(), 1);
        QCOMPARE(stack.undoText(), "muting a " + named);
        const QString muted = on.builder.GetSQLStatment();
        QVERIFY(muted != before);
        mute(false);
        QCOMPARE(on.changes, 2);
        QCOMPARE(stack.count(), 2);
        QCOMPARE(stack.undoText(), "unmuting a " + named);
        QCOMPARE(on.builder.GetSQLStatment(), before);
        QCOMPARE(on.builder.SaveState(), state);
        stack.undo();
        QCOMPARE(on.builder.GetSQLStatment(), muted);
        stack.undo();
        QCOMPARE(on.builder.GetSQLStatment(), before);
        stack.redo();
        QCOMPARE(on.builder.GetSQLStatment(), muted);
    }

    void mutedPartsFollowARenamedTable() {
        HostedBuilder on(true);
        on.builder.LoadSQL(
            "select T.A, T.B from T join U on T.A = U.A where T.B = 1 and U.X = T.C order by T.B");
        HostedBuilder plain(true);
        plain.builder.RestoreState(on.builder.SaveState());
        row(on, {0}).SetMuted(true);
        row(on, {1}).SetMuted(true);
        on.builder.WorkArea->muteLink(on.builder.WorkArea->Links()[0], true);
        on.grid()->SetMuted(2, true);
        for (HostedBuilder* each : {&on, &plain}) {
            each->builder.WorkArea->renameTable(each->table("T"), "N");
        }
        row(on, {0}).SetMuted(false);
        row(on, {1}).SetMuted(false);
        on.builder.WorkArea->muteLink(on.builder.WorkArea->Links()[0], false);
        on.grid()->SetMuted(2, false);
        QCOMPARE(on.builder.GetSQLStatment(), plain.builder.GetSQLStatment());
        QVERIFY(on.builder.GetSQLStatment().contains("N.B"));
    }

    // A state from before there was muting has no word of it.
    void stateWithoutMarksMutesNothing() {
        HostedBuilder on(true);
        on.builder.LoadSQL("select T.A, T.B from T join U on T.A = U.A where T.B = 1");
        const QByteArray state = on.builder.SaveState();
        const QString statement = on.builder.GetSQLStatment();
        row(on, {0}).SetMuted(true);
        on.builder.WorkArea->muteLink(on.builder.WorkArea->Links()[0], true);
        on.grid()->SetMuted(1, true);
        on.builder.RestoreState(state);
        QCOMPARE(on.builder.GetSQLStatment(), statement);
        QVERIFY(on.builder.Validate().empty());
    }

    // The mark goes with the line.
    void sortLinesOfMutedColumnsAreMarked() {
        ShownBuilder on(true);
        on.builder.LoadSQL("select A, B, C from T order by C, A desc");
        auto* list = on.builder.OrderPanel->findChild<QTreeWidget*>();
        const auto marked = [list] {
            QStringList names;
            for (int index = 0; index < list->topLevelItemCount(); ++index) {
                const QTreeWidgetItem* item = list->topLevelItem(index);
                if (item->font(0).strikeOut() && !item->toolTip(0).isEmpty())
                    names << item->text(0);
            }
            return names;
        };
        on.grid()->SetMuted(2, true);
        QCOMPARE(marked(), QStringList());
        on.grid()->SetMuted(3, true);
        QCOMPARE(marked(), QStringList("C"));
        list->setCurrentItem(list->topLevelItem(0));
        for (QPushButton* button : on.builder.OrderPanel->findChildren<QPushButton*>()) {
            if (button->text() == "Down") button->click();
        }
        QCOMPARE(list->topLevelItem(1)->text(0), QString("C"));
        QCOMPARE(marked(), QStringList("C"));
        on.grid()->SetMuted(3, false);
        QCOMPARE(marked(), QStringList());
    }

    // On any ground a muted link is nearer to it than another one.
    void mutedLinkIsFainter_data() {
        QTest::addColumn<QColor>("ground");
        QTest::addColumn<QColor>("color");
        QTest::newRow("light") << QColor(239, 239, 239) << QColor(Qt::black);
        QTest::newRow("dark") << QColor(53, 53, 53) << QColor(224, 224, 224);
    }
    void mutedLinkIsFainter() {
        QFETCH(QColor, ground);
        QFETCH(QColor, color);
        ShownBuilder on(true);
        on.drag(on.captionOf("U"), {150, 150});
        TorvQDLink* link = on.link("T", "B", "U", "X");
        QPalette palette = on.area().palette();
        palette.setColor(QPalette::Window, ground);
        on.area().setPalette(palette);
        on.area().setLinkColor(color);
        // Between the boxes alone: the pixel that stands out most.
        const auto strongest = [&] {
            const QImage image = on.area().viewport()->grab().toImage();
            int most = 0;
            for (const QPoint& point : {link->GetPoint(0), link->GetPoint(1)}) {
                for (int x = point.x() - 8; x <= point.x() + 8; ++x) {
                    if (boxAt(on, {x, point.y()})) continue;
                    const int value = QColor(image.pixel(x, point.y())).lightness();
                    most = std::max(most, std::abs(value - ground.lightness()));
                }
            }
            return most;
        };
        const int plain = strongest();
        on.area().muteLink(link, true);
        const int muted = strongest();
        QVERIFY2(plain > 100, qPrintable(QString::number(plain)));
        QVERIFY2(muted > 40 && muted < plain * 2 / 3, qPrintable(QString::number(muted)));
    }

    void looksAreNotThoseOfOthers() {
        ShownBuilder on(true);
        on.builder.LoadSQL("select T.A from T join U on T.A = U.A where T.B = 1");
        on.builder.PageCtrl->setCurrentWidget(on.builder.WherePanel->parentWidget());
        QCoreApplication::processEvents();
        const QImage before = on.builder.grab().toImage();
        on.builder.WherePanel->setCurrentElement(row(on, {0}).Controls[0].get());
        on.builder.WherePanel->MuteCondition();
        const QImage condition = on.builder.grab().toImage();
        QVERIFY(condition != before);
        on.area().muteLink(on.area().Links()[0], true);
        QVERIFY(on.builder.grab().toImage() != condition);
    }
};

QTEST_MAIN(MutedQueryTest)
#include "tst_mutedquery.moc"
