// SPDX-License-Identifier: MIT
#include "lane_shuffles.h"

#include <algorithm>
#include <stdexcept>

namespace orvgen::kernelgen {

namespace {

std::pair<Source, Source> ordered(Source a, Source b) {
    return a < b ? std::pair(a, b) : std::pair(b, a);
}

std::vector<Intermediate> candidates(Source a, Source b) {
    std::vector<Intermediate> all;
    all.push_back({{Opcode::Unpcklps, a, b}, {{{0, 2, -1, -1}, {1, 3, -1, -1}}}});
    all.push_back({{Opcode::Unpckhps, a, b}, {{{-1, -1, 0, 2}, {-1, -1, 1, 3}}}});
    for (int i1 = 0; i1 < 4; ++i1)
        for (int i2 = i1; i2 < 4; ++i2)
            for (int j1 = 0; j1 < 4; ++j1)
                for (int j2 = j1; j2 < 4; ++j2) {
                    Intermediate m{{Opcode::Shufps, a, b, shuffleImmediate(i1, i2, j1, j2)}, {}};
                    for (auto& side : m.position) side.fill(-1);
                    m.position[0][static_cast<std::size_t>(i2)] = 1;
                    m.position[0][static_cast<std::size_t>(i1)] = 0;
                    m.position[1][static_cast<std::size_t>(j2)] = 3;
                    m.position[1][static_cast<std::size_t>(j1)] = 2;
                    all.push_back(m);
                }
    return all;
}

}  // namespace

int shuffleImmediate(int i0, int i1, int i2, int i3) { return i0 | i1 << 2 | i2 << 4 | i3 << 6; }

std::optional<Source> LaneShuffles::common(const Target& x, const Target& y) {
    if (x.source == kAny) return y.source;
    if (y.source == kAny || x.source == y.source) return x.source;
    return std::nullopt;
}

bool LaneShuffles::matches(const Target& t, Source source, int lane) const {
    return t.source == kAny || (t.source == source && (source == zero_ || t.lane == lane));
}

std::optional<Source> LaneShuffles::identity(const Targets& t) const {
    Source s = kAny;
    for (int l = 0; l < 4; ++l) {
        const Target& x = t[static_cast<std::size_t>(l)];
        if (x.source == kAny) continue;
        if (s == kAny) s = x.source;
        if (!matches(x, s, l)) return std::nullopt;
    }
    if (s == kAny) return std::nullopt;
    return s;
}

std::optional<Shuffle> LaneShuffles::oneShuffle(const Targets& t) const {
    const auto interleaved = [&](int first) -> std::optional<SourcePair> {
        const auto a = common(t[0], t[2]);
        const auto b = common(t[1], t[3]);
        if (!a || !b || *a == kAny || *b == kAny) return std::nullopt;
        for (int l = 0; l < 2; ++l) {
            const auto at = static_cast<std::size_t>(2 * l);
            if (!matches(t[at], *a, first + l) || !matches(t[at + 1], *b, first + l))
                return std::nullopt;
        }
        return SourcePair{*a, *b};
    };
    if (const auto p = interleaved(0)) return Shuffle{Opcode::Unpcklps, p->first, p->second};
    if (const auto p = interleaved(2)) return Shuffle{Opcode::Unpckhps, p->first, p->second};
    auto a = common(t[0], t[1]);
    auto b = common(t[2], t[3]);
    if (!a || !b) return std::nullopt;
    if (*a == kAny) a = b;
    if (*b == kAny) b = a;
    const auto isPair = [&](std::size_t at, Source s, int lane) {
        return matches(t[at], s, lane) && matches(t[at + 1], s, lane + 1);
    };
    if (isPair(0, *a, 0) && isPair(2, *b, 0)) return Shuffle{Opcode::Movlhps, *a, *b};
    if (isPair(0, *a, 2) && isPair(2, *b, 2)) return Shuffle{Opcode::Movhlps, *b, *a};
    return Shuffle{Opcode::Shufps, *a, *b,
                   shuffleImmediate(t[0].lane, t[1].lane, t[2].lane, t[3].lane)};
}

void LaneShuffles::note(const Targets& t) {
    if (identity(t) || oneShuffle(t)) return;
    for (std::size_t h = 0; h < 4; h += 2) {
        if (common(t[h], t[h + 1])) continue;
        const SourcePair pair = ordered(t[h].source, t[h + 1].source);
        const bool turned = pair.first != t[h].source;
        const Target& x = t[turned ? h + 1 : h];
        const Target& y = t[turned ? h : h + 1];
        auto& list = needs_[pair];
        const Need need{x.lane, y.lane};
        if (std::find(list.begin(), list.end(), need) == list.end()) list.push_back(need);
    }
}

// Position of lane l of a pair's vector `side` in an intermediate; any lane of zeros will do.
int LaneShuffles::positionIn(const Intermediate& m, std::size_t side, Source source,
                             int lane) const {
    if (source == zero_) return *std::max_element(m.position[side].begin(), m.position[side].end());
    return m.position[side][static_cast<std::size_t>(lane)];
}

bool LaneShuffles::covers(const Intermediate& m, const SourcePair& pair, const Need& need) const {
    return positionIn(m, 0, pair.first, need.i) >= 0 && positionIn(m, 1, pair.second, need.j) >= 0;
}

Source LaneShuffles::chooseIntermediates(Source next) {
    for (const auto& entry : needs_) {
        const SourcePair& pair = entry.first;
        std::vector<Need> open = entry.second;
        const auto all = candidates(pair.first, pair.second);
        while (!open.empty()) {
            const Intermediate* best = nullptr;
            std::ptrdiff_t most = 0;
            for (const Intermediate& m : all) {
                const auto covered = std::count_if(
                    open.begin(), open.end(), [&](const Need& n) { return covers(m, pair, n); });
                if (covered > most) {
                    most = covered;
                    best = &m;
                }
            }
            Intermediate chosen = *best;
            chosen.result = next++;
            std::erase_if(open, [&](const Need& n) { return covers(chosen, pair, n); });
            intermediates_[pair].push_back(chosen);
        }
    }
    return next;
}

LaneShuffles::Found LaneShuffles::find(const Target& x, const Target& y) const {
    const SourcePair pair = ordered(x.source, y.source);
    const bool turned = pair.first != x.source;
    for (const Intermediate& m : intermediates_.at(pair)) {
        const int px = positionIn(m, turned ? 1 : 0, x.source, x.lane);
        const int py = positionIn(m, turned ? 0 : 1, y.source, y.lane);
        if (px >= 0 && py >= 0) return {m, px, py};
    }
    throw std::logic_error("no intermediate for two lanes");
}

}  // namespace orvgen::kernelgen
