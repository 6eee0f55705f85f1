// SPDX-License-Identifier: MIT
#include "core/Error.h"
#include "core/TPersistent.h"

#include <QTest>

namespace {

// The class names of these two stand in the texts of the errors.
class Coin : public TPersistent {
    Q_OBJECT

public:
    int value = 0;

    void AssignTo(TPersistent* Dest) const override {
        if (auto* coin = qobject_cast<Coin*>(Dest)) {
            coin->value = value;
            return;
        }
        TPersistent::AssignTo(Dest);
    }
};

class Stone : public TPersistent {
    Q_OBJECT
};

template <typename Body>
QString errorOf(Body&& body) {
    try {
        body();
    } catch (const orv::Error& error) {
        return error.Message();
    }
    return QStringLiteral("(no error)");
}

}  // namespace

class TestPersistent : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void assignAsksTheSource();
    void assignOfAnotherClassRaises();
    void assignOfNothingRaises();
    void assignToAnotherClassRaises();
};

void TestPersistent::assignAsksTheSource() {
    Coin source;
    source.value = 7;
    Coin dest;
    dest.Assign(&source);
    QCOMPARE(dest.value, 7);
}

void TestPersistent::assignOfAnotherClassRaises() {
    const Stone stone;
    Coin coin;
    const QString error = errorOf([&] { coin.Assign(&stone); });
    QVERIFY(error.startsWith(QStringLiteral("Cannot assign a ")));
    QVERIFY(error.indexOf(QStringLiteral("Stone to a ")) > 0);
    QVERIFY(error.endsWith(QStringLiteral("Coin")));
}

void TestPersistent::assignOfNothingRaises() {
    TPersistent dest;
    QCOMPARE(errorOf([&] { dest.Assign(nullptr); }),
             QStringLiteral("Cannot assign a nil to a TPersistent"));
}

void TestPersistent::assignToAnotherClassRaises() {
    const TPersistent source;
    TPersistent dest;
    QCOMPARE(errorOf([&] { source.AssignTo(&dest); }),
             QStringLiteral("Cannot assign a TPersistent to a TPersistent"));
    QCOMPARE(errorOf([&] { source.AssignTo(nullptr); }),
             QStringLiteral("Cannot assign a TPersistent to a nil"));
}

QTEST_GUILESS_MAIN(TestPersistent)
#include "tst_persistent.moc"
