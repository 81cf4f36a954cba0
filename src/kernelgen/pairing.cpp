// SPDX-License-Identifier: MIT
#include "pairing.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace orvgen::kernelgen {

namespace {

std::size_t at(int i) { return static_cast<std::size_t>(i); }

// Instructions of one kind stand further apart than this only where there are hundreds alike.
constexpr int kWindow = 64;

// What pairs save and shuffles cost, in instructions.
constexpr double kLeastGain = 0.4;
constexpr double kOperation = 1.0;
constexpr double kConversion = 1.5;    // an operation and a shuffle
constexpr double kStore = 0.5;         // of neighbours
constexpr double kApartLoads = 0.3;    // elements that do not stand side by side
constexpr double kGather = 0.75;       // operands that are no pair
constexpr double kUpperAlone = 0.5;    // a user of the upper lanes that stays alone
constexpr double kLowerAlone = 0.1;    // of the lower ones
constexpr double kSmallestPart = 0.7;  // by which a seed may put off a growth
constexpr std::size_t kFreeSize = 4;   // pairs up to which it does not

// An operation stands at a multiple of this depth; fewer movements follow each other.
constexpr int kMovements = 64;

// Numbers are put together by these.
bool isOfScalars(Opcode op) {
    switch (op) {
        case Opcode::LoadSS:
        case Opcode::LoadSD:
        case Opcode::AddSS:
        case Opcode::SubSS:
        case Opcode::MulSS:
        case Opcode::AddSD:
        case Opcode::SubSD:
        case Opcode::MulSD:
        case Opcode::Widen:
        case Opcode::Narrow:
        case Opcode::StoreSS:
        case Opcode::StoreSD:
            return true;
        default:
            return false;
    }
}

// Vectors of 16 bytes by these.
bool isOfVectors(Opcode op) {
    switch (op) {
        case Opcode::LoadHalf:
        case Opcode::LoadHalves:
        case Opcode::Load16:
        case Opcode::Load16Split:
        case Opcode::LoadAligned:
        case Opcode::AddPS:
        case Opcode::SubPS:
        case Opcode::MulPS:
        case Opcode::AddPD:
        case Opcode::SubPD:
        case Opcode::MulPD:
        case Opcode::XorPS:
        case Opcode::Shufps:
        case Opcode::Unpcklps:
        case Opcode::Unpckhps:
        case Opcode::Movlhps:
        case Opcode::Movhlps:
        case Opcode::Shufpd:
        case Opcode::Unpcklpd:
        case Opcode::Unpckhpd:
        case Opcode::StoreLow:
        case Opcode::StoreHigh:
        case Opcode::Store16:
        case Opcode::Store16At8:
        case Opcode::Store16Split:
        case Opcode::StoreAligned:
            return true;
        default:
            return false;
    }
}

// Pairs of numbers by these; of the movements only those that stay within the pairs.
bool isOfPairs(const Instruction& i) {
    switch (i.op) {
        case Opcode::LoadHalf:
        case Opcode::LoadHalves:
        case Opcode::Load16:
        case Opcode::AddPS:
        case Opcode::SubPS:
        case Opcode::MulPS:
        case Opcode::AddPD:
        case Opcode::SubPD:
        case Opcode::MulPD:
        case Opcode::WidenPS:
        case Opcode::NarrowPD:
        case Opcode::Shufpd:
        case Opcode::Unpckhpd:
        case Opcode::BlendPD:
        case Opcode::BlendPS:
        case Opcode::StoreLow:
        case Opcode::Store16:
            return true;
        case Opcode::Shufps:
            return i.immediate == kExchangeSingles;
        default:
            return false;
    }
}

bool isOfGrain(const Instruction& i, Grain grain) {
    switch (grain) {
        case Grain::Scalars:
            return isOfScalars(i.op);
        case Grain::Vectors:
            return isOfVectors(i.op);
        case Grain::Pairs:
            return isOfPairs(i);
    }
    return false;
}

class Search {
  public:
    Search(const DataFlow& flow, const PairingSearch& options)
        : flow_(flow),
          options_(options),
          random_(options.seed),
          workLeft_(options.work),
          tentative_(flow.instructions.size()) {
        pairing_.mate.assign(flow.instructions.size(), -1);
        pairing_.upper.assign(flow.instructions.size(), 0);
        for (int i = 0; i < static_cast<int>(flow.instructions.size()); ++i) {
            const Instruction& x = instruction(i);
            if (isLoad(x.op) || !isOfGrain(x, flow_.grain)) continue;
            kinds_[{x.op, x.immediate, flow_.depth[at(i)], baseOf(x)}].push_back(i);
        }
    }

