// SPDX-License-Identifier: MIT
#include "database/MariadbLibrary.h"

#include <QLibrary>

namespace orvquery {

namespace {

template <typename Function>
void resolve(QLibrary& library, const char* name, Function& function) {
    function = reinterpret_cast<Function>(library.resolve(name));
}

}  // namespace

bool MariadbLibrary::isWhole() const {
    return realQuery != nullptr && useResult != nullptr && fetchRow != nullptr &&
           fetchLengths != nullptr && fieldCount != nullptr && field != nullptr &&
           freeResult != nullptr && errorNumber != nullptr && errorText != nullptr;
}

const MariadbLibrary& mariadbLibrary() {
    static const MariadbLibrary functions = [] {
        QLibrary library(QStringLiteral("mariadb"), 3);
        MariadbLibrary found;
        resolve(library, "mysql_real_query", found.realQuery);
        resolve(library, "mysql_use_result", found.useResult);
        resolve(library, "mysql_fetch_row", found.fetchRow);
        resolve(library, "mysql_fetch_lengths", found.fetchLengths);
        resolve(library, "mysql_num_fields", found.fieldCount);
        resolve(library, "mysql_fetch_field_direct", found.field);
        resolve(library, "mysql_free_result", found.freeResult);
        resolve(library, "mysql_errno", found.errorNumber);
        resolve(library, "mysql_error", found.errorText);
        return found;
    }();
    return functions;
}

}  // namespace orvquery
