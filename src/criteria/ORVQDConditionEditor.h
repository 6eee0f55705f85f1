// SPDX-License-Identifier: MIT
#pragma once

#include "core/Export.h"
#include "criteria/ORVQDFieldEdit.h"
#include "criteria/ORVQDFieldList.h"
#include "criteria/ORVQDWhereRows.h"

#include <QPointer>
#include <QSize>

class TorvQDWherePanel;

namespace orv {

/// Edits a field or an argument of a criteria panel in place: a text over the element, and on
/// demand the list of fields beside it. It remembers its element by a handle: rows may go while it
/// is open. What it tells the host may end in the destruction of the panel, and of this with it.
/// Owned by the panel.
class ORV_EXPORT ConditionEditor {
public:
    explicit ConditionEditor(TorvQDWherePanel& panel);
    ~ConditionEditor();
    ConditionEditor(const ConditionEditor&) = delete;
    ConditionEditor& operator=(const ConditionEditor&) = delete;

    /// Opens over an element whose text is typed, and takes over what was being typed elsewhere.
    void open(const TorvQDControl& element);
    /// Closes, and takes over the text into the element that it was opened for, if that is still
    /// there.
    void commit();
    /// Closes without taking over anything.
    void discard();
    [[nodiscard]] bool isOpen() const { return m_isOpen; }

    /// Shows the list of fields beside the open editor and gives it the focus.
    void showFieldList();
    /// Hides the list of fields, and goes on with the text.
    void hideFieldList();
    [[nodiscard]] bool isFieldListOpen() const;
    /// Puts a field in the place of the selection, and goes on with the text.
    void insertField(const QString& qualifiedName);
    /// Somebody else has the focus: the edit is over. The panel takes the focus from nobody and
    /// from what lies in it.
    void leaveTo(QWidget* newFocus);

    /// Follows the rows and the size of the view. An editor whose element has gone closes.
    void fit();
    /// Follows the text, too: the view scrolls to show what is typed.
    void followText();
    /// Follows the scroll position.
    void place();
    /// The room that the editor needs, in pixels of the content; empty when it is closed.
    [[nodiscard]] QSize contentExtent() const;

    [[nodiscard]] TMemoEx& memo() const { return *m_memo; }
    [[nodiscard]] FieldList& fieldList() const { return *m_list; }

private:
    void close();
    void placeList();
    void scrollIn();

    TorvQDWherePanel& m_panel;
    QPointer<TMemoEx> m_memo;
    QPointer<FieldList> m_list;
    ElementRef m_element;
    QSize m_size;  // of the text, in pixels
    bool m_isOpen = false;
};

}  // namespace orv
