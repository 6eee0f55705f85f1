// SPDX-License-Identifier: MIT
#include "joins/JoinNames.h"

#include <QTest>

using namespace orvquery;

Q_DECLARE_METATYPE(KeyLikeness)

// What names and types say of columns that may belong together.
class TestJoinNames : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void comparableNames_data();
    void comparableNames();
    void genericNames_data();
    void genericNames();
    void columnsLikeKeys_data();
    void columnsLikeKeys();
    void parents();
    void ownKeys();
    void comparableTypes();
    void typesOfKeys();
};

void TestJoinNames::comparableNames_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("comparable");

    QTest::newRow("underscore") << "CUST_NO"
                                << "CUSTNO";
    QTest::newRow("small") << "cust_no"
                           << "CUSTNO";
    QTest::newRow("humps") << "custNo"
                           << "CUSTNO";
    QTest::newRow("blank") << "Cust No"
                           << "CUSTNO";
    QTest::newRow("digits") << "address_2"
                            << "ADDRESS2";
    QTest::newRow("no letter") << "__"
                               << "";
}

void TestJoinNames::comparableNames() {
    QFETCH(QString, name);
    QTEST(comparableName(name), "comparable");
}

void TestJoinNames::genericNames_data() {
    QTest::addColumn<bool>("isGeneric");

    for (const char* name : {"ID", "id", "NAME", "LastName", "last_name", "DATE", "ORDER_DATE",
                             "CREATED_AT", "CREATED_BY", "UPDATED_ON", "STATUS", "order_status",
                             "TYPE", "CODE", "QUANTITY", "CITY", "PHONE", "LINE_NO"}) {
        QTest::newRow(name) << true;
    }
    for (const char* name : {"CUSTNO", "CUSTOMER_ID", "COUNTRY_CODE", "PART_NO", "ISBN"}) {
        QTest::newRow(name) << false;
    }
}

void TestJoinNames::genericNames() {
    QTEST(isGenericName(QString::fromLatin1(QTest::currentDataTag())), "isGeneric");
}

void TestJoinNames::columnsLikeKeys_data() {
    QTest::addColumn<QString>("column");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("key");
    QTest::addColumn<KeyLikeness>("likeness");

    const auto fully = KeyLikeness::Fully;
    const auto partly = KeyLikeness::Partly;
    const auto none = KeyLikeness::None;
    QTest::newRow("singular and ID") << "CUSTOMER_ID"
                                     << "CUSTOMERS"
                                     << "ID" << fully;
    QTest::newRow("one word") << "customerid"
                              << "Customers"
                              << "id" << fully;
    QTest::newRow("humps") << "CustomerId"
                           << "CUSTOMER"
                           << "ID" << fully;
    QTest::newRow("plural and ID") << "CUSTOMERS_ID"
                                   << "CUSTOMER"
                                   << "ID" << fully;
    QTest::newRow("-ies") << "CATEGORY_ID"
                          << "CATEGORIES"
                          << "ID" << fully;
    QTest::newRow("-es") << "ADDRESS_ID"
                         << "ADDRESSES"
                         << "ID" << fully;
    QTest::newRow("people") << "PERSON_ID"
                            << "PEOPLE"
                            << "ID" << fully;
    QTest::newRow("singular alone") << "CUSTOMER"
                                    << "CUSTOMERS"
                                    << "ID" << fully;
    QTest::newRow("ID in front") << "ID_CUSTOMER"
                                 << "CUSTOMERS"
                                 << "ID" << fully;
    QTest::newRow("other word for key") << "CUSTOMER_NO"
                                        << "CUSTOMERS"
                                        << "ID" << fully;
    QTest::newRow("stem of key") << "CUSTNO"
                                 << "CLIENTS"
                                 << "CUST_ID" << fully;
    QTest::newRow("table of two words") << "ORDER_ITEM_ID"
                                        << "ORDER_ITEMS"
                                        << "ID" << fully;
    QTest::newRow("mark of tables") << "CUSTOMER_ID"
                                    << "TBL_CUSTOMERS"
                                    << "ID" << fully;
    QTest::newRow("role") << "BILLING_CUSTOMER_ID"
                          << "CUSTOMERS"
                          << "ID" << partly;
    QTest::newRow("end of table") << "USER_ID"
                                  << "auth_user"
                                  << "ID" << partly;
    QTest::newRow("other table") << "CUSTOMER_ID"
                                 << "ORDERS"
                                 << "ID" << none;
    QTest::newRow("ID alone") << "ID"
                              << "CUSTOMERS"
                              << "ID" << none;
    QTest::newRow("plural alone counts") << "ORDERS"
                                         << "ORDERS"
                                         << "ID" << none;
    QTest::newRow("last word alone") << "UNIT_PRICE"
                                     << "PRICES"
                                     << "ID" << none;
    QTest::newRow("within a word") << "LINEITEMID"
                                   << "ITEMS"
                                   << "ID" << none;
    QTest::newRow("no letter") << "_"
                               << "CUSTOMERS"
                               << "ID" << none;
}

void TestJoinNames::columnsLikeKeys() {
    QFETCH(QString, column);
    QFETCH(QString, table);
    QFETCH(QString, key);
    QTEST(likenessToKey(column, table, key), "likeness");
}

void TestJoinNames::parents() {
    QVERIFY(isParentName(QStringLiteral("PARENT_ID")));
    QVERIFY(isParentName(QStringLiteral("parentId")));
    QVERIFY(isParentName(QStringLiteral("PARENT")));
    QVERIFY(isParentName(QStringLiteral("parent_category_id")));
    QVERIFY(!isParentName(QStringLiteral("PARENT_NAME")));
    QVERIFY(!isParentName(QStringLiteral("MANAGER_ID")));
}

void TestJoinNames::ownKeys() {
    QVERIFY(isOwnKeyName(QStringLiteral("id"), QStringLiteral("orders")));
    QVERIFY(isOwnKeyName(QStringLiteral("ORDER_NO"), QStringLiteral("ORDERS")));
    QVERIFY(!isOwnKeyName(QStringLiteral("CUSTOMER_NO"), QStringLiteral("ORDERS")));
    QVERIFY(!isOwnKeyName(QStringLiteral("ORDER"), QStringLiteral("ORDERS")));
}

void TestJoinNames::comparableTypes() {
    QVERIFY(areComparable(ftInteger, ftLargeint));
    QVERIFY(areComparable(ftInteger, ftFloat));
    QVERIFY(areComparable(ftBCD, ftSmallint));
    QVERIFY(areComparable(ftString, ftFixedChar));
    QVERIFY(areComparable(ftUnknown, ftInteger));
    QVERIFY(areComparable(ftDate, ftDate));
    QVERIFY(!areComparable(ftInteger, ftString));
    QVERIFY(!areComparable(ftDate, ftDateTime));
    QVERIFY(!areComparable(ftBlob, ftBlob));
    QVERIFY(!areComparable(ftUnknown, ftGraphic));
}

void TestJoinNames::typesOfKeys() {
    for (const TFieldType type : {ftInteger, ftLargeint, ftString, ftFixedChar, ftBytes}) {
        QVERIFY2(isTypeOfKeys(type), qPrintable(orv::fieldTypeIdentifier(type)));
    }
    for (const TFieldType type : {ftFloat, ftBCD, ftDate, ftDateTime, ftBoolean, ftBlob}) {
        QVERIFY2(!isTypeOfKeys(type), qPrintable(orv::fieldTypeIdentifier(type)));
    }
}

QTEST_GUILESS_MAIN(TestJoinNames)
#include "tst_app_joinnames.moc"
