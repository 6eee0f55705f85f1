// SPDX-License-Identifier: MIT
// Fields that are dragged from the diagram to conditions.
#include "criteria/EditedPanel.h"
#include "data/DraggedField.h"

#include <QAbstractEventDispatcher>
#include <QDragEnterEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QTimerEvent>

using orvtest::EditedPanel;
using orvtest::RecordedServices;

namespace {

// A drag of a field over the conditions.
class Drag {
public:
    Drag(const EditedPanel& on, const QString& field, quint64 builder)
        : m_on(on), m_data(orv::toMimeData({builder, QStringLiteral("T"), field})) {}
    Drag(const EditedPanel& on, const QString& field)
        : Drag(on, field, on.builder->dragIdentity()) {}
    ~Drag() {
        if (m_isOver) leave();
    }
    Drag(const Drag&) = delete;
    Drag& operator=(const Drag&) = delete;

    template <typename Event>
    bool send(const QPoint& point) {
        Event event(point, Qt::CopyAction, m_data.get(), Qt::LeftButton, Qt::NoModifier);
        event.ignore();
        QCoreApplication::sendEvent(m_on.view(), &event);
        return event.isAccepted();
    }
    bool enter(const QPoint& point) {
        m_isOver = send<QDragEnterEvent>(point);
        return m_isOver;
    }
    bool move(const QPoint& point) {
        if (!m_isOver) enter(point);
        return send<QDragMoveEvent>(point);
    }
    bool drop(const QPoint& point) {
        if (!m_isOver) enter(point);
        m_isOver = false;
        return send<QDropEvent>(point);
    }
    void leave() {
        m_isOver = false;
        QDragLeaveEvent event;
        QCoreApplication::sendEvent(m_on.view(), &event);
    }

private:
    const EditedPanel& m_on;
    std::unique_ptr<QMimeData> m_data;
    bool m_isOver = false;
};

QImage picture(const EditedPanel& on) {
    return on.view()->grab().toImage();
}

}  // namespace

class WhereDropsTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { orvtest::failOnAnyWarning(); }

    void dropStoresTheField_data() {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("condition");
        QTest::newRow("field") << int(ekFieldName) << "((T.J BETWEEN 1 and 9))";
        QTest::newRow("first argument") << int(ekArgument) << "((T.I BETWEEN T.J and 9))";
        QTest::newRow("second argument") << int(ekArgument) + 1 << "((T.I BETWEEN 1 and T.J))";
    }
    void dropStoresTheField() {
        QFETCH(int, kind);
        QFETCH(QString, condition);
        const RecordedServices services;
        EditedPanel on("T.I BETWEEN 1 AND 9");
        QVERIFY(on.isActive());
        on.other->setFocus();
        Drag drag(on, "J");
        const QPoint point = on.rectOf(0, kind).center();
        QVERIFY(drag.enter(point));
        QVERIFY(drag.move(point));
        QVERIFY(drag.drop(point));
        QCOMPARE(on.changes, 0);  // the drag is still going on
        QCoreApplication::processEvents();
        QCOMPARE(on.condition(), condition);
        QCOMPARE(on.changes, 1);
        QVERIFY(on.panel()->hasFocus());
        QVERIFY(services.messages.isEmpty());
        verifyBuilder(*on.builder);
    }

    void onlyFieldsAndArgumentsTakeIt() {
        EditedPanel on;
        Drag drag(on, "J");
        QVERIFY(drag.enter(on.rectOf(0, ekButton).center()));
        const QRect root = on.panel()->elementRect(*on.panel()->rootRow()->Controls[ekGroupOper]);
        for (const QPoint& point :
             {on.rectOf(0, ekButton).center(), root.center(), on.rectOf(0, ekOperator).center(),
              QPoint(on.view()->width() - 2, on.view()->height() - 2)}) {
            QVERIFY(!drag.move(point));
            QVERIFY(!drag.drop(point));
        }
        QVERIFY(drag.move(on.rectOf(0, ekFieldName).center()));
        QVERIFY(drag.move(on.rectOf(1, ekArgument).center()));
        QCoreApplication::processEvents();
        QCOMPARE(on.changes, 0);
    }

    void fieldsOfOtherBuildersAreRefused() {
        EditedPanel on;
        const EditedPanel other;
        const QPoint point = on.rectOf(0, ekFieldName).center();
        Drag foreign(on, "J", other.builder->dragIdentity());
        QVERIFY(!foreign.enter(point));
        const auto data = orv::toMimeData({other.builder->dragIdentity(), "T", "J"});
        QVERIFY(!on.panel()->_DragOver(data.get(), point));
        on.panel()->_DragDrop(data.get(), point);
        QMimeData text;
        text.setText("T.J");
        QVERIFY(!on.panel()->_DragOver(&text, point));
        on.panel()->_DragDrop(&text, point);
        QCoreApplication::processEvents();
        QCOMPARE(on.condition(), "((T.I = 1) and (T.C = 'x'))");
    }

    void typesAreCheckedAsAfterTyping() {
        const RecordedServices services;
        EditedPanel on;
        Drag drag(on, "C");
        QVERIFY(drag.drop(on.rectOf(0, ekArgument).center()));
        QCoreApplication::processEvents();
        QCOMPARE(on.row(0)->Arguments[0], "T.C");
        QVERIFY(!on.row(0)->Valid);
        QCoreApplication::processEvents();
        QCOMPARE(services.messages, QStringList("Type mismatch in expression"));
    }

    void sameFieldIsNoChange() {
        EditedPanel on;
        Drag drag(on, "I");
        QVERIFY(drag.drop(on.rectOf(0, ekFieldName).center()));
        QCoreApplication::processEvents();
        QCOMPARE(on.row(0)->FieldName, "T.I");
        QCOMPARE(on.changes, 0);
    }

    void whatIsBeingTypedIsTakenOverFirst() {
        EditedPanel on;
        on.type("7");
        Drag drag(on, "J");
        QVERIFY(drag.drop(on.rectOf(1, ekArgument).center()));
        QVERIFY(on.panel()->isEditing());
        QCoreApplication::processEvents();
        QVERIFY(!on.panel()->isEditing());
        QCOMPARE(on.row(0)->Arguments[0], "7");
        QCOMPARE(on.row(1)->Arguments[0], "T.J");
    }

    void droppedFieldWinsOverWhatIsBeingTypedThere() {
        EditedPanel on;
        on.type("7");
        const QPoint inside = on.rectOf(0, ekArgument).center();
        Drag drag(on, "J");
        QVERIFY(drag.drop(inside));
        QCoreApplication::processEvents();
        QCOMPARE(on.row(0)->Arguments[0], "T.J");
        QVERIFY(!on.panel()->isEditing());
    }

    void elementThatGoesBeforeTheDropIsOverTakesNothing() {
        EditedPanel on;
        Drag drag(on, "J");
        QVERIFY(drag.drop(on.rectOf(0, ekArgument).center()));
        on.panel()->rootRow()->SubRows->Delete(0);
        QCoreApplication::processEvents();
        QCOMPARE(on.condition(), "((T.C = 'x'))");
        QCOMPARE(on.changes, 0);
    }

    void fieldWhoseBoxGoesBeforeTheDropIsOverIsNotTaken() {
        EditedPanel on;
        Drag drag(on, "J");
        QVERIFY(drag.drop(on.rectOf(0, ekArgument).center()));
        on.builder->ListOfTables->DeleteTable(0);
        on.changes = 0;
        QCoreApplication::processEvents();
        QCOMPARE(on.row(0)->Arguments[0], "1");
        QCOMPARE(on.changes, 0);
    }

    void builderMayDieBeforeTheDropIsOver() {
        EditedPanel on;
        Drag drag(on, "J");
        QVERIFY(drag.drop(on.rectOf(0, ekArgument).center()));
        delete on.builder;
        QCoreApplication::processEvents();
        QCOMPARE(on.changes, 0);
    }

    void hostMayDestroyTheBuilderOverADrop() {
        for (const bool isTyping : {false, true}) {
            EditedPanel on;
            connect(on.builder, &TorvQueryBuilder::StatementChanged, on.form.get(),
                    [&] { delete on.builder; });
            if (isTyping) on.type("7", 1);
            Drag drag(on, "J");
            QVERIFY(drag.drop(on.rectOf(0, ekArgument).center()));
            QCoreApplication::processEvents();
            QVERIFY(!on.builder);
        }
    }

    void elementUnderTheDragIsMarked() {
        const EditedPanel on;
        const QImage before = picture(on);
        Drag drag(on, "J");
        const QRect rect = on.rectOf(0, ekArgument);
        QVERIFY(drag.move(rect.center()));
        const QImage marked = picture(on);
        QVERIFY(marked.pixelColor(rect.topLeft()) != before.pixelColor(rect.topLeft()));
        QCOMPARE(marked.pixelColor(rect.topLeft() - QPoint(3, 0)),
                 before.pixelColor(rect.topLeft() - QPoint(3, 0)));
        QVERIFY(!drag.move(on.rectOf(0, ekOperator).center()));
        QCOMPARE(picture(on), before);
        QVERIFY(drag.move(rect.center()));
        drag.leave();
        QCOMPARE(picture(on), before);
    }

    void viewScrollsWhileTheDragRestsAtItsEdge() {
        QStringList conditions;
        for (int number = 0; number < 60; ++number) {
            conditions << "T.I = " + QString::number(number);
        }
        const EditedPanel on(conditions.join(" AND "));
        const QScrollBar& bar = *on.panel()->verticalScrollBar();
        // The timers of the panel that run while the drag rests there, fired once each.
        const auto rest = [&](const QPoint& point) {
            Drag drag(on, "J");
            drag.move(point);
            const int before = bar.value();
            const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(on.panel());
            for (const QAbstractEventDispatcher::TimerInfo& timer : timers) {
                QTimerEvent event(timer.timerId);
                QCoreApplication::sendEvent(on.panel(), &event);
            }
            return bar.value() != before;
        };
        // The band along the edge is 12 pixels wide.
        QVERIFY(!rest(on.view()->rect().center()));
        QVERIFY(!rest(QPoint(100, on.view()->height() - 13)));
        QVERIFY(rest(QPoint(100, on.view()->height() - 12)));
        const int down = bar.value();
        QVERIFY(down > 0);
        QVERIFY(!rest(QPoint(100, 12)));
        QVERIFY(rest(QPoint(100, 11)));
        QVERIFY(bar.value() < down);
        QVERIFY(QAbstractEventDispatcher::instance()->registeredTimers(on.panel()).isEmpty());
    }
};

QTEST_MAIN(WhereDropsTest)
#include "tst_wheredrops.moc"
