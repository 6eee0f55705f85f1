// SPDX-License-Identifier: MIT
#include "AppTestTools.h"
#include "text/CodeQuote.h"

using namespace orvquery;

namespace {

bool isOctal(QChar character) {
    return character >= u'0' && character <= u'7';
}

/// Reads an expression of string literals as a compiler does, and keeps what the program would
/// hold. What is between the literals must be blanks, and `joint` between two of them.
class CodeReader {
public:
    CodeReader(const QString& code, QStringView joint) : m_code(code), m_joint(joint) {}

    /// The text; a null one when the code is wrong.
    QString read() {
        QString text = QStringLiteral("");
        for (bool isFirst = true; m_at < m_code.size(); isFirst = false) {
            if (!isFirst && !skipJoint()) return {};
            if (!readLiteral(text)) return {};
        }
        return text;
    }

private:
    bool skipJoint() {
        const qsizetype quote = m_code.indexOf(u'"', m_at);
        if (quote < 0) return false;
        const QString between = m_code.mid(m_at, quote - m_at).simplified();
        m_at = quote;
        return between == m_joint;
    }

    bool readLiteral(QString& text) {
        if (m_code[m_at++] != u'"') return false;
        while (m_at < m_code.size() && m_code[m_at] != u'"') {
            if (m_code[m_at] == u'\n' || m_code[m_at] == u'\r') return false;
            m_code[m_at] == u'\\' ? readEscape(text) : void(text += m_code[m_at++]);
        }
        return m_at++ < m_code.size();
    }

    void readEscape(QString& text) {
        const QChar kind = m_code[++m_at];
        if (isOctal(kind)) {
            int value = 0;
            for (int count = 0; count < 3 && isOctal(m_code[m_at]); ++count, ++m_at) {
                value = 8 * value + m_code[m_at].digitValue();
            }
            text += QChar(value);
            return;
        }
        ++m_at;
        const int digits = kind == u'u' ? 4 : kind == u'U' ? 8 : 0;
        if (digits > 0) {
            const char32_t value = m_code.mid(m_at, digits).toUInt(nullptr, 16);
            m_at += digits;
            // Java writes a pair of surrogates as two.
            text +=
                value <= 0xffff ? QString(QChar(char16_t(value))) : QString::fromUcs4(&value, 1);
            return;
        }
        text += kind == u'n' ? u'\n' : kind == u'r' ? u'\r' : kind == u't' ? u'\t' : kind;
    }

    QString m_code;
    QStringView m_joint;
    qsizetype m_at = 0;
};

QString readBack(QString code, CodeLanguage language) {
    if (language == CodeLanguage::Python && code.startsWith(u'(')) {
        if (!code.endsWith(QStringLiteral("\n)"))) return {};
        code = code.mid(1, code.size() - 3).trimmed();
    }
    return CodeReader(code, language == CodeLanguage::Java ? u"+" : u"").read();
}

}  // namespace

// Statements as code of programs, and on one line.
class TestCodeQuote : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void codeIsReadBack_data();
    void codeIsReadBack();
    void looksLikeCodeOfTheLanguage();
    void pythonReadsAcrossLinesInParentheses();
    void twoQuestionMarksAreNoTrigraph();
    void whatCannotBeSeenIsEscaped();
    void digitBehindControlCharacter();
    void longTextsAreNoSingleConstantOfJava_data();
    void longTextsAreNoSingleConstantOfJava();
    void plainBreaksLeaveQuotes();
    void onOneLine_data();
    void onOneLine();
    void mariadbHasItsOwnComments();
};

void TestCodeQuote::codeIsReadBack_data() {
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const QString& text) { QTest::newRow(name) << text; };
    row("empty", QStringLiteral(""));
    row("one line", QStringLiteral("SELECT A FROM B"));
    row("quotes", QStringLiteral("SELECT \"a\" || 'it''s' || '\"\"\"' || ')\"' FROM B"));
    row("backslashes", QStringLiteral("a\\ \\\\ \\n \\u0041 \\"));
    row("line feeds", QStringLiteral("SELECT A\nFROM B\n\nWHERE C\n"));
    row("carriage returns", QStringLiteral("SELECT A\r\nFROM B\rWHERE C"));
    row("tabs", QStringLiteral("\tA\t1"));
    row("question marks", QStringLiteral("?\? ?\?= ?\?\?/ ?\?\?\?) ? ?\?"));
    row("letters of the world", QStringLiteral("sélection Straße \u540d\u524d \u0416"));
    row("beyond the basic plane", QStringLiteral("'\U0001F600' \U000E0001 1"));
    row("not to be seen", QStringLiteral("a\u00a0b\u2028c\u200bd\u0085e\u202ef\ufeff"));
    row("control characters", QStringLiteral("\u00011\u001b7\u007f9"));
    row("comments", QStringLiteral("A -- b\n/* c\n*/ D"));
}

