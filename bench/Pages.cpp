// SPDX-License-Identifier: MIT
#include "Pages.h"

#include "Hosted.h"
#include "criteria/ORVQDWherePanel.h"

#include <QApplication>

namespace bench {

namespace {

constexpr QSize builderSize(1000, 800);
constexpr int pagesHeightPx = 400;

}  // namespace

ShownPages::ShownPages(Page page) {
    builder.OnGetTableFields = [](const QString&, std::unique_ptr<TDataSet>& dataSet,
                                  std::unique_ptr<TParams>&) {
        dataSet = std::make_unique<TDataSet>(fields(10, QStringLiteral("FIELD_")));
    };
    builder.resize(builderSize);
    builder.PageCtrl->setCurrentIndex(page);
    builder.show();
    builder.setTabsHeight(pagesHeightPx);
}

void ShownPages::loadConditions(int count) {
    QStringList conditions;
    for (int row = 0; row < count; ++row) {
        conditions << QStringLiteral("T.FIELD_%1 > %2").arg(row % 10).arg(row);
    }
    load(QStringLiteral("SELECT T.FIELD_0 FROM T WHERE ") +
         conditions.join(QStringLiteral(" AND ")));
}

void ShownPages::loadColumns(int count) {
    QStringList columns;
    for (int row = 0; row < count; ++row) {
        columns << QStringLiteral("T.FIELD_%1 AS COLUMN_%2").arg(row % 10).arg(row);
    }
    load(QStringLiteral("SELECT ") + columns.join(QStringLiteral(", ")) +
         QStringLiteral(" FROM T"));
}

void ShownPages::relayConditions() {
    m_isSmall = !m_isSmall;
    QFont font = builder.WherePanel->font();
    font.setPointSize(m_isSmall ? 8 : 9);
    builder.WherePanel->setFont(font);
}

void ShownPages::load(const QString& text) {
    builder.LoadSQL(text);
    for (int round = 0; round < 3; ++round) QCoreApplication::processEvents();
}

}  // namespace bench
