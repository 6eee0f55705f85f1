// SPDX-License-Identifier: MIT
#include "norows/RowCounter.h"

namespace orvquery {

bool RowCounter::row(const Row& /*values*/) {
    return ++m_rows < m_most;
}

}  // namespace orvquery
