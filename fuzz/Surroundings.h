// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

class QApplication;

namespace orvfuzz {

/// What the control finds around itself in a fuzzer: an application without a display, and nobody
/// who answers message boxes. Owned by the entry; there is one.
class Surroundings {
public:
    Surroundings(bool hasWidgets, char* program);
    ~Surroundings();
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

private:
    int m_argumentCount = 1;
    char* m_arguments[2];
    std::unique_ptr<QApplication> m_application;
};

}  // namespace orvfuzz
