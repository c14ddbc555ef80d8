// SPDX-License-Identifier: Apache-2.0
// The heap of timers.
#include "perf-probed/schedule/timer_queue.h"

namespace probed {

void timer_queue::reserve(std::size_t count) {
    heap_.reserve(count);
    if (places_.size() < count) {
        places_.resize(count, NOWHERE);
    }
}

void timer_queue::set(owner who, mono_nsec deadline) {
    if (who >= places_.size()) {
        places_.resize(who + std::size_t{1}, NOWHERE);
    }
    std::size_t index = places_[who];
    if (index == NOWHERE) {
        index = heap_.size();
        heap_.push_back({deadline, who});
        places_[who] = static_cast<std::uint32_t>(index);
    } else {
        heap_[index].deadline = deadline;
    }
    sift_up(index);
    sift_down(places_[who]);
}

void timer_queue::cancel(owner who) {
    if (who < places_.size() && places_[who] != NOWHERE) {
        remove_at(places_[who]);
    }
}

std::optional<mono_nsec> timer_queue::next() const {
    return heap_.empty() ? std::nullopt : std::optional(heap_.front().deadline);
}

std::optional<mono_nsec> timer_queue::deadline_of(owner who) const {
    return who < places_.size() && places_[who] != NOWHERE ? std::optional(heap_[places_[who]].deadline) : std::nullopt;
}

std::optional<timer_queue::owner> timer_queue::take_due(mono_nsec now) {
    if (heap_.empty() || heap_.front().deadline > now) {
        return std::nullopt;
    }
    const owner who = heap_.front().who;
    remove_at(0);
    return who;
}

void timer_queue::place(std::size_t index, timer value) {
    heap_[index] = value;
    places_[value.who] = static_cast<std::uint32_t>(index);
}

void timer_queue::sift_up(std::size_t index) {
    const timer moved = heap_[index];
    while (index > 0 && moved < heap_[(index - 1) / 2]) {
        place(index, heap_[(index - 1) / 2]);
        index = (index - 1) / 2;
    }
    place(index, moved);
}

void timer_queue::sift_down(std::size_t index) {
    const timer moved = heap_[index];
    while (true) {
        std::size_t child = 2 * index + 1;
        if (child >= heap_.size()) {
            break;
        }
        if (child + 1 < heap_.size() && heap_[child + 1] < heap_[child]) {
            ++child;
        }
        if (!(heap_[child] < moved)) {
            break;
        }
        place(index, heap_[child]);
        index = child;
    }
    place(index, moved);
}

void timer_queue::remove_at(std::size_t index) {
    places_[heap_[index].who] = NOWHERE;
    const timer last = heap_.back();
    heap_.pop_back();
    if (index < heap_.size()) {
        place(index, last);
        sift_up(index);
        sift_down(places_[last.who]);
    }
}

}  // namespace probed
