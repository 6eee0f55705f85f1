// SPDX-License-Identifier: MIT
#include "window/SampleMenu.h"

#include "sample/SampleQueries.h"

namespace orvquery {

SampleMenu::SampleMenu(const QString& title, QWidget* parent) : QMenu(title, parent) {
    setObjectName(QStringLiteral("sampleQueries"));
    for (const SampleQuery& query : sampleQueries()) {
        addAction(query.title, this,
                  [this, statement = query.statement] { Q_EMIT chosen(statement); });
    }
}

}  // namespace orvquery
