// SPDX-License-Identifier: MIT
#include "FuzzBuilders.h"

#include "FuzzTarget.h"

#include <QCoreApplication>

#include <memory>

namespace orvfuzz {

namespace {

void addTablesOfCases(orvtest::Host& host) {
    for (const SqlCaseFile& file : sqlCaseFiles()) {
        for (auto table = file.tables.begin(); table != file.tables.end(); ++table) {
            host.add(table.key(), table.value());
        }
        for (auto params = file.procedures.begin(); params != file.procedures.end(); ++params) {
            host.setParams(params.key(), params.value());
        }
    }
}

void doWhatWasPutOff() {
    QCoreApplication::sendPostedEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

}  // namespace

FuzzBuilders::FuzzBuilders(bool keepMeaning, orvtest::RecordedServices& recorded)
    : first(keepMeaning), second(keepMeaning), third(keepMeaning), services(recorded) {
    for (orvtest::HostedBuilder* on : {&first, &second, &third}) addTablesOfCases(on->host);
}

namespace {

// They end with the application, without which no widget does.
struct Shared {
    orvtest::RecordedServices services;
    std::unique_ptr<FuzzBuilders> builders[2];  // by mode
};

// libFuzzer leaves without ending the application: then they stay, and static objects do not.
std::unique_ptr<Shared>& shared() {
    static auto& owner = *new std::unique_ptr<Shared>;
    return owner;
}

}  // namespace

FuzzBuilders& FuzzBuilders::emptied(bool keepMeaning) {
    if (!shared()) {
        shared() = std::make_unique<Shared>();
        for (const bool keep : {false, true}) {
            shared()->builders[keep ? 1 : 0].reset(new FuzzBuilders(keep, shared()->services));
        }
        qAddPostRoutine([] { shared().reset(); });
    }
    orvtest::RecordedServices& services = shared()->services;
    FuzzBuilders& builders = *shared()->builders[keepMeaning ? 1 : 0];
    for (orvtest::HostedBuilder* on : {&builders.first, &builders.second, &builders.third}) {
        on->builder.Clear();
        on->host.asked.clear();
    }
    doWhatWasPutOff();
    services.messages.clear();
    services.errors.clear();
    services.dialogs.clear();
    return builders;
}

void FuzzBuilders::settle() {
    doWhatWasPutOff();
    require(services.errors.isEmpty(), "An error was reported: " + services.errors.join(u'\n'));
    require(services.dialogs.isEmpty(), "A dialog was shown: " + services.dialogs.join(u'\n'));
}

}  // namespace orvfuzz
