// SPDX-License-Identifier: MIT
#include "strided.h"

#include <algorithm>
#include <stdexcept>

namespace orvgen::kernelgen {

namespace {

constexpr int kDistances[] = {1, 2, 3, 4, 6, 8, 12, 24};
constexpr std::size_t kLookAhead = 48;  // accesses that a new pointer is placed for

bool isReached(int distance) {
    return distance == 0 || std::ranges::find(kDistances, distance) != std::end(kDistances);
}

}  // namespace

std::string StridedPointers::from(const std::string& reg, std::size_t array, int distance) const {
    if (distance == 0) return reg;
    const bool three = distance % 3 == 0;
    const int factor = three ? distance / 3 : distance;
    std::string text = reg + " + " + (three ? arrays_[array].threeSteps : arrays_[array].step);
    if (factor > 1) text += "*" + std::to_string(factor);
    return text;
}

// How many of the next accesses a pointer at this element reaches.
int StridedPointers::coverage(const Element& at) const {
    int count = 0;
    const std::size_t end = std::min(accesses_.size(), now_ + kLookAhead);
    for (std::size_t i = now_; i < end; ++i)
        if (accesses_[i].array == at.array && isReached(accesses_[i].index - at.index)) ++count;
    return count;
}

// A pointer from which the wanted element is reached; made, if there is none, in the spare register
// that was used longest ago, out of a pointer that is there.
StridedPointers::Pointer& StridedPointers::pointer(std::vector<std::string>& before,
                                                   const Element& wanted) {
    for (Pointer& p : pointers_)
        if (p.at.array == wanted.array && isReached(wanted.index - p.at.index)) return p;
    struct Start {
        std::string reg;
        int index;
    };
    std::vector<Start> starts = {{arrays_[wanted.array].base, 0}};
    for (const Pointer& p : pointers_)
        if (p.at.array == wanted.array) starts.push_back({p.reg, p.at.index});
    // The place from which most is reached, by as few steps as will do.
    std::vector<int> steps;
    const Start* start = nullptr;
    int most = -1;
    const auto consider = [&](const Start& s, const std::vector<int>& way) {
        int index = s.index;
        for (const int d : way) index += d;
        if (!isReached(wanted.index - index)) return;
        const int reached = coverage({wanted.array, index});
        if (reached > most) {
            most = reached;
            start = &s;
            steps = way;
        }
    };
    for (const Start& s : starts)
        for (const int d : kDistances) consider(s, {d});
    if (!start)
        for (const Start& s : starts)
            for (const int d : kDistances)
                for (const int e : kDistances) consider(s, {d, e});
    if (!start)
        for (const Start& s : starts)
            for (const int d : kDistances)
                for (const int e : kDistances)
                    for (const int f : kDistances) consider(s, {d, e, f});
    if (!start) throw std::logic_error("an element that no pointer reaches");

    std::size_t place = pointers_.size();
    if (place < spare_.size()) {
        pointers_.push_back({spare_[place], {}, 0});
    } else {
        place = static_cast<std::size_t>(
            std::ranges::min_element(pointers_, {}, &Pointer::lastUse) - pointers_.begin());
    }
    Pointer& p = pointers_[place];
    std::string reg = start->reg;
    int index = start->index;
    for (const int d : steps) {
        before.push_back("\tlea\t" + p.reg + ", [" + from(reg, wanted.array, d) + "]");
        reg = p.reg;
        index += d;
    }
    p.at = {wanted.array, index};
    return p;
}

StridedPointers::Access StridedPointers::next() {
    const Element& wanted = accesses_.at(now_);
    Access access;
    if (isReached(wanted.index)) {
        access.expression = from(arrays_[wanted.array].base, wanted.array, wanted.index);
    } else {
        Pointer& p = pointer(access.before, wanted);
        p.lastUse = now_;
        access.expression = from(p.reg, wanted.array, wanted.index - p.at.index);
    }
    ++now_;
    return access;
}

}  // namespace orvgen::kernelgen
