// SPDX-License-Identifier: MIT
#pragma once

#include <QFileDialog>

#include <functional>

namespace orvquery {

/// Asks for a file to write. Its name has the end of the chosen format, also when another format is
/// chosen; an end that a person has typed and that is no format's is a part of the name.
class SaveDialog : public QFileDialog {
    Q_OBJECT

public:
    using IsFormat = std::function<bool(const QString& path)>;

    /// `filters` are the formats, each with one end; `isFormat` tells whether a file's end is one.
    SaveDialog(const QString& title, const QStringList& filters, const IsFormat& isFormat,
               QWidget* parent);

    /// Proposes a name, given without its end, in the format that is chosen by now.
    void propose(const QString& name);

    /// The chosen file; empty when there is none.
    [[nodiscard]] QString file() const { return selectedFiles().value(0); }

private:
    void takeFormat(const QString& filter);

    IsFormat m_isFormat;
};

}  // namespace orvquery
