// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QString>

#include <bitset>
#include <optional>

/// The data type of a field or parameter. The ordinals are fixed: programs store them.
enum TFieldType : quint8 {
    ftUnknown = 0,
    ftString,
    ftSmallint,
    ftInteger,
    ftWord,
    ftBoolean,
    ftFloat,
    ftCurrency,
    ftBCD,
    ftDate,
    ftTime,
    ftDateTime,
    ftBytes,
    ftVarBytes,
    ftAutoInc,
    ftBlob,
    ftMemo,
    ftGraphic,
    ftFmtMemo,
    ftParadoxOle,
    ftDBaseOle,
    ftTypedBinary,
    ftCursor,
    ftFixedChar,
    ftWideString,
    ftLargeint,
    ftADT,
    ftArray,
    ftReference,
    ftDataSet
};
static_assert(ftUnknown == 0 && ftString == 1 && ftSmallint == 2 && ftInteger == 3 && ftWord == 4);
static_assert(ftBoolean == 5 && ftFloat == 6 && ftCurrency == 7 && ftBCD == 8 && ftDate == 9);
static_assert(ftTime == 10 && ftDateTime == 11 && ftBytes == 12 && ftVarBytes == 13);
static_assert(ftAutoInc == 14 && ftBlob == 15 && ftMemo == 16 && ftGraphic == 17);
static_assert(ftFmtMemo == 18 && ftParadoxOle == 19 && ftDBaseOle == 20 && ftTypedBinary == 21);
static_assert(ftCursor == 22 && ftFixedChar == 23 && ftWideString == 24 && ftLargeint == 25);
static_assert(ftADT == 26 && ftArray == 27 && ftReference == 28 && ftDataSet == 29);

/// The direction of a parameter. Rows of an ordinary table are all ptOutput.
enum TParamType : quint8 {
    ptUnknown = 0,
    ptInput = 1,
    ptOutput = 2,
    ptInputOutput = 3,
    ptResult = 4
};
static_assert(ptUnknown == 0 && ptInput == 1 && ptOutput == 2 && ptInputOutput == 3);
static_assert(ptResult == 4);

/// A set of field types.
class ORV_EXPORT CompatibleFields {
public:
    /// The set of these types.
    CompatibleFields(std::initializer_list<TFieldType> types) {
        for (const TFieldType type : types) m_types.set(type);
    }
    /// Whether the type is one of them.
    [[nodiscard]] bool contains(TFieldType type) const {
        return type < m_types.size() && m_types[type];
    }

private:
    std::bitset<32> m_types;
};

/// The sets by which the types of two sides of a condition are compatible.
ORV_EXPORT extern const CompatibleFields sFloat;
ORV_EXPORT extern const CompatibleFields sNumeric;
ORV_EXPORT extern const CompatibleFields sString;

namespace orv {

/// What a person reads for the type ("Integer"); empty for ftUnknown. The date-time text is
/// "Date&&Time": the doubled ampersand is part of it.
[[nodiscard]] ORV_EXPORT QString fieldTypeDisplayName(TFieldType type);

/// The first type that is displayed so; types with one display name are compatible with one
/// another.
[[nodiscard]] ORV_EXPORT std::optional<TFieldType> fieldTypeFromDisplayName(const QString& text);

/// The identifier of the type as it stands in schema files ("ftInteger"), and back.
[[nodiscard]] ORV_EXPORT QString fieldTypeIdentifier(TFieldType type);
[[nodiscard]] ORV_EXPORT std::optional<TFieldType> fieldTypeFromIdentifier(const QString& text);

/// The identifier of the direction as it stands in schema files ("ptInput"), and back.
[[nodiscard]] ORV_EXPORT QString paramTypeIdentifier(TParamType type);
[[nodiscard]] ORV_EXPORT std::optional<TParamType> paramTypeFromIdentifier(const QString& text);

}  // namespace orv
