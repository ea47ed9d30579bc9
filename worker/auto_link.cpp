#include "worker/auto_link.h"
#include <algorithm>
#include <utility>

AutoLink::AutoLink(std::array<Choice, 2> choices) : choices_(std::move(choices)) {
    for (std::size_t i = 0; i < links_.size(); i++) links_[i] = choices_[i].make();
}

void AutoLink::poll(std::uint64_t nowMs) {
    for (std::size_t i = 0; i < links_.size(); i++) {
        if (links_[i]) pollOne(i, nowMs);
    }
    if (chosen_ && !links_[*chosen_]->isThere()) release();
    for (std::size_t i = 0; i < links_.size() && !chosen_; i++) {
        if (links_[i]->snapshot().ok) choose(i);
    }
}

void AutoLink::pollOne(std::size_t index, std::uint64_t nowMs) {
    links_[index]->poll(nowMs);
    for (auto& line : links_[index]->takeNotes()) notes_.push_back(std::move(line));
}

void AutoLink::choose(std::size_t index) {
    chosen_ = latest_ = index;
    links_[1 - index].reset();
    notes_.push_back(choices_[index].name + " it is; " + choices_[1 - index].name + " is not looked for meanwhile");
}

// Both are looked for again. The one that is lost keeps its link, which knows that it was lost.
void AutoLink::release() {
    const auto other = 1 - *chosen_;
    chosen_.reset();
    links_[other] = choices_[other].make();
}

// The one that is there says most; where none is, the one that was there last.
std::size_t AutoLink::shownIndex() const {
    if (chosen_) return *chosen_;
    if (links_[latest_]->isThere()) return latest_;
    return links_[1 - latest_]->isThere() ? 1 - latest_ : latest_;
}

bool AutoLink::write(const RadioWrite& write, std::uint64_t nowMs) {
    return chosen_ && shown().write(write, nowMs);
}

bool AutoLink::isSettled() const {
    if (chosen_) return shown().isSettled();
    return std::all_of(links_.begin(), links_.end(), [](const auto& link) { return link->isSettled(); });
}

WakeHandles AutoLink::wakeHandles() const {
    WakeHandles handles{};
    std::size_t count = 0;
    for (const auto& link : links_) {
        if (!link) continue;
        for (void* handle : link->wakeHandles()) {
            if (handle && count < handles.size()) handles[count++] = handle;
        }
    }
    return handles;
}

std::uint64_t AutoLink::restMs() const {
    std::uint64_t least = ~std::uint64_t{0};
    for (const auto& link : links_) {
        if (link) least = std::min(least, link->restMs());
    }
    return least;
}
