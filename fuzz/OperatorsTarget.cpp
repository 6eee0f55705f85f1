// SPDX-License-Identifier: MIT
// Operators are read from any stream and from any list of texts, or refused with a reason; those
// that were read are written and read again as they are. The first byte is the form: "s" for texts,
// one a line; a stream else.
#include "Targets.h"
#include "catalogue/ORVQDOperators.h"
#include "core/Error.h"

#include <QIODevice>

namespace orvfuzz {

namespace {

std::vector<TorvQDOperator> entriesOf(const TOperatorList& list) {
    std::vector<TorvQDOperator> entries;
    entries.reserve(std::size_t(list.Count()));
    for (int index = 0; index < list.Count(); ++index) entries.push_back(*list.Items(index));
    return entries;
}

QByteArray streamOf(const TOperatorList& list) {
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << list;
    return bytes;
}

void readStream(const QByteArray& bytes, TOperatorList& list) {
    QDataStream stream(bytes);
    stream >> list;
}

// A change that a list tells of is told twice: in front of it and behind it.
class Listener {
public:
    explicit Listener(TOperatorList& list) {
        list.aboutToChange = [this] { ++m_open; };
        list.changed = [this] { --m_open; };
    }
    void check() const { require(m_open == 0, "A change was not told twice."); }

private:
    int m_open = 0;
};

void checkComesBack(const TOperatorList& list) {
    const std::vector<TorvQDOperator> entries = entriesOf(list);
    TOperatorList other;
    other.fromStrings(list.toStrings());
    require(entriesOf(other) == entries, "The texts of the operators are read as others.");
    TOperatorList third;
    readStream(streamOf(list), third);
    require(entriesOf(third) == entries, "The stream of the operators is read as others.");
    require(streamOf(third) == streamOf(list), "Operators are written in two ways.");
    TOperatorList fourth;
    fourth.Assign(&list);
    require(entriesOf(fourth) == entries, "Assigned operators are others.");
    for (const TorvQDOperator& entry : entries) {
        const TOperatorList::Entry found = list.FindName(entry.Name);
        require(found && found->Name == entry.Name, "An operator is not found by its name.");
    }
}

void runOperators(QByteArrayView input) {
    if (input.isEmpty()) return;
    const QByteArray rest = input.sliced(1).toByteArray();
    TOperatorList list;
    orv::fillSmallOperators(list);
    const Listener listener(list);
    try {
        if (input.front() == 's') {
            list.fromStrings(QString::fromUtf8(rest).split(u'\n'));
        } else {
            readStream(rest, list);
        }
    } catch (const orv::Error& error) {
        require(!error.Message().isEmpty(), "Operators are refused without a reason.");
    }
    listener.check();
    checkComesBack(list);
}

QList<QByteArray> operatorsSeeds() {
    TOperatorList few;
    orv::fillSmallOperators(few);
    TOperatorList many;
    orv::fillOperators(many);
    TOperatorList odd;
    odd.Add(TorvQDOperator{"", "\u00e4 \U0001F600", ",", ")", "(", -1});
    odd.Add(TorvQDOperator{"A\nB", "", "", "", "", 2147483647});
    QList<QByteArray> seeds = {"s", "b"};
    for (const TOperatorList* list : {&few, &many, &odd}) {
        seeds << 's' + list->toStrings().join(u'\n').toUtf8() << 'b' + streamOf(*list);
    }
    return seeds;
}

}  // namespace

Target operatorsTarget() {
    return {"operators", false, runOperators, operatorsSeeds};
}

}  // namespace orvfuzz
