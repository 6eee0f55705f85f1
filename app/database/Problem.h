// SPDX-License-Identifier: MIT
#pragma once

#include "core/Error.h"

#include <QString>

#include <exception>

namespace orvquery {

/// Runs the body and gives the sentence of what it raises; an empty one when it raises nothing.
template <typename Body>
[[nodiscard]] QString problemOf(Body&& body) {
    try {
        body();
        return {};
    } catch (const orv::Error& error) {
        return error.Message();
    } catch (const std::exception& error) {
        return QString::fromUtf8(error.what());
    } catch (...) {
        return QStringLiteral("It failed for an unknown reason.");
    }
}

}  // namespace orvquery