void TestCodeQuote::codeIsReadBack() {
    QFETCH(QString, text);
    for (const CodeLanguage language :
         {CodeLanguage::Cpp, CodeLanguage::Python, CodeLanguage::Java}) {
        QCOMPARE(readBack(codeOf(text, language), language), text);
    }
}

void TestCodeQuote::looksLikeCodeOfTheLanguage() {
    const QString text = QStringLiteral("SELECT \"A\"\nFROM B");
    QCOMPARE(codeOf(text, CodeLanguage::Cpp), QStringLiteral(R"("SELECT \"A\"\n"
"FROM B")"));
    QCOMPARE(codeOf(text, CodeLanguage::Python), QStringLiteral(R"((
    "SELECT \"A\"\n"
    "FROM B"
))"));
    QCOMPARE(codeOf(text, CodeLanguage::Java), QStringLiteral(R"("SELECT \"A\"\n" +
"FROM B")"));
}

void TestCodeQuote::pythonReadsAcrossLinesInParentheses() {
    QCOMPARE(codeOf(QStringLiteral("A"), CodeLanguage::Python), QStringLiteral("\"A\""));
    QVERIFY(codeOf(QStringLiteral("A\nB"), CodeLanguage::Python).startsWith(u'('));
    // A break at the end begins no further line.
    QCOMPARE(codeOf(QStringLiteral("A\n"), CodeLanguage::Python), QStringLiteral("\"A\\n\""));
}

void TestCodeQuote::twoQuestionMarksAreNoTrigraph() {
    const QString text = QStringLiteral("'?\?/' ???");
    QVERIFY(!codeOf(text, CodeLanguage::Cpp).contains(QStringLiteral("?\?")));
    QCOMPARE(codeOf(text, CodeLanguage::Java), QString(u'"' + text + u'"'));
}

void TestCodeQuote::whatCannotBeSeenIsEscaped() {
    const QString text = QStringLiteral("a\u00a0b\u202ec\u00e9");
    for (const CodeLanguage language :
         {CodeLanguage::Cpp, CodeLanguage::Python, CodeLanguage::Java}) {
        QCOMPARE(codeOf(text, language), QStringLiteral("\"a\\u00a0b\\u202ec\u00e9\""));
    }
    const QString tag = QStringLiteral("\U000E0001");
    QCOMPARE(codeOf(tag, CodeLanguage::Python), QStringLiteral("\"\\U000e0001\""));
    QCOMPARE(codeOf(tag, CodeLanguage::Java), QStringLiteral("\"\\udb40\\udc01\""));
}

void TestCodeQuote::digitBehindControlCharacter() {
    QCOMPARE(codeOf(QStringLiteral("\u00011"), CodeLanguage::Cpp), QStringLiteral("\"\\0011\""));
}

void TestCodeQuote::longTextsAreNoSingleConstantOfJava_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("parts");
    const QString line = QString(99, u'a') + u'\n';  // a hundred bytes
    QTest::newRow("as long as one may be") << line.repeated(600) << 1;
    QTest::newRow("one character more") << QString(line.repeated(600) + u'b') << 2;
    QTest::newRow("lines") << line.repeated(1800) << 3;
    QTest::newRow("one line") << QString(150000, u'a') << 3;
    QTest::newRow("lines behind a long one") << QString(QString(60001, u'a') + u'\n' + line) << 2;
    QTest::newRow("three bytes each") << QString(40000, QChar(0x540d)) << 2;
    // A pair has six, and is not parted: 59,999 and one of them would be too much.
    QTest::newRow("pairs") << QString(u'a' + QStringLiteral("\U0001F600").repeated(10000)) << 2;
    QTest::newRow("quotes") << QStringLiteral("\",\\\n").repeated(20000) << 2;
}

void TestCodeQuote::longTextsAreNoSingleConstantOfJava() {
    QFETCH(QString, text);
    QFETCH(int, parts);
    QString code = codeOf(text, CodeLanguage::Java);
    if (parts == 1) {
        QCOMPARE(readBack(code, CodeLanguage::Java), text);
        return;
    }
    const QString head = QStringLiteral("String.join(\"\",\n");
    QVERIFY(code.startsWith(head) && code.endsWith(QStringLiteral("\")")));
    code = code.mid(head.size());
    code.chop(1);
    // No literal has a line break.
    QStringList expressions = code.split(QStringLiteral("\",\n"));
    for (int index = 0; index + 1 < expressions.size(); ++index) expressions[index] += u'"';
    QCOMPARE(expressions.size(), parts);
    QString whole;
    for (const QString& expression : expressions) {
        const QString part = readBack(expression, CodeLanguage::Java);
        int bytes = 0;
        for (const QChar unit : part) {
            bytes += unit.unicode() < 0x80 ? 1 : unit.unicode() < 0x800 ? 2 : 3;
        }
        QVERIFY(bytes > 0 && bytes <= 60000);
        QVERIFY(!part.front().isLowSurrogate());
        whole += part;
    }
    QCOMPARE(whole, text);
}

void TestCodeQuote::plainBreaksLeaveQuotes() {
    const auto plain = [](const QString& text) {
        return withPlainBreaks(text, SqlRules::Postgresql);
    };
    QCOMPARE(plain(QStringLiteral("SELECT A\r\nFROM B")), QStringLiteral("SELECT A\nFROM B"));
    QCOMPARE(plain(QStringLiteral("'a\r\nb'\r\n\"c\r\n\"")), QStringLiteral("'a\r\nb'\n\"c\r\n\""));
    QCOMPARE(plain(QStringLiteral("A -- b\r\n/*\r\n*/")), QStringLiteral("A -- b\n/*\n*/"));
}

void TestCodeQuote::onOneLine_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("line");
    const auto row = [](const char* text, const char* line) {
        QTest::newRow(text) << QString::fromUtf8(text) << QString::fromUtf8(line);
    };
    row("", "");
    row("SELECT A,\r\n       B\r\nFROM C", "SELECT A, B FROM C");
    row("  A\t\tB\n\n", "A B");
    row("A -- first\nFROM B", "A /* first */ FROM B");
    row("A -- first\r\nFROM B", "A /* first */ FROM B");
    row("A --first", "A /* first */");
    row("A--\nB", "A/*  */ B");
    row("A -- b */ c\nD", "A /* b * / c */ D");
    row("A -- b /* c\nD", "A /* b / * c */ D");
    row("A /* b\n  c */ D", "A /* b   c */ D");
    row("A /* b -- c */\nD", "A /* b -- c */ D");
    row("'a\nb  c' \n D", "'a\nb  c' D");
    row("'--' \n \"-- \"\nB", "'--' \"-- \" B");
    row("'it''s -- '\nB", "'it''s -- ' B");
    row("$$a\n--$$\nB", "$$a\n--$$ B");
    row("A -- b\n-- c\nD", "A /* b */ /* c */ D");
}

void TestCodeQuote::onOneLine() {
    QFETCH(QString, text);
    QFETCH(QString, line);
    QCOMPARE(orvquery::onOneLine(text, SqlRules::Postgresql), line);
}

void TestCodeQuote::mariadbHasItsOwnComments() {
    const auto line = [](const char* text) {
        return orvquery::onOneLine(QString::fromLatin1(text), SqlRules::Mariadb);
    };
    QCOMPARE(line("A # b\nC"), QStringLiteral("A /* b */ C"));
    // One minus less the other.
    QCOMPARE(line("A --1\nC"), QStringLiteral("A --1 C"));
    QCOMPARE(line("A -- 1\nC"), QStringLiteral("A /* 1 */ C"));
    QCOMPARE(line("`a\n#` \n C"), QStringLiteral("`a\n#` C"));
    QCOMPARE(line("A /*!50000 b */\nC"), QStringLiteral("A /*!50000 b */ C"));
}

QTEST_MAIN(TestCodeQuote)
#include "tst_app_codequote.moc"