    Pairing run() {
        bool exhausted = false;
        while (workLeft_ > 0) {
            std::vector<Pair> seeds = this->seeds();
            if (seeds.empty()) break;
            const bool some = options_.seed > 0 && !exhausted;
            if (some) pickSome(seeds);
            const std::vector<Pair> best = bestGrowth(seeds);
            // Some seeds had nothing to offer: all of them get a chance.
            if (best.empty() && !some) break;
            exhausted = best.empty();
            for (const auto& [p, q] : best) {
                pairing_.mate[at(p)] = q;
                pairing_.mate[at(q)] = p;
                pairing_.upper[at(q)] = 1;
            }
        }
        return std::move(pairing_);
    }

  private:
    struct Pair {
        int lower, upper;
    };
    // A mate for the growth at hand.
    struct Mate {
        int growth = 0;
        int other = -1;
        bool upper = false;
    };

    const Instruction& instruction(int i) const { return flow_.instructions[at(i)]; }
    static Base baseOf(const Instruction& i) { return i.hasAddress ? i.address.base : Base::Count; }

    bool isTaken(int i) const {
        return pairing_.isPaired(i) || tentative_[at(i)].growth == growth_;
    }
    bool isPair(int p, int q) const {
        const Mate& m = tentative_[at(p)];
        return (m.growth == growth_ && m.other == q && !m.upper) || pairing_.isPair(p, q);
    }
    bool isInPair(int i) const { return isTaken(i); }
    bool mayPair(int p, int q) const {
        --workLeft_;
        if (p == q || isTaken(p) || isTaken(q)) return false;
        const Instruction& x = instruction(p);
        const Instruction& y = instruction(q);
        return x.op == y.op && flow_.depth[at(p)] == flow_.depth[at(q)] &&
               x.immediate == y.immediate && baseOf(x) == baseOf(y) &&
               flow_.operands[at(p)].size() == flow_.operands[at(q)].size() &&
               !(options_.withinStages && x.stage != y.stage) && isOfGrain(x, flow_.grain);
    }

    // ---- growth

    bool add(int p, int q) {
        if (!mayPair(p, q)) return false;
        tentative_[at(p)] = {growth_, q, false};
        tentative_[at(q)] = {growth_, p, true};
        grown_.push_back({p, q});
        return true;
    }

    const std::vector<Pair>& grow(int p, int q) {
        ++growth_;
        grown_.clear();
        add(p, q);
        for (std::size_t next = 0; next < grown_.size(); ++next) {
            const Pair pair = grown_[next];
            growOperands(pair);
            growUsers(pair);
        }
        return grown_;
    }

    void growOperands(const Pair& pair) {
        const std::vector<int>& x = flow_.operands[at(pair.lower)];
        const std::vector<int>& y = flow_.operands[at(pair.upper)];
        if (x.size() == 1) {
            add(x[0], y[0]);
        } else if (x.size() == 2) {
            const bool crossed = rowOf(instruction(pair.lower).op).commutes && isCrossed(x, y);
            add(x[crossed ? 1 : 0], y[0]);
            add(x[crossed ? 0 : 1], y[1]);
        }
    }
    // Whether the operands are more alike with those of one side exchanged.
    bool isCrossed(const std::vector<int>& x, const std::vector<int>& y) const {
        const int straight = isPair(x[0], y[0]) + isPair(x[1], y[1]);
        const int crossed = isPair(x[1], y[0]) + isPair(x[0], y[1]);
        if (straight != crossed) return crossed > straight;
        return straight == 0 && !(mayPair(x[0], y[0]) && mayPair(x[1], y[1])) &&
               mayPair(x[1], y[0]) && mayPair(x[0], y[1]);
    }

