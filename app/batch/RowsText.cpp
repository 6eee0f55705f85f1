// SPDX-License-Identifier: MIT
#include "batch/RowsText.h"

#include "values/ValueText.h"

#include <QIODevice>

#include <algorithm>
#include <array>
#include <cmath>

namespace orvquery {

namespace {

constexpr std::size_t mostTableRows = 10000;

// First and last of the blocks that terminals show in two columns: Hangul, Han, kana, full-width
// forms and pictures (Unicode's East Asian Width, block by block).
constexpr std::array<std::pair<char32_t, char32_t>, 9> wideBlocks = {{{0x1100, 0x115f},
                                                                      {0x2e80, 0x303e},
                                                                      {0x3041, 0xa4cf},
                                                                      {0xac00, 0xd7a3},
                                                                      {0xf900, 0xfaff},
                                                                      {0xfe30, 0xfe6f},
                                                                      {0xff00, 0xff60},
                                                                      {0x1f300, 0x1faff},
                                                                      {0x20000, 0x3fffd}}};

int characterWidth(char32_t character) {
    const QChar::Category category = QChar::category(character);
    if (category == QChar::Mark_NonSpacing || category == QChar::Mark_Enclosing ||
        category == QChar::Other_Format) {
        return 0;
    }
    const bool isWide = std::any_of(wideBlocks.begin(), wideBlocks.end(), [&](const auto& block) {
        return character >= block.first && character <= block.second;
    });
    return isWide ? 2 : 1;
}

bool isBytes(const QVariant& value) {
    return value.metaType().id() == QMetaType::QByteArray && !value.toByteArray().isEmpty();
}

// As exactText has them, without the detour over a text of twice the size.
QByteArray exactBytes(const QVariant& value) {
    return value.toByteArray().toHex();
}

// Columns in line under their names.
class TableWriter : public RowWriter {
public:
    explicit TableWriter(QIODevice& device) : m_device(device) {}

    void begin(const QStringList& columns) override { m_rows.begin(columns); }
    bool row(const Row& values) override { return m_rows.row(values); }
    void finish() override;

private:
    struct Column {
        int width = 0;
        bool isNumeric = false;
    };

    [[nodiscard]] Column measured(int column) const;
    void writeLine(const QStringList& cells, const std::vector<Column>& columns);
    [[nodiscard]] QString countLine() const;

    QIODevice& m_device;
    RowCollector m_rows{mostTableRows};
};

void TableWriter::finish() {
    std::vector<Column> columns;
    QStringList rule;
    for (int column = 0; column < m_rows.columns().size(); ++column) {
        columns.push_back(measured(column));
        rule += QString(columns.back().width, u'-');
    }
    writeLine(m_rows.columns(), columns);
    writeLine(rule, columns);
    for (const Row& values : m_rows.rows()) {
        QStringList cells;
        for (const QVariant& value : values) cells += shownText(value);
        writeLine(cells, columns);
    }
    m_device.write(countLine().toUtf8());
}

TableWriter::Column TableWriter::measured(int column) const {
    Column result{displayWidth(m_rows.columns()[column]), false};
    bool isText = false;
    for (const Row& values : m_rows.rows()) {
        const QVariant& value = values[column];
        result.width = std::max(result.width, displayWidth(shownText(value)));
        result.isNumeric = result.isNumeric || isNumber(value);
        isText = isText || !(value.isNull() || isNumber(value));
    }
    result.isNumeric = result.isNumeric && !isText;
    return result;
}

void TableWriter::writeLine(const QStringList& cells, const std::vector<Column>& columns) {
    QString line;
    for (int column = 0; column < cells.size(); ++column) {
        if (column > 0) line += QStringLiteral("  ");
        const auto& shape = columns[static_cast<std::size_t>(column)];
        const QString padding(shape.width - displayWidth(cells[column]), u' ');
        line += shape.isNumeric ? padding + cells[column] : cells[column] + padding;
    }
    while (line.endsWith(u' ')) line.chop(1);
    m_device.write((line + u'\n').toUtf8());
}

QString TableWriter::countLine() const {
    const std::size_t count = m_rows.rows().size();
    if (m_rows.isCut()) {
        return QStringLiteral("(the first %1 rows; there are more)\n").arg(count);
    }
    return count == 1 ? QStringLiteral("(1 row)\n") : QStringLiteral("(%1 rows)\n").arg(count);
}

// RFC 4180: values with the separator, a quote or a line break stand in quotes. Spreadsheets take
// the same with tabs.
class SeparatedWriter : public RowWriter {
public:
    SeparatedWriter(QIODevice& device, QChar separator, const char* lineEnd)
        : m_device(device), m_separator(separator), m_lineEnd(lineEnd) {}

