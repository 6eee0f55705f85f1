// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QtDesigner/QDesignerPropertySheetExtension>

class TorvQueryBuilder;

namespace orvdesigner {

/// The properties of a query builder on a form: those of the form designer's own sheet, with what
/// only the control knows. Operators are written into the form when they are others than the
/// defaults and there are any, the text behind the statement when there is one, the height of the
/// pages when it is not the first one, to which the property alone cannot go back. The form
/// designer's extension manager owns it.
///
/// Operators and the text behind the statement are SQL, nothing to translate. A control from the
/// widget box says so; the designer's sheet keeps that beside the value, out of reach, so operators
/// are set past it.
class QueryBuilderSheet : public QObject, public QDesignerPropertySheetExtension {
    Q_OBJECT
    Q_INTERFACES(QDesignerPropertySheetExtension)

public:
    /// `sheet` is the designer's own, which lives as long as the builder; borrowed.
    QueryBuilderSheet(TorvQueryBuilder* builder, QDesignerPropertySheetExtension* sheet,
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
    [[nodiscard]] bool is(const char* name, int index) const;
    void setOperators(const QStringList& texts);

    TorvQueryBuilder* m_builder;
    QDesignerPropertySheetExtension* m_sheet;
};

}  // namespace orvdesigner
