#include "worker/link_trial.h"

LinkTrial tryLink(SimLink& link, const Clock& clock, const std::function<void()>& pause) {
    LinkTrial trial;
    const auto startMs = clock.tickMs();
    while (true) {
        link.poll(clock.tickMs());
        for (auto& note : link.takeNotes()) trial.notes.push_back(std::move(note));
        trial.isUp = link.snapshot().ok;
        trial.status = link.snapshot().status;
        trial.ms = clock.tickMs() - startMs;
        if (trial.isUp || link.isSettled() || trial.ms >= kLinkTrialMs) return trial;
        pause();
    }
}
