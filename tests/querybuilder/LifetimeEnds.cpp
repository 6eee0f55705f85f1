// SPDX-License-Identifier: MIT
#include "querybuilder/LifetimeEnds.h"

#include "contract/DiagramEvents.h"

namespace orvtest {

namespace {

void closeByMenu(Scene& on) {
    on.choose(*on.box, htTCaption, "Delete table");
}

void closeInAVeto(Scene& on) {
    on.builder->OnAddRemoveTable = [&on](QObject*, TorvQDTable* table, TAddRemove action, bool&) {
        if (action == araAdd && on.box && table != on.box) {
            on.builder->ListOfTables->DeleteTable(on.box);
        }
    };
    on.builder->ListOfTables->AddTable("DEPT", on.host.table("DEPT"));
    on.builder->OnAddRemoveTable = nullptr;
}

void closeInAVetoOfALink(Scene& on) {
    on.builder->OnAddRemoveLink = [&on](QObject*, TorvQDLink*, TAddRemove, bool&) {
        on.builder->ListOfTables->DeleteTable(on.box);
    };
    TorvQDTable* wide = on.table("WIDE");
    on.area()->AddLink(on.box, wide, on.box->GetFieldItem("B"), wide->GetFieldItem("W1"));
    on.builder->OnAddRemoveLink = nullptr;
}

void closeInKeyDown(Scene& on) {
    on.area()->selectObject(on.box);
    if (!on.box) return;
    on.box->OnKeyDown = [&on](QObject*, int&, Qt::KeyboardModifiers) {
        on.builder->ListOfTables->DeleteTable(on.box);
    };
    on.key(Qt::Key_Down);
}

void closeInMouseDown(Scene& on) {
    on.box->OnMouseDown = [&on](QObject*, Qt::MouseButton, Qt::KeyboardModifiers, int, int) {
        on.builder->ListOfTables->DeleteTable(on.box);
    };
    on.area()->TableToFront(on.box);
    on.press(Scene::captionOf(*on.box));
}

void closeInMouseMove(Scene& on) {
    on.box->OnMouseMove = [&on](QObject*, Qt::KeyboardModifiers, int, int) {
        on.builder->ListOfTables->DeleteTable(on.box);
    };
    on.area()->TableToFront(on.box);
    on.move(Scene::captionOf(*on.box));
    if (on.box) on.move(Scene::captionOf(*on.box), Qt::NoButton);
}

// A modal box of the host, in whose event loop what was removed dies while the event goes on.
void closeAndWaitInMouseMove(Scene& on) {
    on.box->OnMouseMove = [&on](QObject*, Qt::KeyboardModifiers, int, int) {
        on.builder->ListOfTables->DeleteTable(on.box);
        runLoopOnce();
        runLoopOnce();
    };
    on.area()->TableToFront(on.box);
    on.move(Scene::captionOf(*on.box));
    if (on.box) on.move(Scene::captionOf(*on.box), Qt::NoButton);
}

void clear(Scene& on) {
    on.builder->Clear();
}

void load(Scene& on) {
    on.builder->LoadSQL("SELECT BUDGET FROM DEPT");
}

void restore(Scene& on) {
    orvtest::HostedBuilder other;
    other.addTable("T");
    other.tick("T", "C");
    on.builder->RestoreState(other.builder.SaveState());
}

void deleteTable(Scene& on) {
    on.builder->ListOfTables->DeleteTable(on.box);
}

void deleteLinkByMenu(Scene& on) {
    const auto old =
        orv::setMessageService([](const orv::MessageRequest&) { return orv::MessageAnswer::Yes; });
    on.choose(*on.link, htTClient, "Delete link");
    orv::setMessageService(old);
    QCoreApplication::sendPostedEvents(on.area(), CMDELETELINK);
}

void unlink(Scene& on) {
    on.box->UnlinkTable();
}

// The handler that is told of the link's end has the same link deleted once more.
void deleteLinkTwice(Scene& on) {
    on.area()->OnRemoveLink = [&on](QObject*, QObject* link) {
        on.area()->deleteLink(qobject_cast<TorvQDLink*>(link));
    };
    on.area()->deleteLink(on.link);
    on.area()->OnRemoveLink = nullptr;
}

void closeWhenDeselected(Scene& on) {
    if (!on.link) return deleteTable(on);
    on.area()->selectObject(on.link);
    on.area()->OnSelectionLink = [&on](QObject*, TorvQDTable*, TorvQDTable*, TorvQDListItem*,
                                       TorvQDListItem*, bool selected) {
        if (!selected && on.box) on.builder->ListOfTables->DeleteTable(on.box);
    };
    on.area()->selectObject(on.box);
    on.area()->OnSelectionLink = nullptr;
}

void deleteBuilder(Scene& on) {
    delete on.builder;
}

void deleteBuilderLater(Scene& on) {
    on.builder->deleteLater();
    QCoreApplication::sendPostedEvents(on.builder, QEvent::DeferredDelete);
}

void deleteBuilderInMouseMove(Scene& on) {
    on.box->OnMouseMove = [&on](QObject*, Qt::KeyboardModifiers, int, int) {
        on.builder->deleteLater();
        QCoreApplication::sendPostedEvents(on.builder, QEvent::DeferredDelete);
    };
    on.area()->TableToFront(on.box);
    on.move(Scene::captionOf(*on.box));
    if (on.box) on.move(Scene::captionOf(*on.box), Qt::NoButton);
}

const End ends[] = {
    {"box closed by its menu", End::Box, true, closeByMenu},
    {"box closed in a veto", End::Box, false, closeInAVeto},
    {"box closed in a veto of a link", End::Box, false, closeInAVetoOfALink},
    {"box closed in OnKeyDown", End::Box, false, closeInKeyDown},
    {"box closed in OnMouseDown", End::Box, false, closeInMouseDown},
    {"box closed in OnMouseMove", End::Box, false, closeInMouseMove},
    {"box closed and dead in OnMouseMove", End::Box, false, closeAndWaitInMouseMove},
    {"box closed when a link is deselected", End::Box, false, closeWhenDeselected},
    {"box closed by DeleteTable", End::Box, true, deleteTable},
    {"all cleared", End::Box, true, clear},
    {"all replaced by LoadSQL", End::Box, true, load},
    {"all replaced by RestoreState", End::Box, true, restore},
    {"link deleted by its menu", End::Link, false, deleteLinkByMenu},
    {"link deleted by unlinking", End::Link, true, unlink},
    {"link deleted twice", End::Link, false, deleteLinkTwice},
    {"builder deleted", End::Builder, true, deleteBuilder},
    {"builder deleted later", End::Builder, true, deleteBuilderLater},
    {"builder deleted in OnMouseMove", End::Builder, false, deleteBuilderInMouseMove},
};

}  // namespace

std::span<const End> allEnds() {
    return ends;
}

}  // namespace orvtest
