// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"

#include <QFrame>

/// Base of the query builder as the work area knows it. It carries no state.
class ORV_EXPORT TorvPreBuilder : public QFrame {
    Q_OBJECT

public:
    /// An empty frame; the parent owns it.
    explicit TorvPreBuilder(QWidget* parent = nullptr);
    ~TorvPreBuilder() override;
};

/// Base of the query builder as the table boxes know it. It carries no state.
class ORV_EXPORT TorvBuilder : public TorvPreBuilder {
    Q_OBJECT

public:
    /// An empty frame; the parent owns it.
    explicit TorvBuilder(QWidget* parent = nullptr);
    ~TorvBuilder() override;
};
