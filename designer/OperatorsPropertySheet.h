// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QtDesigner/QDesignerPropertySheetExtension>

class TorvQueryBuilder;

namespace orvdesigner {

/// The properties of a query builder on a form: those of the form designer's own sheet, but the
/// operators, which are written into the form only when they are others than the defaults and
/// there are any. The form designer's extension manager owns it.
class OperatorsPropertySheet : public QObject, public QDesignerPropertySheetExtension {
    Q_OBJECT
    Q_INTERFACES(QDesignerPropertySheetExtension)

public:
    /// `sheet` is the designer's own, which lives as long as the builder; borrowed.
    OperatorsPropertySheet(TorvQueryBuilder* builder, QDesignerPropertySheetExtension* sheet,
                           QObject* parent);

    [[nodiscard]] int count() const override;
    [[nodiscard]] int indexOf(const QString& name) const override;
    [[nodiscard]] QString propertyName(int index) const override;
    [[nodiscard]] QString propertyGroup(int index) const override;
    void setPropertyGroup(int index, const QString& group) override;
    [[nodiscard]] bool hasReset(int index) const override;
    bool reset(int index) override;
    [[nodiscard]] bool isVisible(int index) const override;
    void setVisible(int index, bool visible) override;
    [[nodiscard]] bool isAttribute(int index) const override;
    void setAttribute(int index, bool attribute) override;
    [[nodiscard]] QVariant property(int index) const override;
    void setProperty(int index, const QVariant& value) override;
    [[nodiscard]] bool isChanged(int index) const override;
    void setChanged(int index, bool changed) override;
    [[nodiscard]] bool isEnabled(int index) const override;

private:
    [[nodiscard]] bool isOperators(int index) const;

    TorvQueryBuilder* m_builder;
    QDesignerPropertySheetExtension* m_sheet;
};

}  // namespace orvdesigner
