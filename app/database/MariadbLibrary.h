// SPDX-License-Identifier: MIT
#pragma once

namespace orvquery {

/// MYSQL_FIELD, as mysql.h has it.
struct MariadbField {
    const char* names[7];  ///< the first is the one in the result
    unsigned long lengths[2];
    unsigned nameLengths[7];
    unsigned flags;
    unsigned decimals;
    unsigned characterSet;
    int type;

    /// Whether the value is a text, though one that is compared byte by byte, like JSON; bytes
    /// alone have the character set "binary".
    [[nodiscard]] bool isText() const { return characterSet != 63; }
};

/// Functions of MariaDB's library, which the driver has loaded already. Connections (MYSQL) and
/// results (MYSQL_RES) are a struct st_mysql and a struct st_mysql_res there.
struct MariadbLibrary {
    int (*realQuery)(void* connection, const char* text, unsigned long length) = nullptr;
    void* (*useResult)(void* connection) = nullptr;
    char** (*fetchRow)(void* result) = nullptr;
    unsigned long* (*fetchLengths)(void* result) = nullptr;
    unsigned (*fieldCount)(void* result) = nullptr;
    MariadbField* (*field)(void* result, unsigned column) = nullptr;
    void (*freeResult)(void* result) = nullptr;
    unsigned (*errorNumber)(void* connection) = nullptr;
    const char* (*errorText)(void* connection) = nullptr;

    [[nodiscard]] bool isWhole() const;
};

/// The library of this process; what is not found is null.
[[nodiscard]] const MariadbLibrary& mariadbLibrary();

}  // namespace orvquery
