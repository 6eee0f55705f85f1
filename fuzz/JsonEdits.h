// SPDX-License-Identifier: MIT
#pragma once

#include "ByteReader.h"

#include <QByteArray>

namespace orvfuzz {

/// The document with changes as the bytes say: parts are dropped, doubled, exchanged and replaced
/// by numbers, texts and structures that do not belong there. It is JSON all the same, which bytes
/// that are changed at random seldom are.
[[nodiscard]] QByteArray editedJson(const QByteArray& json, ByteReader& bytes);

}  // namespace orvfuzz
