// SPDX-License-Identifier: MIT
#include "contract/IPagesHost.h"

#include <QWidget>

namespace orv {

IPagesHost* pagesHostAbove(const QWidget* page) {
    for (QWidget* widget = page->parentWidget(); widget; widget = widget->parentWidget()) {
        if (auto* host = dynamic_cast<IPagesHost*>(widget)) return host;
    }
    return nullptr;
}

}  // namespace orv
