// SPDX-License-Identifier: MIT
#include "criteria/ORVQDFontWidths.h"

#include <QFontMetrics>

namespace orv {

namespace {

constexpr qsizetype mostRemembered = 20000;

}  // namespace

void FontWidths::setFont(const QFont& font) {
    m_plain = font;
    m_plain.setBold(false);
    m_plain.setUnderline(false);
    m_emphasised = font;
    m_emphasised.setBold(true);
    m_emphasised.setUnderline(true);
    m_plainWidths.clear();
    m_emphasisedWidths.clear();
}

int FontWidths::width(const QString& text, bool isEmphasised) const {
    QHash<QString, int>& widths = isEmphasised ? m_emphasisedWidths : m_plainWidths;
    const auto known = widths.constFind(text);
    if (known != widths.constEnd()) return *known;
    if (widths.size() >= mostRemembered) widths.clear();
    const QFontMetrics metrics(isEmphasised ? m_emphasised : m_plain);
    const int width = metrics.horizontalAdvance(text);
    widths.insert(text, width);
    return width;
}

}  // namespace orv
