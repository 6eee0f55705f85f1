// SPDX-License-Identifier: MIT
#include "text/FindingLines.h"

namespace orvquery {

QStringList findingLines(const orv::Findings& findings) {
    QStringList lines;
    for (const orv::Finding& finding : findings) {
        lines << (finding.text.isEmpty()
                      ? finding.what
                      : finding.text.simplified() + QStringLiteral(": ") + finding.what);
    }
    return lines;
}

}  // namespace orvquery
