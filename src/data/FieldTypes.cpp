// SPDX-License-Identifier: MIT
#include "data/FieldTypes.h"

#include <array>

const CompatibleFields sFloat = {ftFloat, ftCurrency};
const CompatibleFields sNumeric = {ftSmallint, ftInteger, ftWord, ftAutoInc, ftLargeint};
const CompatibleFields sString = {ftString, ftMemo, ftFmtMemo, ftFixedChar, ftWideString};

namespace orv {

namespace {

// Indexed by ordinal.
constexpr std::array<const char*, 30> typeIdentifiers = {
    "ftUnknown",    "ftString",     "ftSmallint", "ftInteger",     "ftWord",      "ftBoolean",
    "ftFloat",      "ftCurrency",   "ftBCD",      "ftDate",        "ftTime",      "ftDateTime",
    "ftBytes",      "ftVarBytes",   "ftAutoInc",  "ftBlob",        "ftMemo",      "ftGraphic",
    "ftFmtMemo",    "ftParadoxOle", "ftDBaseOle", "ftTypedBinary", "ftCursor",    "ftFixedChar",
    "ftWideString", "ftLargeint",   "ftADT",      "ftArray",       "ftReference", "ftDataSet"};

constexpr std::array<const char*, 5> paramIdentifiers = {"ptUnknown", "ptInput", "ptOutput",
                                                         "ptInputOutput", "ptResult"};

template <typename Type, std::size_t size>
std::optional<Type> ordinalOf(const std::array<const char*, size>& identifiers,
                              const QString& text) {
    for (std::size_t ordinal = 0; ordinal < size; ++ordinal) {
        if (text == QLatin1String(identifiers[ordinal])) return static_cast<Type>(ordinal);
    }
    return std::nullopt;
}

}  // namespace

QString fieldTypeDisplayName(TFieldType type) {
    if (sFloat.contains(type)) return QStringLiteral("Float");
    if (sNumeric.contains(type)) return QStringLiteral("Integer");
    if (sString.contains(type)) return QStringLiteral("String");
    switch (type) {
    case ftBoolean: return QStringLiteral("Boolean");
    case ftBCD: return QStringLiteral("BCD");
    case ftDate: return QStringLiteral("Date");
    case ftTime: return QStringLiteral("Time");
    case ftDateTime: return QStringLiteral("Date&&Time");
    case ftBytes: return QStringLiteral("Bytes");
    case ftVarBytes: return QStringLiteral("VarBytes");
    case ftBlob: return QStringLiteral("Blob");
    case ftGraphic: return QStringLiteral("Graphic");
    case ftParadoxOle: return QStringLiteral("ParadoxOle");
    case ftDBaseOle: return QStringLiteral("DBaseOle");
    case ftTypedBinary: return QStringLiteral("Typed binary");
    case ftCursor: return QStringLiteral("Cursor");
    case ftADT: return QStringLiteral("ADT");
    case ftArray: return QStringLiteral("Array");
    case ftReference: return QStringLiteral("Reference");
    case ftDataSet: return QStringLiteral("Data set");
    case ftUnknown:
    case ftString:
    case ftSmallint:
    case ftInteger:
    case ftWord:
    case ftFloat:
    case ftCurrency:
    case ftAutoInc:
    case ftMemo:
    case ftFmtMemo:
    case ftFixedChar:
    case ftWideString:
    case ftLargeint: break;
    }
    return {};
}

std::optional<TFieldType> fieldTypeFromDisplayName(const QString& text) {
    // Of the numbers and texts the plain ones stand for all.
    for (const TFieldType type : {ftString, ftInteger, ftFloat}) {
        if (fieldTypeDisplayName(type) == text) return type;
    }
    for (std::size_t ordinal = 0; ordinal < typeIdentifiers.size(); ++ordinal) {
        const auto type = static_cast<TFieldType>(ordinal);
        if (fieldTypeDisplayName(type) == text) return type;
    }
    return std::nullopt;
}

QString fieldTypeIdentifier(TFieldType type) {
    return type < typeIdentifiers.size() ? QString::fromLatin1(typeIdentifiers[type]) : QString();
}

std::optional<TFieldType> fieldTypeFromIdentifier(const QString& text) {
    return ordinalOf<TFieldType>(typeIdentifiers, text);
}

QString paramTypeIdentifier(TParamType type) {
    return type < paramIdentifiers.size() ? QString::fromLatin1(paramIdentifiers[type]) : QString();
}

std::optional<TParamType> paramTypeFromIdentifier(const QString& text) {
    return ordinalOf<TParamType>(paramIdentifiers, text);
}

}  // namespace orv
