// SPDX-License-Identifier: MIT
#include "Targets.h"

namespace orvfuzz {

const QList<Target>& targets() {
    static const QList<Target> all = {parserTarget(), roundtripTarget(), conditionsTarget(),
                                      operatorsTarget(), documentsTarget()};
    return all;
}

}  // namespace orvfuzz
