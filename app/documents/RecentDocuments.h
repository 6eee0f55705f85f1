// SPDX-License-Identifier: MIT
#pragma once

#include <QStringList>

namespace orvquery {

/// The query files that were opened or saved last, in the program's settings, the last one in
/// front. Every call looks there anew, so that all windows know the same.
class RecentDocuments {
public:
    static constexpr qsizetype mostRecent = 10;

    [[nodiscard]] QStringList paths() const;
    void use(const QString& path);
    void forgetMissing();
    void forgetAll();
};

}  // namespace orvquery
