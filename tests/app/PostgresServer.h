// SPDX-License-Identifier: MIT
#pragma once

#include "TestServer.h"

/// A PostgreSQL server for one test program.
class PostgresServer : public TestServer {
public:
    PostgresServer();

    /// What is missing to start one; empty when nothing is.
    [[nodiscard]] static QString whatIsMissing();

protected:
    bool initialise() override;
    void prepare(QProcess& server) const override;
};