    void begin(const QStringList& columns) override { write(Row(columns.begin(), columns.end())); }
    bool row(const Row& values) override {
        write(values);
        return true;
    }
    void finish() override {}

private:
    void write(const Row& values) {
        // Each by itself: together, large values would take their memory once more.
        for (qsizetype column = 0; column < values.size(); ++column) {
            if (column > 0) m_device.write(QString(m_separator).toUtf8());
            m_device.write(cell(values[column]));
        }
        m_device.write(m_lineEnd);
    }

    [[nodiscard]] QByteArray cell(const QVariant& value) const {
        if (isBytes(value)) return exactBytes(value);
        QString text = exactText(value);
        const bool isPlain = std::none_of(text.cbegin(), text.cend(), [this](QChar character) {
            return character == m_separator || character == u'"' || character == u'\r' ||
                   character == u'\n';
        });
        if (isPlain && (!text.isEmpty() || value.isNull())) return text.toUtf8();
        text.replace(u'"', QStringLiteral("\"\""));
        return (u'"' + text + u'"').toUtf8();
    }

    QIODevice& m_device;
    QChar m_separator;
    const char* m_lineEnd;
};

QString jsonString(const QString& text) {
    QString result = QStringLiteral("\"");
    for (const QChar character : text) {
        if (character == u'"' || character == u'\\') {
            result += u'\\';
            result += character;
        } else if (character < u' ') {
            result += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
        } else {
            result += character;
        }
    }
    return result + u'"';
}

QByteArray jsonValue(const QVariant& value) {
    if (value.isNull()) return "null";
    if (value.metaType().id() == QMetaType::Bool) return value.toBool() ? "true" : "false";
    if (isBytes(value)) return '"' + exactBytes(value) + '"';
    if (!isNumber(value)) return jsonString(exactText(value)).toUtf8();
    // JSON has no number for these, and many readers refuse one that is too large.
    const double number = value.toDouble();
    if (std::isnan(number)) return "\"NaN\"";
    if (std::isinf(number)) return number < 0 ? "\"-Infinity\"" : "\"Infinity\"";
    return exactText(value).toUtf8();
}

// A list with one object a row.
class JsonWriter : public RowWriter {
public:
    explicit JsonWriter(QIODevice& device) : m_device(device) {}

    void begin(const QStringList& columns) override {
        m_device.write("[");
        for (const QString& column : columns) m_keys += jsonString(freeKey(column));
    }

    bool row(const Row& values) override {
        m_device.write(m_isFirst ? "\n  {" : ",\n  {");
        m_isFirst = false;
        for (int column = 0; column < values.size(); ++column) {
            m_device.write((column > 0 ? ", " : "") + m_keys[column].toUtf8() + ": ");
            m_device.write(jsonValue(values[column]));
        }
        m_device.write("}");
        return true;
    }

    void finish() override { m_device.write(m_isFirst ? "]\n" : "\n]\n"); }

private:
    // Most readers keep one of two values with the same key.
    QString freeKey(const QString& column) {
        QString key = column;
        for (int number = 2; m_taken.contains(key); ++number) {
            key = QStringLiteral("%1_%2").arg(column).arg(number);
        }
        m_taken += key;
        return key;
    }

    QIODevice& m_device;
    QStringList m_keys;
    QStringList m_taken;
    bool m_isFirst = true;
};

}  // namespace

int displayWidth(const QString& text) {
    int width = 0;
    const QList<uint> characters = text.toUcs4();
    for (const uint character : characters) width += characterWidth(character);
    return width;
}

std::unique_ptr<RowWriter> makeRowWriter(RowFormat format, QIODevice& device) {
    switch (format) {
    case RowFormat::Table: return std::make_unique<TableWriter>(device);
    case RowFormat::Csv: return std::make_unique<SeparatedWriter>(device, u',', "\r\n");
    case RowFormat::Tsv: return std::make_unique<SeparatedWriter>(device, u'\t', "\n");
    case RowFormat::Json: return std::make_unique<JsonWriter>(device);
    }
    Q_UNREACHABLE();
}

}  // namespace orvquery
