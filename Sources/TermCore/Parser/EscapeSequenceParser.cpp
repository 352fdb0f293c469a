#include "Parser/EscapeSequenceParser.h"

#include "Parser/ByteScan.h"
#include "Unicode/Utf8.h"

#include <algorithm>
#include <utility>

namespace termcore {
namespace {

constexpr std::uint8_t bel = 0x07;
constexpr std::uint8_t can = 0x18;
constexpr std::uint8_t sub = 0x1A;
constexpr std::uint8_t esc = 0x1B;

std::span<const std::uint8_t> bytesOf(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

}

void EscapeSequenceParser::reset() {
    currentState = initialState;
    osc.clear();
    apc.clear();
    collect.clear();
    resetParameters();
    activeDcsHandler.reset();
    dcsRun = nullptr;
    if (target.hasUnfinishedCharacter)
        target.printStateReset();
}

void EscapeSequenceParser::clearSequence() {
    resetParameters();
    collect.clear();
    osc.clear();
    apc.clear();
    dcsRun = nullptr;
    if (target.hasUnfinishedCharacter)
        target.printStateReset();
}

void EscapeSequenceParser::parse(std::span<const std::uint8_t> data) {
    const Bytes begin = data.data();
    const Bytes end = begin + data.size();
    dcsRun = nullptr;
    Bytes at = begin;
    if (at < end && isInsideCharacter())
        at = putString(at, end);
    while (at < end) {
        if (currentState == ParserState::ground) {
            // In the ground state every byte above 0x1F is text; C1 controls are what UTF-8 is made of.
            if (*at > 0x1F) {
                const auto [textEnd, isAscii] = bytescan::findText(at, end);
                if (isAscii)
                    target.handleAscii({at, textEnd});
                else
                    target.handlePrint({at, textEnd});
                at = textEnd;
                if (at == end)
                    break;
            }
            if (*at == '\r' && end - at >= 2 && at[1] == '\n') {
                target.handleLineEnd();
                at += 2;
                continue;
            }
            if (*at == esc) {
                if (const Bytes after = tryControlSequence(at, end)) {
                    at = after;
                    continue;
                }
            } else if (*at != sub && *at != 0x19) {
                target.dispatchExecute(*at++);
                continue;
            }
        }
        const ParserAction action = vt500Transitions.action(currentState, *at);
        nextState = vt500Transitions.next(currentState, *at);
        at = perform(action, at, begin, end);
        if (at == nullptr)
            return;
        currentState = nextState;
    }
    if (currentState == ParserState::dcsPassthrough)
        flushDcs(end);
}

/// The common case in one go: ESC '[', parameters without a private marker, and a final byte, all in this piece. Null
/// when it is anything else, which then takes the way through the table.
EscapeSequenceParser::Bytes EscapeSequenceParser::tryControlSequence(Bytes escape, Bytes end) {
    constexpr int mostDigits = 17; // stays below the limit
    if (end - escape < 3 || escape[1] != '[')
        return nullptr;
    Bytes at = escape + 2;
    // The first parameter is there even when it is empty, and a ':' can't stand at the start.
    if (*at == ':')
        return nullptr;
    std::int64_t* const values = parameters.data();
    char* const marks = separators.data();
    std::size_t count = 0;
    while (true) {
        std::uint64_t value = 0;
        const Bytes digits = at;
        for (; at < end; ++at) {
            const unsigned digit = *at - unsigned{'0'};
            if (digit > 9)
                break;
            value = value * 10 + digit;
        }
        if (at == end || at - digits > mostDigits)
            return nullptr;
        values[count++] = static_cast<std::int64_t>(value);
        if (*at != ';' && *at != ':')
            break;
        if (count == initialParameterRoom)
            return nullptr;
        marks[count - 1] = static_cast<char>(*at++);
    }
    if (*at < 0x40 || *at > 0x7E)
        return nullptr;
    parameterCount = count;
    if (!collect.empty())
        collect.clear();
    if (target.hasUnfinishedCharacter)
        target.printStateReset();
    dispatchCsi(*at);
    return at + 1;
}

EscapeSequenceParser::Bytes EscapeSequenceParser::perform(ParserAction action, Bytes at, Bytes begin, Bytes end) {
    const std::uint8_t code = *at;
    switch (action) {
    case ParserAction::ignore: flushDcs(at); break;
    case ParserAction::error:
        if (!handleError(at, begin))
            return nullptr;
        break;
    case ParserAction::print: break; // the ground state takes text before it comes to the table
    case ParserAction::execute: target.dispatchExecute(code); break;
    case ParserAction::oscStart: (nextState == ParserState::apcString ? apc : osc).clear(); break;
    case ParserAction::oscPut: return putString(at, end);
    case ParserAction::oscEnd: endString(code); break;
    case ParserAction::csiDispatch: dispatchCsi(code); break;
    case ParserAction::param: param(code); break;
    case ParserAction::collect:
        if (collect.size() < largestString)
            collect += static_cast<char>(code);
        break;
    case ParserAction::escDispatch: target.dispatchEsc(collect, code); break;
    case ParserAction::clear: clearSequence(); break;
    case ParserAction::dcsHook: hookDcs(code); break;
    case ParserAction::dcsPut:
        if (dcsRun == nullptr)
            dcsRun = at;
        break;
    case ParserAction::dcsUnhook: unhookDcs(at, code); break;
    }
    return at + 1;
}

/// True when a string was cut in the middle of a UTF-8 sequence: the next byte is no C1 control, whatever its value.
bool EscapeSequenceParser::isInsideCharacter() const {
    if (currentState != ParserState::oscString && currentState != ParserState::apcString)
        return false;
    const std::string& text = currentState == ParserState::apcString ? apc : osc;
    for (std::size_t back = 1; back <= std::min<std::size_t>(3, text.size()); ++back) {
        const auto byte = static_cast<std::uint8_t>(text[text.size() - back]);
        if ((byte & 0xC0) != 0x80)
            return utf8::sequenceLength(byte) > back;
    }
    return false;
}

/// A whole run of string bytes: up to BEL, CAN or ESC. Other controls are dropped; 0x9C is data here, as UTF-8 needs,
/// unless it ends a command without data.
EscapeSequenceParser::Bytes EscapeSequenceParser::putString(Bytes at, Bytes end) {
    std::string& text = currentState == ParserState::apcString ? apc : osc;
    constexpr std::size_t longestNumber = 20;
    if (currentState == ParserState::oscString && text.size() <= longestNumber &&
        text.find_first_not_of("0123456789;") == std::string::npos && text.find(';') >= text.size() - 1) {
        Bytes head = at;
        while (head < end && *head >= '0' && *head <= '9')
            ++head;
        if (head < end && *head == ';' && text.find(';') == std::string::npos)
            ++head;
        if (head < end && *head == 0x9C && (head > at || !text.empty())) {
            text.append(reinterpret_cast<const char*>(at), static_cast<std::size_t>(head - at));
            return head;
        }
    }
    while (at < end) {
        const Bytes runEnd = bytescan::findControl(at, end);
        const auto run = static_cast<std::size_t>(runEnd - at);
        if (text.size() + run <= largestString)
            text.append(reinterpret_cast<const char*>(at), run);
        at = runEnd;
        if (at == end || *at == bel || *at == can || *at == esc)
            break;
        ++at;
    }
    return at;
}

void EscapeSequenceParser::param(std::uint8_t code) {
    if (code == ';' || code == ':') {
        addParameter(code);
        return;
    }
    std::int64_t& last = parameters[parameterCount - 1];
    const std::int64_t value = last * 10 + (code - '0');
    last = value >= parameterLimit ? 0 : value;
}

bool EscapeSequenceParser::addParameter(std::uint8_t separator) {
    if (parameterCount == parameters.size()) {
        if (parameterCount >= largestParameterCount)
            return false;
        parameters.resize(parameterCount * 2);
        separators.resize(parameterCount * 2);
    }
    separators[parameterCount - 1] = static_cast<char>(separator);
    parameters[parameterCount++] = 0;
    return true;
}

std::int64_t EscapeSequenceParser::parseInt(std::span<const std::uint8_t> digits) {
    std::int64_t value = 0;
    for (const std::uint8_t digit : digits) {
        if (digit < '0' || digit > '9')
            break;
        if (value >= parameterLimit)
            return 0;
        value = value * 10 + (digit - '0');
    }
    return value;
}

void EscapeSequenceParser::endString(std::uint8_t code) {
    if (code != can && code != sub) {
        // The handlers may come to feed other terminals, but this string is theirs for the call.
        if (currentState == ParserState::apcString && !apc.empty()) {
            target.dispatchApc(static_cast<std::uint8_t>(apc[0]), bytesOf(apc).subspan(1));
        } else if (currentState == ParserState::oscString && !osc.empty()) {
            const std::size_t semicolon = osc.find(';');
            const bool hasData = semicolon != std::string::npos;
            const auto bytes = bytesOf(osc);
            target.dispatchOsc(parseInt(hasData ? bytes.first(semicolon) : bytes),
                hasData ? bytes.subspan(semicolon + 1) : bytes.first(0));
        }
    }
    nextState = code == esc ? ParserState::escape : ParserState::ground;
    clearSequence();
}

bool EscapeSequenceParser::handleError(Bytes at, Bytes begin) {
    if (*at > 0x9F) {
        switch (currentState) {
        case ParserState::csiIgnore:
        case ParserState::dcsIgnore: nextState = currentState; return true;
        case ParserState::dcsPassthrough:
            if (dcsRun == nullptr)
                dcsRun = at;
            nextState = currentState;
            return true;
        default: break;
        }
    }
    if (!errorHandler)
        return true;
    ParsingState report{static_cast<std::size_t>(at - begin), *at, currentState, false, dcsRun != nullptr, osc, apc,
        collect, {parameters.begin(), parameters.begin() + static_cast<std::ptrdiff_t>(parameterCount)}, false};
    return !errorHandler(std::move(report)).abort;
}

void EscapeSequenceParser::dispatchCsi(std::uint8_t final) {
    target.dispatchCsi(
        {std::span(parameters).first(parameterCount), {separators.data(), parameterCount - 1}, collect, final});
}

void EscapeSequenceParser::hookDcs(std::uint8_t final) {
    activeDcsHandler = target.dcsHandler(collect, final);
    if (activeDcsHandler)
        activeDcsHandler->hook(bytesOf(collect), std::span(parameters).first(parameterCount), final);
}

void EscapeSequenceParser::flushDcs(Bytes at) {
    if (dcsRun != nullptr && activeDcsHandler && at > dcsRun)
        activeDcsHandler->put({dcsRun, at});
    dcsRun = nullptr;
}

void EscapeSequenceParser::unhookDcs(Bytes at, std::uint8_t code) {
    if (activeDcsHandler) {
        flushDcs(at);
        // RIS inside a handler would drop it: keep it alive for the call.
        const auto handler = std::move(activeDcsHandler);
        handler->unhook();
    }
    nextState = code == esc ? ParserState::escape : ParserState::ground;
    clearSequence();
}

}
