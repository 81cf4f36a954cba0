// SPDX-License-Identifier: MIT
#include "order.h"

#include <algorithm>

#include "core_model.h"

namespace orvgen::kernelgen {

namespace {

using Order = std::vector<int>;

std::size_t at(int i) { return static_cast<std::size_t>(i); }

// The instructions but for the loads, which emit nothing where they stand.
class Dependences {
  public:
    explicit Dependences(const Code& code) : code_(code) {
        const std::size_t n = code.instructions.size();
        operands.resize(n);
        users.resize(n);
        std::vector<int> definition(at(code.registers), -1);
        for (std::size_t i = 0; i < n; ++i) {
            const Instruction& x = code.instructions[i];
            if (x.dst != kNoRegister) definition[at(x.dst)] = static_cast<int>(i);
        }
        for (std::size_t i = 0; i < n; ++i) {
            const Instruction& x = code.instructions[i];
            if (isLoad(x.op)) {
                loads.push_back(static_cast<int>(i));
                continue;
            }
            body.push_back(static_cast<int>(i));
            for (const Register r : {x.a, x.b}) {
                if (r == kNoRegister || (r == x.b && x.a == x.b && r != x.a)) continue;
                const int d = definition[at(r)];
                if (isLoad(code.instructions[at(d)].op)) continue;
                if (!operands[i].empty() && operands[i].back() == d) continue;
                operands[i].push_back(d);
                users[at(d)].push_back(static_cast<int>(i));
            }
        }
    }

    int latency(int i) const { return orderLatency(code_.instructions[at(i)].op); }
    bool defines(int i) const { return code_.instructions[at(i)].dst != kNoRegister; }

    const Code& code_;
    std::vector<Order> operands, users;
    Order loads, body;
};

Order depthFirst(const Dependences& d, const Code& code, bool longestFirst) {
    Order order;
    std::vector<bool> done(code.instructions.size(), false);
    std::vector<int> depth(code.instructions.size(), 0);
    for (const int i : d.body)
        for (const int o : d.operands[at(i)])
            depth[at(i)] = std::max(depth[at(i)], depth[at(o)] + d.latency(o));
    const auto visit = [&](auto&& self, int i) -> void {
        if (done[at(i)]) return;
        done[at(i)] = true;
        Order operands = d.operands[at(i)];
        if (longestFirst)
            std::stable_sort(operands.begin(), operands.end(),
                             [&](int x, int y) { return depth[at(x)] > depth[at(y)]; });
        for (const int o : operands) self(self, o);
        order.push_back(i);
    };
    for (const int i : d.body)
        if (isStore(code.instructions[at(i)].op)) visit(visit, i);
    for (const int i : d.body) visit(visit, i);
    return order;
}

// What the longest chain of others waits for goes first.
Order longestChainFirst(const Dependences& d, std::size_t size) {
    std::vector<int> height(size, 0);
    for (auto i = d.body.rbegin(); i != d.body.rend(); ++i)
        for (const int u : d.users[at(*i)])
            height[at(*i)] = std::max(height[at(*i)], height[at(u)] + d.latency(*i));
    Order order = d.body;
    std::stable_sort(order.begin(), order.end(),
                     [&](int x, int y) { return height[at(x)] > height[at(y)]; });
    return order;
}

// Producers before consumers, cut in the middle again and again: what is computed in one part is
// used there, and little is live across a cut.
class Bisection {
  public:
    Bisection(const Dependences& d, std::size_t size, bool resultsFirst)
        : d_(d), part_(size, -1), colour_(size, 0), resultsFirst_(resultsFirst) {}

    Order run() {
        for (const int i : d_.body) part_[at(i)] = 0;
        schedule(d_.body, 0);
        return std::move(order_);
    }

  private:
    void schedule(const Order& set, int id) {
        if (set.size() <= 2) {
            order_.insert(order_.end(), set.begin(), set.end());
            return;
        }
        std::vector<Order> components = split(set, id);
        if (components.size() > 1) {
            for (const Order& c : components) schedule(c, rename(c));
            return;
        }
        const auto [first, second] = bisect(set, id);
        if (first.empty() || second.empty()) {
            order_.insert(order_.end(), set.begin(), set.end());
            return;
        }
        schedule(first, rename(first));
        schedule(second, rename(second));
    }

    int rename(const Order& set) {
        const int id = ++lastPart_;
        for (const int i : set) part_[at(i)] = id;
        return id;
    }

    std::vector<Order> split(const Order& set, int id) {
        std::vector<Order> components;
        for (const int i : set) colour_[at(i)] = 0;
        for (const int i : set) {
            if (colour_[at(i)]) continue;
            Order stack{i};
            const int mark = static_cast<int>(components.size()) + 1;
            components.emplace_back();
            colour_[at(i)] = mark;
            while (!stack.empty()) {
                const int x = stack.back();
                stack.pop_back();
                for (const Order* neighbours : {&d_.operands[at(x)], &d_.users[at(x)]})
                    for (const int y : *neighbours)
                        if (part_[at(y)] == id && !colour_[at(y)]) {
                            colour_[at(y)] = mark;
                            stack.push_back(y);
                        }
            }
        }
        for (const int i : set) components[at(colour_[at(i)] - 1)].push_back(i);
        return components;
    }

