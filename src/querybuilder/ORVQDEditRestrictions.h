// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <initializer_list>

/// Edits of the operator catalogue that a host may forbid.
enum ORVQDWindow__1 : quint8 { erAdd = 0, erDelete = 1, erName = 2, erArgument = 3 };
static_assert(erAdd == 0 && erDelete == 1 && erName == 2 && erArgument == 3);

/// A set of forbidden edits: {erAdd, erDelete}. The empty one allows everything.
class TEditRestrictions {
public:
    /// No restriction, one, or several.
    constexpr TEditRestrictions() = default;
    constexpr TEditRestrictions(ORVQDWindow__1 edit) : m_bits(bitOf(edit)) {}
    constexpr TEditRestrictions(std::initializer_list<ORVQDWindow__1> edits) {
        for (const ORVQDWindow__1 edit : edits) m_bits = quint8(m_bits | bitOf(edit));
    }

    /// Whether that edit is forbidden.
    [[nodiscard]] constexpr bool contains(ORVQDWindow__1 edit) const {
        return (m_bits & bitOf(edit)) != 0;
    }
    /// Whether everything is allowed.
    [[nodiscard]] constexpr bool isEmpty() const { return m_bits == 0; }

    /// What either of the two forbids.
    friend constexpr TEditRestrictions operator|(TEditRestrictions left, TEditRestrictions right) {
        left.m_bits = quint8(left.m_bits | right.m_bits);
        return left;
    }
    /// Equal when they forbid the same.
    friend constexpr bool operator==(const TEditRestrictions&, const TEditRestrictions&) = default;

private:
    // The members are ordinals, not masks.
    static constexpr quint8 bitOf(ORVQDWindow__1 edit) { return quint8(1U << edit); }

    quint8 m_bits = 0;
};

/// A set of two forbidden edits.
constexpr TEditRestrictions operator|(ORVQDWindow__1 left, ORVQDWindow__1 right) {
    return TEditRestrictions(left) | TEditRestrictions(right);
}
