// SPDX-License-Identifier: MIT
#include "text/EditorText.h"

#include <algorithm>

namespace orvquery {

QString withSingleBreaks(QString text) {
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(u'\r', u'\n');
    return text;
}

EditorPlaces::EditorPlaces(const QString& text) {
    const QString lineBreak = QStringLiteral("\r\n");
    for (qsizetype at = text.indexOf(lineBreak); at >= 0; at = text.indexOf(lineBreak, at + 2)) {
        m_dropped.push_back(int(at) + 1);
    }
}

int EditorPlaces::operator()(int position) const {
    const auto behind = std::lower_bound(m_dropped.begin(), m_dropped.end(), position);
    return position - int(behind - m_dropped.begin());
}

}  // namespace orvquery
