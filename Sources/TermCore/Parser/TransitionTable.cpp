#include "Parser/TransitionTable.h"

namespace termcore {
namespace {

using enum ParserState;
using Action = ParserAction;

struct Row {
    int first;
    int last;
    Action action;
    ParserState next;
};

struct StateRow {
    ParserState state;
    Row row;
};

// Bytes that act in every state: CAN, SUB, ESC and the C1 controls (ECMA-48 5.3).
constexpr Row anywhere[] = {
    {0x18, 0x18, Action::execute, ground},
    {0x1A, 0x1A, Action::execute, ground},
    {0x99, 0x9A, Action::execute, ground},
    {0x80, 0x8F, Action::execute, ground},
    {0x91, 0x97, Action::execute, ground},
    {0x9C, 0x9C, Action::ignore, ground},
    {0x1B, 0x1B, Action::clear, escape},
    {0x9D, 0x9D, Action::oscStart, oscString},
    {0x98, 0x98, Action::ignore, sosPmApcString},
    {0x9E, 0x9E, Action::ignore, sosPmApcString},
    {0x9F, 0x9F, Action::oscStart, apcString},
    {0x9B, 0x9B, Action::clear, csiEntry},
    {0x90, 0x90, Action::clear, dcsEntry},
};

// States that execute C0 controls, or ignore them, without leaving. CAN is among them, SUB and EM are not.
struct ControlRow {
    ParserState state;
    Action action;
};
constexpr ControlRow controls[] = {
    {ground, Action::execute},
    {escape, Action::execute},
    {escapeIntermediate, Action::execute},
    {csiEntry, Action::execute},
    {csiParam, Action::execute},
    {csiIntermediate, Action::execute},
    {csiIgnore, Action::execute},
    {sosPmApcString, Action::ignore},
    {oscString, Action::ignore},
    {apcString, Action::ignore},
    {dcsEntry, Action::ignore},
    {dcsParam, Action::ignore},
    {dcsIgnore, Action::ignore},
    {dcsIntermediate, Action::ignore},
    {dcsPassthrough, Action::dcsPut},
};

constexpr StateRow rows[] = {
    {escape, {0x7F, 0x7F, Action::ignore, escape}},
    {escape, {0x20, 0x2F, Action::collect, escapeIntermediate}},
    {escape, {0x30, 0x4F, Action::escDispatch, ground}},
    {escape, {0x51, 0x57, Action::escDispatch, ground}},
    {escape, {0x59, 0x5A, Action::escDispatch, ground}},
    {escape, {0x5C, 0x5C, Action::escDispatch, ground}},
    {escape, {0x60, 0x7E, Action::escDispatch, ground}},
    {escape, {'P', 'P', Action::clear, dcsEntry}},
    {escape, {'[', '[', Action::clear, csiEntry}},
    {escape, {']', ']', Action::oscStart, oscString}},
    {escape, {'_', '_', Action::oscStart, apcString}},
    {escape, {'X', 'X', Action::ignore, sosPmApcString}},
    {escape, {'^', '^', Action::ignore, sosPmApcString}},

    {escapeIntermediate, {0x7F, 0x7F, Action::ignore, escapeIntermediate}},
    {escapeIntermediate, {0x20, 0x2F, Action::collect, escapeIntermediate}},
    {escapeIntermediate, {0x30, 0x7E, Action::escDispatch, ground}},

    {csiEntry, {0x7F, 0x7F, Action::ignore, csiEntry}},
    {csiEntry, {'0', '9', Action::param, csiParam}},
    {csiEntry, {';', ';', Action::param, csiParam}},
    {csiEntry, {0x3C, 0x3F, Action::collect, csiParam}},
    {csiEntry, {0x20, 0x2F, Action::collect, csiIntermediate}},
    {csiEntry, {0x40, 0x7E, Action::csiDispatch, ground}},

    {csiParam, {0x7F, 0x7F, Action::ignore, csiParam}},
    {csiParam, {'0', ';', Action::param, csiParam}},
    {csiParam, {0x3C, 0x3F, Action::ignore, csiIgnore}},
    {csiParam, {0x20, 0x2F, Action::collect, csiIntermediate}},
    {csiParam, {0x40, 0x7E, Action::csiDispatch, ground}},

    {csiIntermediate, {0x7F, 0x7F, Action::ignore, csiIntermediate}},
    {csiIntermediate, {0x20, 0x2F, Action::collect, csiIntermediate}},
    {csiIntermediate, {0x30, 0x3F, Action::ignore, csiIgnore}},
    {csiIntermediate, {0x40, 0x7E, Action::csiDispatch, ground}},

    {csiIgnore, {0x20, 0x3F, Action::ignore, csiIgnore}},
    {csiIgnore, {0x7F, 0x7F, Action::ignore, csiIgnore}},
    {csiIgnore, {0x40, 0x7E, Action::ignore, ground}},

    {sosPmApcString, {0x20, 0x7F, Action::ignore, sosPmApcString}},
    {sosPmApcString, {0x9C, 0x9C, Action::ignore, ground}},

    {oscString, {0x20, 0x7F, Action::oscPut, oscString}},
    {oscString, {0xA0, 0xA0, Action::oscPut, oscString}},
    {oscString, {0x07, 0x07, Action::oscEnd, ground}},
    {oscString, {0x18, 0x18, Action::oscEnd, ground}},
    {oscString, {0x1A, 0x1B, Action::oscEnd, ground}},
    {oscString, {0x9C, 0x9C, Action::oscEnd, ground}},

    {apcString, {0x20, 0x7F, Action::oscPut, apcString}},
    {apcString, {0xA0, 0xA0, Action::oscPut, apcString}},
    {apcString, {0x07, 0x07, Action::oscEnd, ground}},
    {apcString, {0x18, 0x18, Action::oscEnd, ground}},
    {apcString, {0x1A, 0x1B, Action::oscEnd, ground}},
    {apcString, {0x9C, 0x9C, Action::oscEnd, ground}},

    {dcsEntry, {0x7F, 0x7F, Action::ignore, dcsEntry}},
    {dcsEntry, {0x20, 0x2F, Action::collect, dcsIntermediate}},
    {dcsEntry, {':', ':', Action::ignore, dcsIgnore}},
    {dcsEntry, {'0', '9', Action::param, dcsParam}},
    {dcsEntry, {';', ';', Action::param, dcsParam}},
    {dcsEntry, {0x3C, 0x3F, Action::collect, dcsParam}},
    {dcsEntry, {0x40, 0x7E, Action::dcsHook, dcsPassthrough}},

    {dcsParam, {0x7F, 0x7F, Action::ignore, dcsParam}},
    {dcsParam, {'0', '9', Action::param, dcsParam}},
    {dcsParam, {';', ';', Action::param, dcsParam}},
    {dcsParam, {':', ':', Action::ignore, dcsIgnore}},
    {dcsParam, {0x3C, 0x3F, Action::ignore, dcsIgnore}},
    {dcsParam, {0x20, 0x2F, Action::collect, dcsIntermediate}},
    {dcsParam, {0x40, 0x7E, Action::dcsHook, dcsPassthrough}},

    {dcsIgnore, {0x20, 0x7F, Action::ignore, dcsIgnore}},

    {dcsIntermediate, {0x7F, 0x7F, Action::ignore, dcsIntermediate}},
    {dcsIntermediate, {0x20, 0x2F, Action::collect, dcsIntermediate}},
    {dcsIntermediate, {0x30, 0x3F, Action::ignore, dcsIgnore}},
    {dcsIntermediate, {0x40, 0x7E, Action::dcsHook, dcsPassthrough}},

    {dcsPassthrough, {0x20, 0x7E, Action::dcsPut, dcsPassthrough}},
    {dcsPassthrough, {0x7F, 0x7F, Action::ignore, dcsPassthrough}},
    {dcsPassthrough, {0x1B, 0x1B, Action::dcsUnhook, ground}},
    {dcsPassthrough, {0x9C, 0x9C, Action::dcsUnhook, ground}},
};

constexpr TransitionTable buildVt500TransitionTable() {
    TransitionTable table;
    for (int state = 0; state < parserStateCount; ++state)
        table.add(0, TransitionTable::lastColumn, static_cast<ParserState>(state), Action::error, ground);
    table.add(0x20, 0x7E, ground, Action::print, ground);
    for (int state = 0; state < parserStateCount; ++state) {
        for (const Row& row : anywhere)
            table.add(row.first, row.last, static_cast<ParserState>(state), row.action, row.next);
    }
    for (const auto& [state, action] : controls) {
        table.add(0x00, 0x18, state, action, state);
        table.add(0x1C, 0x1F, state, action, state);
    }
    for (const auto& [state, row] : rows)
        table.add(row.first, row.last, state, row.action, row.next);
    return table;
}

}

constexpr TransitionTable vt500Transitions = buildVt500TransitionTable();

}
