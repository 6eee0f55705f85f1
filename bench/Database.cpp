// SPDX-License-Identifier: MIT
#include "Database.h"

#include "Statements.h"

#include <sqlite3.h>

#include <cstdlib>

namespace bench {

namespace {

sqlite3* database() {
    static sqlite3* handle = [] {
        sqlite3* opened = nullptr;
        const bool ready =
            sqlite3_open(":memory:", &opened) == SQLITE_OK &&
            sqlite3_exec(opened, schema().c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
        if (!ready) std::abort();
        return opened;
    }();
    return handle;
}

}  // namespace

bool prepare(const QByteArray& statement) {
    sqlite3_stmt* compiled = nullptr;
    const int result = sqlite3_prepare_v2(database(), statement.constData(), int(statement.size()),
                                          &compiled, nullptr);
    sqlite3_finalize(compiled);
    return result == SQLITE_OK;
}

}  // namespace bench
