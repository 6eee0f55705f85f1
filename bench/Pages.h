// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/ORVQDWindow.h"

namespace bench {

enum Page { criterions = 0, selection = 1 };

/// A shown builder with one of its pages in front.
class ShownPages {
public:
    explicit ShownPages(Page page);

    void loadConditions(int count);
    void loadColumns(int count);

    /// Another font, in turns: every text of the conditions is measured anew and every row placed.
    void relayConditions();

    TorvQueryBuilder builder;

private:
    void load(const QString& text);

    bool m_isSmall = false;
};

}  // namespace bench
