// SPDX-License-Identifier: MIT
#include "batch/TableIdentity.h"

#include "core/Error.h"
#include "tables/TableSource.h"

namespace orvquery {

TableKey tableKeyOf(const TableSource& source) {
    return [&source](const QString& nameInStatement) {
        try {
            const auto table = source.find(nameInStatement);
            const bool isKnown = table && !table->source.name.isEmpty();
            if (isKnown) return table->source.schema + u'\x1d' + table->source.name;
        } catch (const orv::Error&) {
            // What cannot be read is told apart by its name.
        }
        return nameInStatement;
    };
}

}  // namespace orvquery
