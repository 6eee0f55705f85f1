// SPDX-License-Identifier: MIT
#pragma once

#include "criteria/ORVQDWhereRows.h"

#include <QFont>
#include <QHash>

namespace orv {

/// Measures texts in a font and remembers them: operators and names come again and again. Owned by
/// the panel.
class FontWidths : public TextWidths {
public:
    void setFont(const QFont& font);
    [[nodiscard]] const QFont& plainFont() const { return m_plain; }
    [[nodiscard]] const QFont& emphasisedFont() const { return m_emphasised; }

    [[nodiscard]] int width(const QString& text, bool isEmphasised) const override;

private:
    QFont m_plain;
    QFont m_emphasised;
    mutable QHash<QString, int> m_plainWidths;
    mutable QHash<QString, int> m_emphasisedWidths;
};

}  // namespace orv
