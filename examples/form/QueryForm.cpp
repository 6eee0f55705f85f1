// SPDX-License-Identifier: MIT
#include "QueryForm.h"

#include "ui_QueryForm.h"
#include <orvquerybuilder/ORVQDFloatPanel.h>

QueryForm::QueryForm() : m_ui(std::make_unique<Ui::QueryForm>()) {
    m_ui->setupUi(this);
    TorvQueryBuilder* builder = m_ui->queryBuilder;
    connect(builder, &TorvQueryBuilder::StatementChanged, this, &QueryForm::showStatement);
    builder->OnGetTableFields = [](const QString& NameOfTable, std::unique_ptr<TDataSet>& ADataSet,
                                   std::unique_ptr<TParams>&) {
        if (NameOfTable.compare("SALES", Qt::CaseInsensitive) != 0) return;
        ADataSet = std::make_unique<TDataSet>(TDataSet{{{"SALE_ID", ftInteger},
                                                        {"SOLD", ftDate},
                                                        {"REGION", ftString},
                                                        {"AMOUNT", ftCurrency}}});
    };
    builder->LoadSQL(
        "SELECT REGION, SUM(AMOUNT) AS TOTAL FROM SALES "
        "WHERE AMOUNT BETWEEN 100 AND 500 GROUP BY REGION ORDER BY REGION");
    builder->WorkArea->fitWidth(*builder->ListOfTables->Tables(0));
}

QueryForm::~QueryForm() = default;

QString QueryForm::statement() const {
    return m_ui->statementEdit->toPlainText();
}

void QueryForm::showStatement() {
    try {
        m_ui->statementEdit->setPlainText(m_ui->queryBuilder->GetSQLStatment());
    } catch (const std::exception& error) {
        m_ui->statementEdit->setPlainText(QString::fromUtf8(error.what()));
    }
}
