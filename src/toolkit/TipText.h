// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace orv {

/// The text as a tool tip shows it unchanged: "T.A<b>T.C" is no markup, and long lines are wrapped.
[[nodiscard]] inline QString plainTip(const QString& text) {
    if (text.isEmpty()) return {};
    QString escaped = text.toHtmlEscaped();
    escaped.replace(QStringLiteral("\r\n"), QStringLiteral("<br>"));
    escaped.replace(u'\n', QStringLiteral("<br>"));
    escaped.replace(QStringLiteral("  "), QStringLiteral("&nbsp; "));
    return QStringLiteral("<qt>") + escaped + QStringLiteral("</qt>");
}

}  // namespace orv
