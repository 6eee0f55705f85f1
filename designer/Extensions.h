// SPDX-License-Identifier: MIT
#pragma once

#include <QtDesigner/QExtensionFactory>

namespace orvdesigner {

/// Makes what the form designer asks for a query builder on a form: its task menu and its property
/// sheet. The extension manager owns it.
class Extensions : public QExtensionFactory {
    Q_OBJECT

public:
    /// Gives the manager these extensions, unless it has them from another copy of the plugin.
    static void install(QExtensionManager* manager);

protected:
    [[nodiscard]] QObject* createExtension(QObject* object, const QString& iid,
                                           QObject* parent) const override;

private:
    explicit Extensions(QExtensionManager* manager);

    mutable bool m_asksOthers = false;
};

}  // namespace orvdesigner
