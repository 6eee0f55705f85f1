// SPDX-License-Identifier: MIT
#include "Texts.h"

#include "criteria/ORVQDConditionLayout.h"
#include "criteria/ORVQDWherePanel.h"

#include <QGraphicsSimpleTextItem>

namespace bench {

namespace {

constexpr int rowHeightPx = 16;
constexpr int columnsLeftPx = 300;

}  // namespace

SceneOfConditions::SceneOfConditions(const TorvQDWherePanel& panel) : m_font(panel.font()) {
    for (const TorvQDWhereRow* row : panel.conditionLayout().rows()) {
        m_rows.emplace_back();
        for (const auto& control : row->Controls) {
            m_rows.back().push_back(m_scene.addSimpleText(control->GetText(), m_font));
        }
    }
}

void SceneOfConditions::relay() {
    m_isSmall = !m_isSmall;
    m_font.setPointSize(m_isSmall ? 8 : 9);
    double top = 0;
    for (const std::vector<QGraphicsSimpleTextItem*>& row : m_rows) {
        double left = 0;
        double height = rowHeightPx;
        for (QGraphicsSimpleTextItem* text : row) {
            text->setFont(m_font);
            text->setPos(left, top);
            const QRectF bounds = text->boundingRect();
            left += bounds.width();
            height = std::max(height, bounds.height());
        }
        top += height;
    }
}

SceneOfTicks::SceneOfTicks(int rows) : m_ticked(13, 13), m_unticked(13, 13) {
    m_ticked.fill(Qt::black);
    m_unticked.fill(Qt::white);
    for (int row = 0; row < rows; ++row) {
        const QString name = QStringLiteral("F%1").arg(row);
        m_rows.push_back({name, m_scene.addPixmap(m_unticked)});
        m_rows.back().mark->setPos(0, row * rowHeightPx);
        m_scene.addSimpleText(name)->setPos(rowHeightPx, row * rowHeightPx);
    }
}

void SceneOfTicks::tickAll() {
    for (const Row& row : m_rows) {
        row.mark->setPixmap(m_ticked);
        m_columns.push_back(m_scene.addSimpleText(QStringLiteral("T.") + row.name));
        m_columns.back()->setPos(columnsLeftPx, double(m_columns.size()) * rowHeightPx);
    }
}

void SceneOfTicks::untickAll() {
    for (const Row& row : m_rows) row.mark->setPixmap(m_unticked);
    // The last first: a scene finds that one at once.
    while (!m_columns.empty()) {
        delete m_columns.back();
        m_columns.pop_back();
    }
}

}  // namespace bench
