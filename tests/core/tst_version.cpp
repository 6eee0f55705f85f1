// SPDX-License-Identifier: MIT
#include "core/Version.h"

#include <QTest>

class TestVersion : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // The package has the same, from the top of the build.
    void versionIsThatOfTheProject() {
        QCOMPARE(orv::version(), QStringLiteral(ORV_PROJECT_VERSION));
    }
};

QTEST_APPLESS_MAIN(TestVersion)
#include "tst_version.moc"
