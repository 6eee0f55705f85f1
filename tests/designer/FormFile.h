// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace orvtest {

/// The properties of the widgets of a class as a form holds them: by name, each with the text of
/// its element, less the space between elements.
inline QMap<QString, QString> writtenProperties(const QString& ui, const QString& className) {
    QMap<QString, QString> properties;
    QXmlStreamReader xml(ui);
    bool isInside = false;
    while (!xml.atEnd()) {
        xml.readNext();
        if (!xml.isStartElement()) continue;
        if (xml.name() == QLatin1String("widget")) {
            isInside = xml.attributes().value(QLatin1String("class")) == className;
        }
        if (!isInside || xml.name() != QLatin1String("property")) continue;
        const QString name = xml.attributes().value(QLatin1String("name")).toString();
        QString text;
        QXmlStreamWriter writer(&text);
        for (int depth = 1; depth > 0 && !xml.atEnd();) {
            xml.readNext();
            if (xml.isStartElement()) ++depth;
            if (xml.isEndElement()) --depth;
            if (depth == 0 || (xml.isCharacters() && xml.isWhitespace())) continue;
            // An empty element is written as two tags, like any other.
            if (xml.isEndElement()) writer.writeCharacters({});
            writer.writeCurrentToken(xml);
        }
        properties.insert(name, text);
    }
    return properties;
}

}  // namespace orvtest
