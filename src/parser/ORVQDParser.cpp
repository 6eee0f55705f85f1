// SPDX-License-Identifier: MIT
#include "parser/ORVQDParser.h"

#include "core/Error.h"
#include "core/Text.h"
#include "parser/ORVQDParseRun.h"
#include "parser/ORVQDWordScan.h"

namespace {

[[noreturn]] void raiseNotSelect() {
    throw orv::Error(QStringLiteral("Given statement is not SELECT clause"));
}

QString withoutLineBreaks(QString text) {
    if (!text.contains(u'\n') && !text.contains(u'\r')) return text;
    text.replace(u'\r', u' ');
    text.replace(u'\n', u' ');
    return text;
}

void trimFrom(QString& text, qsizetype start) {
    while (text.size() > start && text.back().unicode() <= u' ') text.chop(1);
    qsizetype blanks = 0;
    while (start + blanks < text.size() && text[start + blanks].unicode() <= u' ') ++blanks;
    text.remove(start, blanks);
}

}  // namespace

TorvQDParser::TorvQDParser(const QString& Statement) : m_location(inSelect) {
    const QString text = withoutLineBreaks(Statement);
    const QStringView trimmed = orv::orvTrim(QStringView(text));
    const int start = trimmed.isEmpty() ? 0 : int(trimmed.begin() - QStringView(text).begin());
    const int end = start + int(trimmed.size());
    const orv::ScannedWord word = orv::scanWord(text, start, end);
    if (word.text != u"SELECT") raiseNotSelect();
    m_text = word.text;
    m_start = start;
    TorvQDParseRun run(text, word.next, end);
    m_end = run.parse(*this);
    m_source = text;
}

TorvQDParser::TorvQDParser(TTypeOfTie Kind, TLocationKinds Location, const QString& Text)
    : m_text(Text), m_kind(Kind), m_location(Location) {}

// Children are freed from a list, not by recursion: nesting may be as deep as the text is long.
TorvQDParser::~TorvQDParser() {
    std::vector<Node> dying = std::move(m_children);
    while (!dying.empty()) {
        const Node node = std::move(dying.back());
        dying.pop_back();
        for (Node& child : node->m_children) dying.push_back(std::move(child));
        node->m_children.clear();
    }
}

TorvQDParser::Node TorvQDParser::CreateNode(QString& Text, TLocationKinds Location,
                                            const QString& Name) {
    auto node = std::make_unique<TorvQDParser>(otCompound, Location, Name);
    if (Location == inUnknown) {
        QString word;
        GetNextWord(Text, word);
        if (word != u"SELECT") raiseNotSelect();
        node->m_location = inSelect;
        node->m_text = word;
    } else if (Location == inFunction && Text.startsWith(u'(')) {
        Text.remove(0, 1);
        if (Text.endsWith(u')')) Text.chop(1);
    }
    return node;
}

TorvQDParser* TorvQDParser::Append(Node Child) {
    m_children.push_back(std::move(Child));
    return m_children.back().get();
}

const TorvQDParser* TorvQDParser::Clause(TLocationKinds Location) const {
    for (const Node& child : m_children) {
        if (child->m_kind == otCompound && child->m_location == Location) return child.get();
    }
    return nullptr;
}

void TorvQDParser::DoParse(QString& S) {
    TorvQDParseRun run(S, 0, int(S.size()));
    S = S.mid(run.parse(*this));
}

QString TorvQDParser::GetAliasName() const {
    const bool hasAlias = m_location == inFunction || m_location == inItem ||
                          (m_location == inSelect && m_kind == otBrakets);
    if (!hasAlias || m_children.empty() || m_children.back()->m_kind != otAlias) return {};
    return m_children.back()->m_text;
}

QString TorvQDParser::FillArguments(bool AddAlias) const {
    struct Frame {
        const TorvQDParser* node;
        std::size_t next;  // the child to go on with
        qsizetype start;   // where the node's text begins in the result
        bool addAlias;
        bool separated;  // a child was written
    };
    if (m_kind == otAlias) return {};
    QString result;
    std::vector<Frame> stack;
    const auto enter = [&](const TorvQDParser* node, bool addAlias) {
        stack.push_back({node, 0, result.size(), addAlias, false});
        if (node->m_location != inFunction) {
            result += node->m_kind == otBrakets ? QStringLiteral("(") : node->m_text;
        } else if (addAlias) {
            result += node->m_text + u'(';
        }
    };
    const auto leave = [&](const Frame& frame) {
        const bool isCall = frame.node->m_location == inFunction && frame.addAlias;
        if (frame.node->m_kind == otBrakets) result += u')';
        if (isCall) result += u')';
        if (frame.addAlias) result += u' ' + frame.node->GetAliasName();
        trimFrom(result, frame.start);
    };
    enter(this, AddAlias);
    while (!stack.empty()) {
        Frame& frame = stack.back();
        if (frame.next == frame.node->m_children.size()) {
            const Frame done = frame;
            stack.pop_back();
            leave(done);
            continue;
        }
        const TorvQDParser* child = frame.node->m_children[frame.next++].get();
        if (child->m_kind == otAlias) continue;
        if (frame.separated) result += QStringLiteral(", ");
        frame.separated = true;
        enter(child, true);
    }
    return result;
}

void TorvQDParser::GetNextWord(QString& S, QString& Word) {
    const orv::ScannedWord word = orv::scanWord(S, 0, int(S.size()));
    const bool joinsTwo = word.info.is(orv::wordClause) || word.info.is(orv::wordConditionFunc);
    Word = joinsTwo ? word.text : S.left(word.end);
    S.remove(0, word.next);
}

void TorvQDParser::GetTextInBraces(QString& S, QString& Text) {
    qsizetype length = S.size();
    int depth = 0;
    for (qsizetype position = 1; position < S.size(); ++position) {
        if (S[position] == u'(') ++depth;
        if (S[position] == u')' && --depth < 0) {
            length = position + 1;
            break;
        }
    }
    Text = S.left(length);
    S.remove(0, length);
}

int PosEx(const QString& Sub, const QString& S) {
    qsizetype start = 0;
    while (start < S.size()) {
        qsizetype quote = start;
        while (quote < S.size() && S[quote] != u'"' && S[quote] != u'\'') ++quote;
        const qsizetype found = QStringView(S).mid(start, quote - start).indexOf(Sub);
        if (found >= 0) return int(start + found + 1);
        if (quote >= S.size() - 1) return 0;
        const qsizetype close = S.indexOf(S[quote], quote + 1);
        if (close < 0) return 0;
        start = close + 1;
    }
    return 0;
}
