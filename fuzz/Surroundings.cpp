// SPDX-License-Identifier: MIT
#include "Surroundings.h"

#include <QApplication>

namespace orvfuzz {

Surroundings::Surroundings(bool hasWidgets, char* program) : m_arguments{program, nullptr} {
    if (!hasWidgets) return;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    m_application = std::make_unique<QApplication>(m_argumentCount, m_arguments);
}

Surroundings::~Surroundings() = default;

}  // namespace orvfuzz
