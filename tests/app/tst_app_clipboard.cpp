// SPDX-License-Identifier: MIT
#include "WindowDesk.h"
#include "criteria/ORVQDWherePanel.h"

#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QLineEdit>
#include <QMimeData>
#include <QTabWidget>

#include <random>

using namespace orvquery;

namespace {

using Content = std::function<QMimeData*()>;

QByteArray noise(int size) {
    std::minstd_rand random(7);
    QByteArray bytes;
    for (int index = 0; index < size; ++index) bytes += char(random());
    return bytes;
}

QMimeData* as(const QString& type, const QByteArray& bytes) {
    auto* data = new QMimeData;
    data->setData(type, bytes);
    return data;
}

}  // namespace

// A clipboard full of something else, put in wherever something can be put in.
class TestClipboard : public QObject, private apptest::WindowDesk {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { setUp(); }
    void init() { begin(); }
    void cleanup() {
        end();
        QGuiApplication::clipboard()->clear();
    }

    void somethingElseChangesNothing_data();
    void somethingElseChangesNothing();

private:
    [[nodiscard]] QList<QWidget*> places() const;
};

void TestClipboard::somethingElseChangesNothing_data() {
    QTest::addColumn<Content>("content");
    const QString conditions = QStringLiteral("application/x-orv-conditions+json");
    const auto row = [](const char* name, const Content& content) {
        QTest::newRow(name) << content;
    };
    row("picture", [] {
        auto* data = new QMimeData;
        QImage image(400, 300, QImage::Format_RGB32);
        image.fill(Qt::red);
        data->setImageData(image);
        return data;
    });
    row("bytes", [] { return as(QStringLiteral("application/octet-stream"), noise(1000000)); });
    row("blanks", [] { return as(QStringLiteral("text/plain"), QByteArray(5000, ' ')); });
    row("conditions of noise", [=] { return as(conditions, noise(1000)); });
    row("conditions cut short", [=] { return as(conditions, R"({"group":"All","rows":[{)"); });
    row("conditions of another kind", [=] { return as(conditions, R"(["All", 5, null, {}])"); });
    row("conditions of no operator", [=] {
        return as(conditions, R"({"group":"All","rows":[{"field":"ID","operator":"none such"}]})");
    });
    row("conditions in conditions", [=] {
        QByteArray deep;
        for (int level = 0; level < 20000; ++level) deep += R"({"group":"All","rows":[)";
        return as(conditions, deep);
    });
}

// Everything in the window that takes the focus, on all pages.
QList<QWidget*> TestClipboard::places() const {
    QList<QWidget*> found;
    for (QWidget* widget : m_window->findChildren<QWidget*>()) {
        if (widget->focusPolicy() & Qt::TabFocus) found += widget;
    }
    return found;
}

void TestClipboard::somethingElseChangesNothing() {
    QFETCH(Content, content);
    load("select o.id, o.city from orders o where o.total > 2 order by o.id");
    const QString before = text();
    int visited = 0;
    QTabWidget& pages = *builder().PageCtrl;
    for (int page = 0; page < pages.count(); ++page) {
        pages.setCurrentIndex(page);
        for (const QPointer<QWidget> place : places()) {
            if (!place || !place->isVisible() || !place->isEnabled()) continue;
            place->setFocus();
            if (!place->hasFocus()) continue;
            QGuiApplication::clipboard()->setMimeData(content());
            QTest::keyClick(place, Qt::Key_V, Qt::ControlModifier);
            ++visited;
            // Blanks in a filter, or in front of a statement, are texts like any other.
            if (auto* line = qobject_cast<QLineEdit*>(place)) line->undo();
            if (text() != before) editor().undo();
        }
    }
    QVERIFY(visited > 15);
    QCOMPARE(text(), before);
    QVERIFY(builder().GetSQLStatment().contains(QStringLiteral("O.TOTAL > 2")));
    // No more than a sentence for each page of conditions.
    for (const QString& message : std::as_const(m_messages)) QVERIFY(!message.isEmpty());
    QVERIFY(m_messages.size() <= pages.count());
    QVERIFY(runAndWait());
    QCOMPARE(cell(0, 0), QStringLiteral("1"));
}

QTEST_MAIN(TestClipboard)
#include "tst_app_clipboard.moc"
