// SPDX-License-Identifier: MIT
#pragma once

#include "TestServer.h"

/// A MariaDB server for one test program.
class MariadbServer : public TestServer {
public:
    MariadbServer();

    /// What is missing to start one; empty when nothing is.
    [[nodiscard]] static QString whatIsMissing();

protected:
    bool initialise() override;
    void prepare(QProcess& server) const override;
};
