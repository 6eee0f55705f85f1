// SPDX-License-Identifier: MIT
#include "joins/JoinNames.h"

#include <QSet>

#include <algorithm>
#include <array>

namespace orvquery {

namespace {

// The longer ones first: NUMBER is not to be taken for a name that ends with another of them.
const QStringList& keyWords() {
    static const QStringList words = {
        QStringLiteral("NUMBER"), QStringLiteral("UUID"), QStringLiteral("GUID"),
        QStringLiteral("CODE"),   QStringLiteral("KEY"),  QStringLiteral("NUM"),
        QStringLiteral("REF"),    QStringLiteral("OID"),  QStringLiteral("ID"),
        QStringLiteral("NO"),     QStringLiteral("NR"),   QStringLiteral("FK"),
        QStringLiteral("PK")};
    return words;
}

// Whole names, as comparableName gives them.
constexpr const char* genericNames =
    "POS POSITION RANK RATING SORT SORTORDER SEQ SEQUENCE SEQNO LINE LINENO LINENR LINENUMBER ROW "
    "ROWNO ROWNUM ROWNUMBER ROWID RECNO LEVEL DEPTH SIZE WEIGHT WIDTH HEIGHT LENGTH COLOR COLOUR "
    "AGE YEAR MONTH DAY WEEK HOUR VERSION REVISION ACTIVE ENABLED DELETED VISIBLE LANGUAGE LOCALE "
    "CURRENCY GENDER SEX UNIT CITY TOWN STREET ADDRESS ADDRESS1 ADDRESS2 ZIP ZIPCODE POSTCODE "
    "POSTALCODE REGION PHONE FAX MOBILE EMAIL MAIL URL WEBSITE CONTACT USERNAME PASSWORD RESULT "
    "PARENT PARENTID PARENTNO NEXT PREVIOUS CREATED UPDATED MODIFIED CHANGED INSERTED";

// The last words of such names.
constexpr const char* genericWords =
    "NAME FIRSTNAME LASTNAME FULLNAME SURNAME TITLE LABEL CAPTION DESCRIPTION DESCR DESC TEXT "
    "COMMENT COMMENTS NOTE NOTES REMARK REMARKS DATE TIME TIMESTAMP DATETIME STATUS STATE TYPE "
    "KIND VALUE AMOUNT PRICE COST TOTAL SUM QUANTITY QTY COUNT PERCENT RATE FLAG";

// The first words of names that tell of the row itself.
constexpr const char* genericBeginnings = "CREATED UPDATED MODIFIED CHANGED INSERTED DELETED";

QSet<QString> setOf(const char* words) {
    const QStringList list = QString::fromLatin1(words).split(u' ');
    return {list.begin(), list.end()};
}

// Without the marks and in upper case: "billingCustomer_id" gives BILLING, CUSTOMER, ID.
QStringList wordsOf(const QString& name) {
    QStringList words;
    QString word;
    for (qsizetype at = 0; at < name.size(); ++at) {
        const QChar character = name[at];
        const bool isPart = character.isLetterOrNumber();
        const bool followsSmall = at > 0 && (name[at - 1].isLower() || name[at - 1].isDigit());
        const bool endsCapitals =
            at > 0 && name[at - 1].isUpper() && at + 1 < name.size() && name[at + 1].isLower();
        const bool begins = character.isUpper() && (followsSmall || endsCapitals);
        if ((!isPart || begins) && !word.isEmpty()) words += std::exchange(word, {}).toUpper();
        if (isPart) word += character;
    }
    if (!word.isEmpty()) words += word.toUpper();
    return words;
}

// What is left of a name without the word that marks a key.
struct Stem {
    QString text;  ///< empty when there is no other word
    bool hadKeyWord = false;
};

Stem stemOf(const QStringList& words) {
    if (words.size() > 1) {
        if (keyWords().contains(words.back())) {
            return {words.mid(0, words.size() - 1).join(QString()), true};
        }
        if (keyWords().contains(words.front())) return {words.mid(1).join(QString()), true};
    }
    const QString whole = words.join(QString());
    for (const QString& keyWord : keyWords()) {
        if (whole == keyWord) return {QString(), true};
        // PAID and GRID are words of their own.
        if (whole.endsWith(keyWord) && whole.size() >= keyWord.size() + 3) {
            return {whole.chopped(keyWord.size()), true};
        }
    }
    return {whole, false};
}

// The word, and what it may be the plural of.
QStringList numbersOf(const QString& word) {
    static const std::array<std::pair<QString, QString>, 4> irregular = {{
        {QStringLiteral("PEOPLE"), QStringLiteral("PERSON")},
        {QStringLiteral("CHILDREN"), QStringLiteral("CHILD")},
        {QStringLiteral("MEN"), QStringLiteral("MAN")},
        {QStringLiteral("INDICES"), QStringLiteral("INDEX")},
    }};
    QStringList numbers{word};
    for (const auto& [plural, singular] : irregular) {
        if (word.endsWith(plural)) numbers += word.chopped(plural.size()) + singular;
    }
    if (word.size() < 4 || !word.endsWith(u'S')) return numbers;
    numbers += word.chopped(1);
    if (word.endsWith(QLatin1String("ES"))) numbers += word.chopped(2);
    if (word.endsWith(QLatin1String("IES"))) numbers += word.chopped(3) + u'Y';
    return numbers;
}

bool isPlural(const QString& word) {
    return numbersOf(word).size() > 1 && !word.endsWith(QLatin1String("SS"));
}

bool isSameButForNumber(const QString& left, const QString& right) {
    const QStringList numbers = numbersOf(right);
    const QStringList others = numbersOf(left);
    return std::any_of(others.begin(), others.end(),
                       [&](const QString& word) { return numbers.contains(word); });
}

// Some people begin the names of all tables alike.
QStringList wordsOfTable(const QString& table) {
    static const QStringList marks = {QStringLiteral("T"), QStringLiteral("TB"),
                                      QStringLiteral("TBL"), QStringLiteral("TAB")};
    QStringList words = wordsOf(table);
    if (words.size() > 1 && marks.contains(words.front())) words.removeFirst();
    return words;
}

KeyLikeness likenessToTable(const QString& stem, const QString& table) {
    const QStringList words = wordsOfTable(table);
    for (qsizetype from = 0; from < words.size(); ++from) {
        if (!isSameButForNumber(stem, words.mid(from).join(QString()))) continue;
        return from == 0 ? KeyLikeness::Fully : KeyLikeness::Partly;
    }
    return KeyLikeness::None;
}

enum class Family { Unknown, Whole, Decimal, Text, Date, Time, Moment, Truth, Bytes, Other };

Family familyOf(TFieldType type) {
    if (sNumeric.contains(type)) return Family::Whole;
    if (sFloat.contains(type) || type == ftBCD) return Family::Decimal;
    if (sString.contains(type)) return Family::Text;
    if (type == ftUnknown) return Family::Unknown;
    if (type == ftDate) return Family::Date;
    if (type == ftTime) return Family::Time;
    if (type == ftDateTime) return Family::Moment;
    if (type == ftBoolean) return Family::Truth;
    if (type == ftBytes || type == ftVarBytes) return Family::Bytes;
    return Family::Other;
}

}  // namespace

QString comparableName(const QString& name) {
    return wordsOf(name).join(QString());
}

bool isGenericName(const QString& column) {
    static const QSet<QString> names = setOf(genericNames);
    static const QSet<QString> endings = setOf(genericWords);
    static const QSet<QString> beginnings = setOf(genericBeginnings);
    const QStringList words = wordsOf(column);
    if (words.isEmpty()) return true;
    const QString whole = words.join(QString());
    return keyWords().contains(whole) || names.contains(whole) || endings.contains(whole) ||
           endings.contains(words.back()) || beginnings.contains(words.front());
}

KeyLikeness likenessToKey(const QString& column, const QString& table, const QString& key) {
    const QStringList words = wordsOf(column);
    const QString keyStem = stemOf(wordsOf(key)).text;
    KeyLikeness best = KeyLikeness::None;
    for (qsizetype from = 0; from < words.size(); ++from) {
        const Stem stem = stemOf(words.mid(from));
        if (stem.text.isEmpty()) continue;
        // UNIT_PRICE is no key of PRICES.
        if (from > 0 && !stem.hadKeyWord) break;
        // A column ORDERS counts orders.
        if (!stem.hadKeyWord && isPlural(stem.text)) break;
        KeyLikeness likeness = likenessToTable(stem.text, table);
        if (stem.hadKeyWord && stem.text == keyStem && !isGenericName(key)) {
            likeness = KeyLikeness::Fully;
        }
        if (likeness != KeyLikeness::None && from > 0) likeness = KeyLikeness::Partly;
        best = std::max(best, likeness);
    }
    return best;
}

bool isParentName(const QString& column) {
    const QStringList words = wordsOf(column);
    return stemOf(words).text == QLatin1String("PARENT") ||
           (words.size() > 1 && words.front() == QLatin1String("PARENT") && hasKeyWord(column));
}

bool isOwnKeyName(const QString& column, const QString& table) {
    const Stem stem = stemOf(wordsOf(column));
    if (!stem.hadKeyWord) return false;
    return stem.text.isEmpty() || likenessToTable(stem.text, table) == KeyLikeness::Fully;
}

bool hasKeyWord(const QString& column) {
    return stemOf(wordsOf(column)).hadKeyWord;
}

bool areComparable(TFieldType left, TFieldType right) {
    const Family first = familyOf(left);
    const Family second = familyOf(right);
    if (first == Family::Other || second == Family::Other) return false;
    if (first == second || first == Family::Unknown || second == Family::Unknown) return true;
    const auto isNumber = [](Family family) {
        return family == Family::Whole || family == Family::Decimal;
    };
    return isNumber(first) && isNumber(second);
}

bool isTypeOfKeys(TFieldType type) {
    switch (familyOf(type)) {
    case Family::Unknown:
    case Family::Whole:
    case Family::Text:
    case Family::Bytes: return true;
    case Family::Decimal:
    case Family::Date:
    case Family::Time:
    case Family::Moment:
    case Family::Truth:
    case Family::Other: return false;
    }
    Q_UNREACHABLE();
}

}  // namespace orvquery
