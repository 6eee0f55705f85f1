// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "text/TextFile.h"
#include "text/TextPosition.h"

#include <QRegularExpression>
#include <QTemporaryDir>

using namespace orvquery;

class TestTextFile : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void content_data();
    void content();
    void invalidBytesNameTheirLine();
    void filesThatCannotBeRead();
    void position_data();
    void position();
};

void TestTextFile::content_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    QTest::newRow("empty") << QByteArray() << QString();
    QTest::newRow("plain") << QByteArray("a\nb") << QStringLiteral("a\nb");
    QTest::newRow("mark") << QByteArray(
                                 "\xef\xbb\xbf"
                                 "a")
                          << QStringLiteral("a");
    QTest::newRow("mark inside") << QByteArray("a\xef\xbb\xbf") << QStringLiteral("a\ufeff");
    QTest::newRow("line breaks") << QByteArray("a\r\nb\rc\n") << QStringLiteral("a\r\nb\rc\n");
    QTest::newRow("nul") << QByteArray("a\0b", 3) << QString::fromUtf16(u"a\0b", 3);
    QTest::newRow("long characters")
        << QByteArray("\xc3\xa4\xf0\x9f\x9a\xb2") << QString::fromUtf8("\xc3\xa4\xf0\x9f\x9a\xb2");
}

void TestTextFile::content() {
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("a.sql"));
    QVERIFY(apptest::writeFile(path, bytes));
    QCOMPARE(readTextFile(path), text);
}

void TestTextFile::invalidBytesNameTheirLine() {
    const auto error = [](const char* bytes) {
        return apptest::errorOf([&] { (void)decodeUtf8(bytes, QStringLiteral("It")); });
    };
    QCOMPARE(error("a\xff"), QStringLiteral("It is not valid UTF-8 text (line 1)."));
    QCOMPARE(error("\xc3\xa4\nb\n\xc3\nd"), QStringLiteral("It is not valid UTF-8 text (line 3)."));
    QCOMPARE(error("a\nb\xe2\x82"), QStringLiteral("It is not valid UTF-8 text (line 2)."));
    QCOMPARE(error("\xff\xfe"
                   "a"),
             QStringLiteral("It is not valid UTF-8 text (line 1)."));
}

void TestTextFile::filesThatCannotBeRead() {
    const QTemporaryDir folder;
    const QString missing = folder.filePath(QStringLiteral("none.sql"));
    QCOMPARE(apptest::errorOf([&] { (void)readTextFile(missing); }),
             QStringLiteral("The file \"%1\" cannot be read: it does not exist.").arg(missing));
    QCOMPARE(apptest::errorOf([&] { (void)readTextFile(folder.path()); }),
             QStringLiteral("The file \"%1\" cannot be read: it is a folder.").arg(folder.path()));
    QCOMPARE(apptest::errorOf([&] { (void)readTextFile(QString()); }),
             QStringLiteral("The name of the file is empty."));
}

void TestTextFile::position_data() {
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("line");
    QTest::addColumn<int>("column");
    QTest::newRow("start") << "" << 1 << 1;
    QTest::newRow("first line") << "abc" << 1 << 4;
    QTest::newRow("second line") << "abc\nd" << 2 << 2;
    QTest::newRow("carriage returns") << "a\r\nb\rc" << 3 << 2;
    QTest::newRow("empty lines") << "\n\n" << 3 << 1;
    QTest::newRow("long character") << QString::fromUtf8("\xf0\x9f\x9a\xb2") << 1 << 2;
}

void TestTextFile::position() {
    QFETCH(QString, before);
    QFETCH(int, line);
    QFETCH(int, column);
    QCOMPARE(textPosition(before), (TextPosition{line, column}));
}

QTEST_GUILESS_MAIN(TestTextFile)
#include "tst_app_textfile.moc"
