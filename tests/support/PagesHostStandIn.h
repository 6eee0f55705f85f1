// SPDX-License-Identifier: MIT
#pragma once

#include "catalogue/ORVQDOptions.h"
#include "contract/IPagesHost.h"

#include <QList>
#include <QPixmap>
#include <QWidget>

#include <algorithm>
#include <utility>

namespace orvtest {

/// Stands in for the query builder in tests of widgets that lie on its pages: a widget with tables
/// that the test names. It counts what it is told.
class PagesHostStandIn : public QWidget, public IPagesHost {
public:
    PagesHostStandIn() {
        setFocusPolicy(Qt::StrongFocus);
        for (const Qt::GlobalColor colour : {Qt::darkBlue, Qt::darkGreen}) {
            QPixmap picture(16, 16);
            picture.fill(colour);
            m_images << QIcon(picture);
        }
    }

    void addTable(const QString& alias, const QStringList& fields, TFieldType type = ftString) {
        std::vector<PageField> rows;
        for (const QString& field : fields) rows.push_back({alias, field, type});
        m_tables.push_back({alias, rows});
    }
    void removeTables() { m_tables.clear(); }

    [[nodiscard]] QStringList tableAliases() const override {
        QStringList aliases;
        for (const auto& table : m_tables) aliases << table.first;
        return aliases;
    }
    [[nodiscard]] std::vector<PageField> fieldsOf(const QString& alias) const override {
        for (const auto& table : m_tables) {
            if (table.first == alias) return table.second;
        }
        return {};
    }
    [[nodiscard]] std::optional<PageField> resolveField(const QString& text) const override {
        const std::vector<PageField> found = fieldsNamed(text);
        return found.size() == 1 ? std::optional(found.front()) : std::nullopt;
    }
    [[nodiscard]] bool isAmbiguous(const QString& text) const override {
        return fieldsNamed(text).size() > 1;
    }
    [[nodiscard]] QString nameProblem(const QString&) const override { return {}; }
    [[nodiscard]] quint64 dragIdentity() const override { return 1; }
    [[nodiscard]] const TorvQDConditionOptions& conditionOptions() const override {
        return m_options;
    }
    [[nodiscard]] const QList<QIcon>& fieldImages() const override { return m_images; }
    [[nodiscard]] bool KeepMeaning() const override { return false; }
    [[nodiscard]] orv::LoadLedger* ledger() override { return nullptr; }
    void beginChange() override { ++openChanges; }
    void endChange() override { --openChanges; }
    void statementChanged() override { ++changes; }

    int openChanges = 0;
    int changes = 0;

private:
    // By the qualified name, or by the name alone.
    [[nodiscard]] std::vector<PageField> fieldsNamed(const QString& text) const {
        std::vector<PageField> found;
        for (const auto& table : m_tables) {
            std::copy_if(table.second.begin(), table.second.end(), std::back_inserter(found),
                         [&](const PageField& field) {
                             return field.qualifiedName() == text || field.name == text;
                         });
        }
        return found;
    }

    std::vector<std::pair<QString, std::vector<PageField>>> m_tables;
    TorvQDConditionOptions m_options;
    QList<QIcon> m_images;
};

}  // namespace orvtest
