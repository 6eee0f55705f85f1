// SPDX-License-Identifier: MIT
#pragma once

#include "parser/ORVQDParser.h"
#include "parser/ORVQDWordScan.h"

#include <QString>
#include <QStringView>

#include <vector>

/// One reading of a text into the tree below a node: the state machine of the parser. It keeps one
/// position over one text and a stack of open nodes instead of cutting the front off strings and
/// recursing, so that it is linear in the text however deep it nests.
///
/// A node is either *bounded* (a bracket's or call's content, which ends where the group ends) or
/// *shares* the rest of the text with the node around it (a clause, a join, a condition): then it
/// ends where a word stands that belongs to the node around it, and reading goes on there.
class TorvQDParseRun {
public:
    TorvQDParseRun(const QString& text, int start, int end);

    /// Reads children of `node` and returns the position where reading ended.
    int parse(TorvQDParser& node);

private:
    struct Frame {
        TorvQDParser* node;
        int end;     // exclusive end of the text that the node may read
        int resume;  // where reading goes on behind a bounded node
        bool bounded;
        bool inOn;        // shares its text with an ON condition: a comma ends it
        bool takesAlias;  // an alias may follow the group
    };
    struct Group {
        int contentStart;
        int contentEnd;
        int end;
    };
    struct Bracket {
        int open;
        int close;  // -1 without a matching bracket
    };

    void findBrackets();
    [[nodiscard]] Group groupAt(int open, int end);

    void step();
    void finish();
    bool readBlankOrComma(const Frame& frame);
    [[nodiscard]] int endOfOperator(const Frame& frame) const;
    void readOperator(const Frame& frame, int operatorEnd);
    void readWord(const Frame& frame);
    [[nodiscard]] bool isPartOfComparison(const orv::ScannedWord& word) const;
    void readClause(const Frame& frame, const orv::ScannedWord& word, TLocationKinds clause);
    [[nodiscard]] bool DoParseOf(const Frame& frame, const orv::ScannedWord& word);

    void DoParseOfValue(const Frame& frame, const QString& word, int start, int end);
    [[nodiscard]] bool DoParseOfTable(const Frame& frame, const orv::ScannedWord& word);
    [[nodiscard]] bool DoParseOfCondition(const Frame& frame, const orv::ScannedWord& word);
    void DoParseOfOrderList(const Frame& frame, const orv::ScannedWord& word);
    void GetAlias(TorvQDParser& node, int end);
    void readAlias(TorvQDParser& node, int end);

    void readTableName(const Frame& frame, const orv::ScannedWord& word);
    void readJoin(const Frame& frame, const orv::ScannedWord& word, int joinIndex);
    [[nodiscard]] bool readUnheldJoin(const Frame& frame, const orv::ScannedWord& word, bool& goOn);

    [[nodiscard]] bool isFollowedByBracket(int at, int end) const;
    [[nodiscard]] bool isFollowedByJoin(const orv::ScannedWord& word, int end,
                                        bool anyJoinWord) const;
    [[nodiscard]] int behindNextJoin(int end);
    [[nodiscard]] int findJoinOutsideQuotes() const;

    TorvQDParser* add(TorvQDParser& parent, TTypeOfTie kind, TLocationKinds location,
                      const QString& text, int start, int end);
    void open(TorvQDParser* node, const Frame& around, bool inOn);
    void openGroup(TorvQDParser* node, const Group& group, bool takesAlias);

    const QString m_text;
    int m_position;
    int m_end;
    int m_wordStart = 0;  // of the word being read: where reading goes on when it is put back
    std::vector<Frame> m_stack;
    std::vector<Bracket> m_brackets;  // by position of the opening one
    std::size_t m_nextBracket = 0;
    int m_nextJoin = -1;  // position of the next "JOIN" that was looked for
};
