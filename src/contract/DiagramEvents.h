// SPDX-License-Identifier: MIT
#pragma once

#include <QEvent>
#include <QObject>
#include <QPointer>

/// The messages of the work area, as event types of these very numbers; each carries its object.
/// They lie in the range that Qt leaves to programs.
inline constexpr int CMMOVECONTROL = 0xB067;    ///< a box was moved
inline constexpr int CMRESIZECONTROL = 0xB068;  ///< a box changed its size or shape
inline constexpr int CMCLOSETABLE = 0xB069;     ///< close the box
inline constexpr int CMUNLINKTABLE = 0xB06A;    ///< remove the box's links
inline constexpr int CMDELETELINK = 0xB06B;     ///< remove the link
static_assert(CMMOVECONTROL >= QEvent::User && CMDELETELINK <= QEvent::MaxUser);

/// A message about one object of the diagram. A posted one whose object has died meanwhile carries
/// none, and does nothing.
class TorvDiagramEvent : public QEvent {
public:
    TorvDiagramEvent(int message, QObject* object) : QEvent(Type(message)), m_object(object) {}

    [[nodiscard]] QObject* object() const { return m_object; }

private:
    QPointer<QObject> m_object;
};
