// SPDX-License-Identifier: MIT
#pragma once

#include "querybuilder/ORVQDWindow.h"

namespace orvdesigner {

/// The query builder on a form that is being designed: its pages are empty, and words stand in the
/// place of the diagram. For the form designer it is a TorvQueryBuilder like any other, so it has
/// no meta object of its own.
class DesignedQueryBuilder : public TorvQueryBuilder {
public:
    explicit DesignedQueryBuilder(QWidget* parent);
};

}  // namespace orvdesigner