    // Colours from the sources down and from the results up, a layer each in turn.
    std::pair<Order, Order> bisect(const Order& set, int id) {
        constexpr int kFirst = 1, kSecond = 2;
        for (const int i : set) colour_[at(i)] = 0;
        const auto all = [&](const Order& list, int colour) {
            return std::all_of(list.begin(), list.end(), [&](int y) {
                return part_[at(y)] != id || colour_[at(y)] == colour;
            });
        };
        std::size_t left = set.size();
        const auto layer = [&](bool sources) {
            const int colour = sources ? kFirst : kSecond;
            Order found;
            for (const int i : set)
                if (!colour_[at(i)] && all((sources ? d_.operands : d_.users)[at(i)], colour))
                    found.push_back(i);
            for (const int i : found) colour_[at(i)] = colour;
            left -= found.size();
            return !found.empty();
        };
        while (left > 0) {
            const bool one = layer(!resultsFirst_);
            const bool other = layer(resultsFirst_);
            if (!one && !other) break;
        }
        std::pair<Order, Order> halves;
        for (const int i : set)
            (colour_[at(i)] == kSecond ? halves.second : halves.first).push_back(i);
        return halves;
    }

    const Dependences& d_;
    std::vector<int> part_;
    std::vector<int> colour_;
    bool resultsFirst_;
    Order order_;
    int lastPart_ = 0;
};

// Among the next `window` instructions of `base`, takes one that need not wait; when the registers
// are full, one that frees the most.
Order windowed(const Dependences& d, const Order& base, std::size_t window, int liveLimit) {
    constexpr int kPerCycle = 4;
    const std::size_t n = d.operands.size();
    std::vector<int> waiting(n, 0), remainingUsers(n, 0), ready(n, 0);
    for (const int i : base) {
        waiting[at(i)] = static_cast<int>(d.operands[at(i)].size());
        remainingUsers[at(i)] = static_cast<int>(d.users[at(i)].size());
    }
    Order view(base.begin(),
               base.begin() + static_cast<std::ptrdiff_t>(std::min(window, base.size())));
    std::size_t next = view.size();
    Order order;
    int live = 0;
    int clock = 0;  // in quarter cycles
    while (!view.empty()) {
        std::size_t best = view.size();
        int bestFrees = 0;
        int bestStall = 0;
        for (std::size_t k = 0; k < view.size(); ++k) {
            const int i = view[k];
            if (waiting[at(i)] > 0) continue;
            int frees = d.defines(i) && !d.users[at(i)].empty() ? -1 : 0;
            for (const int o : d.operands[at(i)]) frees += remainingUsers[at(o)] == 1;
            const int stall = std::max(0, ready[at(i)] - clock);
            const bool tight = live - frees > liveLimit || live >= liveLimit;
            const bool better = best == view.size() || (tight && frees > bestFrees) ||
                                (!(tight && frees < bestFrees) && stall < bestStall);
            if (better) {
                best = k;
                bestFrees = frees;
                bestStall = stall;
            }
        }
        const int i = view[best];
        view.erase(view.begin() + static_cast<std::ptrdiff_t>(best));
        if (next < base.size()) view.push_back(base[next++]);
        order.push_back(i);
        live -= bestFrees;
        for (const int o : d.operands[at(i)]) --remainingUsers[at(o)];
        for (const int u : d.users[at(i)]) {
            --waiting[at(u)];
            ready[at(u)] = std::max(ready[at(u)], clock + kPerCycle * d.latency(i));
        }
        ++clock;
    }
    return order;
}

}  // namespace

std::vector<std::vector<int>> candidateOrders(const Code& code, const Target& target,
                                              Search search) {
    const Dependences d(code);
    const std::size_t n = code.instructions.size();
    std::vector<Order> bases = {d.body, Bisection(d, n, false).run(), Bisection(d, n, true).run()};
    std::vector<int> liveLimits = {target.registers};
    if (search == Search::Long) {
        bases.insert(bases.begin() + 1, {depthFirst(d, code, false), depthFirst(d, code, true)});
        if (target.pairs) bases.push_back(longestChainFirst(d, n));
        liveLimits = {target.registers - 4, target.registers - 2, target.registers};
    }
    std::vector<Order> orders;
    for (const Order& base : bases) {
        orders.push_back(base);
        for (const int live : liveLimits)
            for (const std::size_t window : {8U, 16U, 32U, 64U})
                orders.push_back(windowed(d, base, window, live));
    }
    for (Order& order : orders) order.insert(order.begin(), d.loads.begin(), d.loads.end());
    return orders;
}

}  // namespace orvgen::kernelgen
