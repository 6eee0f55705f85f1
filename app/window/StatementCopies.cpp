// SPDX-License-Identifier: MIT
#include "window/StatementCopies.h"

#include "text/EditorText.h"
#include "window/StatementPane.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>

namespace orvquery {

StatementCopies::StatementCopies(StatementPane* statement, std::function<SqlRules()> rules)
    : QObject(statement), m_statement(statement), m_rules(std::move(rules)) {}

void StatementCopies::addTo(QMenu& menu) {
    QAction* line =
        menu.addAction(tr("Copy statement as one &line"), this, [this] { copyOneLine(); });
    line->setObjectName(QStringLiteral("copyOneLine"));
    QMenu* languages = menu.addMenu(tr("&Copy statement for"));
    languages->menuAction()->setObjectName(QStringLiteral("copyFor"));
    const auto add = [&](const QString& text, const QString& name, CodeLanguage language) {
        languages->addAction(text, this, [this, language] { copyFor(language); })
            ->setObjectName(name);
    };
    add(tr("&C++"), QStringLiteral("copyForCpp"), CodeLanguage::Cpp);
    add(tr("&Python"), QStringLiteral("copyForPython"), CodeLanguage::Python);
    add(tr("&Java"), QStringLiteral("copyForJava"), CodeLanguage::Java);
    const auto refresh = [this, line, languages] {
        const bool hasText = !m_statement->text().isEmpty();
        line->setEnabled(hasText);
        languages->setEnabled(hasText);
    };
    connect(m_statement, &StatementPane::contentChanged, line, refresh);
    refresh();
}

void StatementCopies::copyOneLine() const {
    const QString copy = onOneLine(m_statement->text(), m_rules());
    QGuiApplication::clipboard()->setText(copy);
    const qsizetype lines = withSingleBreaks(copy).count(u'\n') + 1;
    m_statement->tell(lines == 1 ? QString()
                                 : tr("The copy has %1 lines: what stands in quotes keeps its line "
                                      "breaks.")
                                       .arg(lines));
}

void StatementCopies::copyFor(CodeLanguage language) const {
    const QString text = withPlainBreaks(m_statement->text(), m_rules());
    QGuiApplication::clipboard()->setText(codeOf(text, language));
}

}  // namespace orvquery
