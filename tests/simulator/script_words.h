// script_words.h - the lines of a stand-in's script: words, and a table of what they mean. Each stand-in has an Action
// of its own, with a kind and a value, and a TimedAction around it.
#pragma once
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>
#include "tests/simulator/wire.h"

namespace standin {

using Words = std::vector<std::string_view>;

Words splitWords(std::string_view line);

// A plain decimal, 0 to a billion. False leaves value as it was.
bool parseNumber(std::string_view word, double& value);

// The place of the word among the names, whatever its case. False if it is none of them.
template <std::size_t N>
bool parseOneOf(std::string_view word, const std::string_view (&names)[N], double& place) {
    const auto* name = std::find_if(names, names + N, [&](std::string_view row) { return isSameName(row, word); });
    if (name == names + N) return false;
    place = static_cast<double>(name - names);
    return true;
}

template <class Action>
struct ActionRow {
    std::string_view word;
    decltype(Action::kind) kind;
    double value;                                           // unless a word says otherwise
    std::vector<bool (*)(std::string_view, Action&)> rest;  // what each word means; false if it is not of that kind
    std::string_view usage;
};

// False with the reason in error leaves action as it was.
template <class Action>
bool readAction(std::span<const ActionRow<Action>> rows, const Words& words, Action& action, std::string& error) {
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const ActionRow<Action>& known) {
        return !words.empty() && isSameName(known.word, words[0]);
    });
    if (row == rows.end()) {
        error = "no such action";
        return false;
    }
    Action read;
    read.kind = row->kind;
    read.value = row->value;
    bool isGood = words.size() == row->rest.size() + 1;
    for (std::size_t i = 0; isGood && i < row->rest.size(); i++) isGood = row->rest[i](words[i + 1], read);
    if (isGood)
        action = std::move(read);
    else
        error = "expected: " + std::string(row->usage);
    return isGood;
}

// What a line does: when, in ms, and the words behind its seconds. False with the reason in error.
using TakeLine = std::function<bool(std::uint64_t atMs, const Words& words, std::string& error)>;

// Hands over the lines of "SECONDS WORD ..." in the order written; # begins a remark. Stops at the first bad line:
// false, error names it.
bool readScriptLines(std::string_view text, const TakeLine& take, std::string& error);

// The same lines as actions, sorted by time.
template <class Action, class TimedAction>
bool readScript(std::span<const ActionRow<Action>> rows, std::string_view text, std::vector<TimedAction>& script,
                std::string& error) {
    script.clear();
    const auto take = [&](std::uint64_t atMs, const Words& words, std::string& why) {
        TimedAction step{atMs, {}};
        if (!readAction(rows, words, step.action, why)) return false;
        script.push_back(std::move(step));
        return true;
    };
    if (!readScriptLines(text, take, error)) return false;
    std::stable_sort(script.begin(), script.end(),
                     [](const TimedAction& a, const TimedAction& b) { return a.atMs < b.atMs; });
    return true;
}

// The actions, one usage per line.
template <class Action>
std::string usageOf(std::span<const ActionRow<Action>> rows) {
    std::string text;
    for (const auto& row : rows) text.append("  ").append(row.usage).append("\n");
    return text;
}

}  // namespace standin