    void growUsers(const Pair& pair) {
        for (const auto& [u, position] : flow_.users[at(pair.lower)]) {
            if (isTaken(u)) continue;
            int best = -1;
            int bestScore = flow_.operands[at(u)].size() == 1 ? -1 : 1;
            for (const auto& [v, other] : flow_.users[at(pair.upper)]) {
                if (other != position && !rowOf(instruction(u).op).commutes) continue;
                if (!mayPair(u, v)) continue;
                const int score = likeness(u, v, pair);
                if (score > bestScore) {
                    bestScore = score;
                    best = v;
                }
            }
            if (best >= 0) add(u, best);
        }
    }
    // How well the two users of a pair go together: by their other operands, and where they store.
    int likeness(int u, int v, const Pair& pair) const {
        int score = 0;
        const int a = otherOperand(u, pair.lower);
        const int b = otherOperand(v, pair.upper);
        if (a >= 0 && b >= 0) score = isPair(a, b) ? 4 : mayPair(a, b) ? 2 : a == b ? 1 : 0;
        if (isStore(instruction(u).op) && areNeighbours(u, v)) ++score;
        return score;
    }
    int otherOperand(int user, int operand) const {
        for (const int o : flow_.operands[at(user)])
            if (o != operand) return o;
        return -1;
    }
    bool areNeighbours(int p, int q) const {
        return kernelgen::areNeighbours(instruction(p), instruction(q), flow_.grain);
    }

    // ---- what a growth saves

    double gain() const {
        double sum = 0;
        for (const Pair& pair : grown_) {
            const auto& [p, q] = pair;
            const Opcode op = instruction(p).op;
            if (isLoad(op)) continue;
            if (isStore(op))
                sum += areNeighbours(p, q) ? kStore : 0.0;
            else
                sum += rowOf(op).unit == Unit::Convert ? kConversion : kOperation;
            sum -= operandCost(pair);
            for (const auto& [u, position] : flow_.users[at(p)])
                if (!isInPair(u)) sum -= kLowerAlone;
            for (const auto& [u, position] : flow_.users[at(q)])
                if (!isInPair(u)) sum -= kUpperAlone;
        }
        return sum;
    }
    double operandCost(const Pair& pair) const {
        const std::vector<int>& x = flow_.operands[at(pair.lower)];
        const std::vector<int>& y = flow_.operands[at(pair.upper)];
        const bool commutes = x.size() == 2 && rowOf(instruction(pair.lower).op).commutes;
        double sum = 0;
        for (std::size_t k = 0; k < x.size(); ++k) {
            const int a = x[k];
            const int b = y[k];
            const bool loads = isLoad(instruction(a).op) && isLoad(instruction(b).op);
            if (isPair(a, b)) {
                if (loads && !areNeighbours(a, b))
                    sum +=
                        kApartLoads / std::max(1.0, static_cast<double>(flow_.users[at(a)].size()));
            } else if (commutes && isPair(x[1 - k], b)) {
                continue;
            } else if (loads) {
                sum += a != b ? kApartLoads : 0.0;
            } else if (a == b) {
                sum += kGather / static_cast<double>(flow_.users[at(a)].size()) * 2;
            } else {
                sum += kGather;
            }
        }
        return sum;
    }

    // ---- seeds

    std::vector<Pair> seeds() {
        std::vector<Pair> seeds;
        place_.assign(flow_.instructions.size(), -1);
        for (auto& [kind, members] : kinds_) {
            std::erase_if(members, [&](int i) { return pairing_.isPaired(i); });
            for (int k = 0; k < static_cast<int>(members.size()); ++k) {
                const int p = members[at(k)];
                place_[at(p)] = k;
                for (int m = k + 1; m < static_cast<int>(members.size()) && m <= k + kWindow; ++m)
                    seeds.push_back({p, members[at(m)]});
            }
        }
        tried_.assign(flow_.instructions.size() * kWindow, false);
        return seeds;
    }

