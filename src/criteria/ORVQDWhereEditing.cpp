// SPDX-License-Identifier: MIT
// The editor in place of a criteria panel.
#include "criteria/ORVQDWherePanel.h"

void TorvQDWherePanel::editText(const TorvQDControl&) {}

void TorvQDWherePanel::commitEdit() {}

void TorvQDWherePanel::discardEdit() {}

void TorvQDWherePanel::HideFieldList() {
    commitEdit();
}

bool TorvQDWherePanel::isEditing() const {
    return false;
}

void TorvQDWherePanel::repositionEditor() {}
