// SPDX-License-Identifier: MIT
#pragma once

#include "differences/Differences.h"

#include <QDialog>
#include <QPixmap>

class TorvQDWorkArea;

namespace orvquery {

/// The diagram as a picture in which boxes, the rows of output columns and the links of joins that
/// differ are marked, by a colour and by a word or sign.
/// `isBefore` tells whose boxes these are; the state is that of the diagram as it lies now.
[[nodiscard]] QPixmap markedDiagram(const TorvQDWorkArea& diagram, const orv::QueryState& state,
                                    const std::vector<Difference>& differences, bool isBefore,
                                    qreal pixelRatio);

/// Shows in what two queries differ: in words, and on both diagrams side by side.
class CompareDialog : public QDialog {
    Q_OBJECT

public:
    /// One of the two queries.
    struct Side {
        QString title;
        QPixmap diagram;  ///< null when there is nothing to show
        QString note;     ///< what the diagram could not hold; empty when nothing
    };

    CompareDialog(const Side& before, const Side& after, const std::vector<Difference>& differences,
                  QWidget* parent = nullptr);

private:
    [[nodiscard]] QWidget* makeSide(const Side& side, const char* name);
};

}  // namespace orvquery
