// SPDX-License-Identifier: MIT
#include "DesignedQueryBuilder.h"

#include <QLabel>
#include <QSplitter>

namespace orvdesigner {

DesignedQueryBuilder::DesignedQueryBuilder(QWidget* parent) : TorvQueryBuilder(parent, true) {
    auto* place = new QLabel(QStringLiteral("Tables and their links appear here at run time"));
    place->setObjectName(QStringLiteral("DiagramPlace"));
    place->setAlignment(Qt::AlignCenter);
    place->setWordWrap(true);
    place->setForegroundRole(QPalette::PlaceholderText);
    place->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    place->setMinimumSize(1, 1);
    Splitter->insertWidget(0, place);
    Splitter->setStretchFactor(0, 1);
    Splitter->setStretchFactor(1, 0);
    // The dots of the form's grid end at the control.
    Splitter->setAutoFillBackground(true);
}

}  // namespace orvdesigner
