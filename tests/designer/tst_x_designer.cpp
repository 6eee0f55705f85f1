// SPDX-License-Identifier: MIT
// Qt Designer itself with the plugin: a person opens a form, edits it and saves it.
#include "designer/FormFile.h"

#include <QFile>
#include <QProcess>
#include <QRect>
#include <QStringList>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

namespace {

constexpr int mostMs = 20000;

/// What a command writes; empty when it fails.
QString outputOf(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    const bool isDone = process.waitForFinished(mostMs) && process.exitCode() == 0;
    return isDone ? QString::fromUtf8(process.readAllStandardOutput()).trimmed() : QString();
}

QString xdotool(const QStringList& arguments) {
    return outputOf(QStringLiteral("xdotool"), arguments);
}

/// The window with such a title; empty when there is none.
QString window(const QString& title) {
    const QString found = xdotool({"search", "--onlyvisible", "--name", title});
    return found.section(u'\n', 0, 0);
}

QRect placeOf(const QString& window) {
    QRect place;
    const QString shell = xdotool({"getwindowgeometry", "--shell", window});
    for (const QString& line : shell.split(u'\n')) {
        const int value = line.section(u'=', 1).toInt();
        if (line.startsWith(QLatin1String("X="))) place.moveLeft(value);
        if (line.startsWith(QLatin1String("Y="))) place.moveTop(value);
        if (line.startsWith(QLatin1String("WIDTH="))) place.setWidth(value);
        if (line.startsWith(QLatin1String("HEIGHT="))) place.setHeight(value);
    }
    return place;
}

/// Acts again and again until it has had its effect: a program that is just starting hears
/// nothing yet. The action must do no harm when it comes once more.
bool actUntil(const std::function<void()>& act, const std::function<bool()>& isDone,
              int tryMs = 500) {
    for (int tries = 0; tries < mostMs / tryMs; ++tries) {
        act();
        if (QTest::qWaitFor(isDone, tryMs)) return true;
    }
    return false;
}

}  // namespace

class TestXDesigner : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        m_scratch = std::make_unique<QTemporaryDir>();
        QVERIFY(m_scratch->isValid());
        m_file = m_scratch->filePath(QStringLiteral("form.ui"));
        // Where the control is to be is the layout's business here.
        QString form = read(QStringLiteral(ORV_FORM));
        const qsizetype align = form.indexOf(QLatin1String("   <property name=\"Align\">"));
        const auto end = QStringLiteral("</property>\n");
        form.remove(align, form.indexOf(end, align) + end.size() - align);
        QFile file(m_file);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(form.toUtf8());
        file.close();

        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("HOME"), m_scratch->path());
        environment.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral(ORV_PLUGIN_PATH));
        m_designer.setProcessEnvironment(environment);
        m_designer.setProcessChannelMode(QProcess::MergedChannels);
        m_designer.start(QStringLiteral(ORV_DESIGNER), {m_file});
        QVERIFY(m_designer.waitForStarted(mostMs));
    }
    void cleanup() {
        m_designer.kill();
        m_designer.waitForFinished(mostMs);
        m_scratch.reset();
    }

    void personEditsAFormWithTheControl();

private:
    [[nodiscard]] static QString read(const QString& name) {
        QFile file(name);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    [[nodiscard]] QString saved() const { return read(m_file); }
    [[nodiscard]] QMap<QString, QString> properties() const {
        auto properties = orvtest::writtenProperties(saved(), QStringLiteral("TorvQueryBuilder"));
        properties.remove(QStringLiteral("geometry"));
        return properties;
    }
    [[nodiscard]] qsizetype operatorTexts() const {
        return properties()
            .value(QStringLiteral("OperatorsList"))
            .count(QLatin1String("</string>"));
    }

    std::unique_ptr<QTemporaryDir> m_scratch;
    QString m_file;
    QProcess m_designer;
};

void TestXDesigner::personEditsAFormWithTheControl() {
    const QMap<QString, QString> before = properties();
    QCOMPARE(before.size(), 16);
    QCOMPARE(operatorTexts(), 12);
    const auto title = QStringLiteral("^Qt Designer$");
    QVERIFY(QTest::qWaitFor([&] { return !window(title).isEmpty(); }, mostMs));
    const QRect place = placeOf(window(title));

    // Laid out and saved, the form still has all that it had. Without the plugin the control would
    // be an unknown one, and lose those of its own types.
    QVERIFY(actUntil(
        [] {
            xdotool({"key", "ctrl+1", "key", "ctrl+s"});
        },
        [&] { return saved().contains(QLatin1String("<layout")); }));
    QCOMPARE(properties(), before);

    // The form is in the middle of the window; a double click on the control opens the editor.
    const auto editor = QStringLiteral("^Operator properties - queryBuilder\\.Operators");
    const int x = place.x() + place.width() * 2 / 5;
    const int y = place.y() + place.height() / 4;
    QVERIFY(actUntil(
        [&] {
            xdotool({"mousemove", QString::number(x), QString::number(y), "click", "--repeat", "2",
                     "--delay", "20", "1"});
        },
        [&] { return !window(editor).isEmpty(); }, 5000));
    const QString dialog = window(editor);
    QVERIFY(QTest::qWaitFor([&] { return xdotool({"getactivewindow"}) == dialog; }, mostMs));
    // From the list to "Add operator", which is pressed, and then OK.
    xdotool({"key", "Tab", "key", "space", "key", "Return"});
    QVERIFY(QTest::qWaitFor([&] { return window(editor).isEmpty(); }, mostMs));
    const auto save = [] { xdotool({"key", "ctrl+s"}); };
    QVERIFY(actUntil(save, [&] { return operatorTexts() == 18; }));

    // It can be undone.
    xdotool({"key", "ctrl+z"});
    QVERIFY(actUntil(save, [&] { return operatorTexts() == 12; }));
    QCOMPARE(properties(), before);
    QCOMPARE(m_designer.state(), QProcess::Running);
    QCOMPARE(QString::fromUtf8(m_designer.readAll()), QString());
}

QTEST_GUILESS_MAIN(TestXDesigner)
#include "tst_x_designer.moc"
