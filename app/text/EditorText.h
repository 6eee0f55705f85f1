// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <vector>

namespace orvquery {

/// A text as an editor holds it, which counts each line break as one character: CR LF, LF or CR.
[[nodiscard]] QString withSingleBreaks(QString text);

/// Finds the places of a text in the same text with single breaks.
class EditorPlaces {
public:
    explicit EditorPlaces(const QString& text);

    [[nodiscard]] int operator()(int position) const;

private:
    std::vector<int> m_dropped;  ///< positions of the line feeds that go, ascending
};

}  // namespace orvquery
