// SPDX-License-Identifier: MIT
#pragma once

#include <QLocale>

namespace orvtest {

/// The user's language for as long as it lives.
class LocaleScope {
public:
    explicit LocaleScope(const QLocale& locale) { QLocale::setDefault(locale); }
    ~LocaleScope() { QLocale::setDefault(m_old); }
    LocaleScope(const LocaleScope&) = delete;
    LocaleScope& operator=(const LocaleScope&) = delete;

private:
    QLocale m_old;
};

}  // namespace orvtest