    void pickSome(std::vector<Pair>& seeds) {
        static constexpr std::size_t kCounts[] = {20, 60, 200, 1000};
        const std::size_t count = std::min(kCounts[random() % 4], seeds.size());
        for (std::size_t i = 0; i < count; ++i)
            std::swap(seeds[i], seeds[i + random() % (seeds.size() - i)]);
        seeds.resize(count);
    }
    // The same numbers with every compiler (linear congruences, Knuth's MMIX).
    std::uint32_t random() {
        random_ = random_ * 6364136223846793005U + 1442695040888963407U;
        return static_cast<std::uint32_t>(random_ >> 33U);
    }

    // A growth that has been seen from another pair in it need not be grown again.
    std::vector<bool>::reference tried(const Pair& pair) {
        int p = pair.lower;
        int apart = place_[at(pair.upper)] - place_[at(pair.lower)];
        if (apart < 0) {
            p = pair.upper;
            apart = -apart;
        }
        if (place_[at(p)] < 0 || apart == 0 || apart > kWindow) return elsewhere_.front();
        return tried_[at(p) * kWindow + at(apart - 1)];
    }

    std::vector<Pair> bestGrowth(const std::vector<Pair>& seeds) {
        std::vector<Pair> best;
        double most = kLeastGain;
        for (const Pair& seed : seeds) {
            if (tried(seed)) continue;
            for (const Pair& pair : grow(seed.lower, seed.upper)) tried(pair) = true;
            elsewhere_.front() = false;
            double saved = gain();
            if (options_.seed > 0 && grown_.size() > kFreeSize)
                saved *= kSmallestPart + (1 - kSmallestPart) * (random() % 1024) / 1024.0;
            if (saved > most) {
                most = saved;
                best = grown_;
            }
            if (workLeft_ <= 0) break;
        }
        std::erase_if(best, [&](const Pair& p) { return isLoad(instruction(p.lower).op); });
        return best;
    }

    using Kind = std::tuple<Opcode, int, int, Base>;

    const DataFlow& flow_;
    PairingSearch options_;
    std::uint64_t random_;
    mutable long workLeft_;
    Pairing pairing_;
    std::map<Kind, std::vector<int>> kinds_;
    std::vector<Mate> tentative_;
    int growth_ = 0;
    std::vector<Pair> grown_;
    std::vector<int> place_;  // among the instructions of its kind
    std::vector<bool> tried_;
    std::vector<bool> elsewhere_ = {false};
};

}  // namespace

bool areNeighbours(const Instruction& lower, const Instruction& upper, Grain grain) {
    // Some touch a part of a vector only, or two places.
    const auto isOnePlace = [&](const Instruction& i) {
        if (i.op == Opcode::LoadHalves) return false;
        if (grain == Grain::Vectors) return accessSize(i.op) == 16;
        return (isLoad(i.op) || isStore(i.op)) && isOfGrain(i, grain);
    };
    const int size = accessSize(lower.op, lower.width);
    return isOnePlace(lower) && isOnePlace(upper) && lower.address.base == upper.address.base &&
           size == accessSize(upper.op, upper.width) &&
           upper.address.offset == lower.address.offset + size;
}

DataFlow::DataFlow(const Code& code, Grain of)
    : instructions(code.instructions),
      operands(code.instructions.size()),
      users(code.instructions.size()),
      depth(code.instructions.size(), 0),
      grain(of) {
    std::vector<int> definition(at(code.registers), -1);
    const auto below = [&](int deepest, Opcode op) {
        const Unit unit = rowOf(op).unit;
        const bool moves = unit == Unit::Shuffle || unit == Unit::Interleave || unit == Unit::Logic;
        if (grain != Grain::Pairs || moves) return deepest + 1;
        return (deepest / kMovements + 1) * kMovements;
    };
    for (int i = 0; i < static_cast<int>(instructions.size()); ++i) {
        const Instruction& x = instructions[at(i)];
        for (const Register r : {x.a, x.b}) {
            if (r == kNoRegister) continue;
            const int o = definition[at(r)];
            users[at(o)].push_back({i, static_cast<int>(operands[at(i)].size())});
            operands[at(i)].push_back(o);
            depth[at(i)] = std::max(depth[at(i)], below(depth[at(o)], x.op));
        }
        if (x.dst != kNoRegister) definition[at(x.dst)] = i;
    }
}

Pairing findPairs(const DataFlow& flow, const PairingSearch& search) {
    return Search(flow, search).run();
}

}  // namespace orvgen::kernelgen
