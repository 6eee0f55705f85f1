// SPDX-License-Identifier: MIT
#include "data/DraggedField.h"

#include <QDataStream>
#include <QIODevice>
#include <QMimeData>

namespace orv {

namespace {

const QString fieldFormat = QStringLiteral("application/x-orv-field");
constexpr auto streamVersion = QDataStream::Qt_6_0;

}  // namespace

std::unique_ptr<QMimeData> toMimeData(const DraggedField& field) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(streamVersion);
    stream << field.builder << field.alias << field.field;
    auto data = std::make_unique<QMimeData>();
    data->setData(fieldFormat, bytes);
    data->setText(field.qualifiedName());
    return data;
}

std::optional<DraggedField> draggedField(const QMimeData* data) {
    if (!data || !data->hasFormat(fieldFormat)) return std::nullopt;
    QDataStream stream(data->data(fieldFormat));
    stream.setVersion(streamVersion);
    DraggedField field;
    stream >> field.builder >> field.alias >> field.field;
    return stream.status() == QDataStream::Ok ? std::optional(field) : std::nullopt;
}

}  // namespace orv
