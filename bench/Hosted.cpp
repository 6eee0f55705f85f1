// SPDX-License-Identifier: MIT
#include "Hosted.h"

namespace bench {

TDataSet fields(int count, const QString& stem) {
    TDataSet dataSet;
    for (int field = 0; field < count; ++field) {
        dataSet.FieldDefs.push_back({stem + QString::number(field), ftInteger});
    }
    return dataSet;
}

Hosted::Hosted(int fieldCount) {
    builder.setKeepMeaning(true);
    builder.OnGetTableFields = [fieldCount](const QString& name, std::unique_ptr<TDataSet>& dataSet,
                                            std::unique_ptr<TParams>&) {
        if (name == u"T") {
            dataSet = std::make_unique<TDataSet>(fields(fieldCount));
            return;
        }
        dataSet = std::make_unique<TDataSet>();
        dataSet->FieldDefs = {{QStringLiteral("ID"), ftInteger},
                              {QStringLiteral("PARENT"), ftInteger},
                              {QStringLiteral("NAME"), ftString},
                              {QStringLiteral("AMOUNT"), ftFloat}};
    };
}

bool Hosted::load(const QString& text) {
    builder.LoadSQL(text);
    return builder.LoadReport().empty();
}

}  // namespace bench
