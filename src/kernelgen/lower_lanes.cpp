// Data movement of four-lane graphs: which loads, shuffles and stores bring the lanes together that
// a flow packs.
//
// A pack names four lanes of other values. One shuffle makes it if its lanes come as two of one
// vector and two of another, or interleaved. Otherwise its lower and its upper two lanes are
// brought together first, each in an intermediate of two vectors, and one shuffle joins them. An
// intermediate can serve several packs: of each pair of vectors the lane pairs that are wanted are
// covered by as few intermediates as a greedy choice finds. Four packs that transpose four vectors
// come out as the eight shuffles of a transpose.
#include <algorithm>
#include <optional>
#include <stdexcept>

#include "lower.h"

namespace orvgen::kernelgen {

namespace {

using Source = int;  // a vector that lanes are taken from
constexpr Source kAny = -1;

struct Target {
    Source source = kAny;  // kAny: the lane may hold anything
    int lane = 0;          // of the zero vector every lane will do
};

using Targets = std::array<Target, 4>;

struct Shuffle {
    Opcode op;
    Source a, b;
    int immediate = 0;
};

int immediateOf(int i0, int i1, int i2, int i3) { return i0 | i1 << 2 | i2 << 4 | i3 << 6; }

// Two vectors merged by one shuffle; position[s][l] is where lane l of vector s stands in it.
struct Intermediate {
    Shuffle shuffle;
    std::array<std::array<int, 4>, 2> position;
    Source result = kAny;
};

class LaneLowering {
  public:
    LaneLowering(const Graph& graph, const LoweringOptions& options)
        : graph_(graph), options_(options), pool_(code_) {
        code_.stages = graph.stages();
        sources_.resize(graph.nodes().size());
        zero_ = newSource();
    }

    Code run() {
        planLoads();
        planOutputs();
        for (const Targets& targets : packTargets_) noteNeeds(targets);
        for (const OutputVector& output : outputs_) noteNeeds(output.targets);
        chooseIntermediates();
        emitNodes();
        emitOutputs();
        return std::move(code_);
    }

  private:
    struct OutputVector {
        Targets targets;
        int low = -1, high = -1;  // elements of dst
        int stage = 0;
    };
    struct Need {
        int i, j;  // lane of the first vector, of the second
        auto operator<=>(const Need&) const = default;
    };
    using SourcePair = std::pair<Source, Source>;

    const Node& node(NodeId id) const { return graph_.node(id); }
    bool isInput(const Lane& l) const { return node(l.node).op == Op::Input; }
    bool isZero(const Lane& l) const { return node(l.node).op == Op::Zero; }

    Source newSource() {
        sources_.push_back(kNoRegister);
        return static_cast<Source>(sources_.size()) - 1;
    }

    // ---- loads ------------------------------------------------------------------------------

    // Elements that stand side by side in a pack are loaded as one vector.
    void planLoads() {
        for (const Node& n : graph_.nodes()) {
            if (n.op != Op::Pack) continue;
            const auto& lanes = graph_.lanes(n);
            for (std::size_t h = 0; h < 4; h += 2)
                if (isInput(lanes[h]) && isInput(lanes[h + 1]) &&
                    lanes[h].node != lanes[h + 1].node)
                    elementPair(node(lanes[h].node).index, node(lanes[h + 1].node).index);
        }
        for (const Node& n : graph_.nodes()) {
            if (n.op != Op::Pack) continue;
            packOf_[static_cast<NodeId>(&n - graph_.nodes().data())] =
                static_cast<int>(packTargets_.size());
            packTargets_.push_back(targetsOf(graph_.lanes(n)));
        }
    }

    Source elementPair(int low, int high) {
        for (const auto& [elements, source] : pairs_)
            if (elements == std::pair(low, high) || elements == std::pair(high, low)) return source;
        if (low == high + 1 && !options_.halvesOnly) std::swap(low, high);
        const Source source = newSource();
        pairs_.push_back({{low, high}, source});
        return source;
    }

    Source elementHalf(int element) {
        for (const auto& [elements, source] : pairs_)
            if (elements == std::pair(element, -1)) return source;
        const Source source = newSource();
        pairs_.push_back({{element, -1}, source});
        return source;
    }

    Target inputTarget(const Lane& lane, std::optional<int> neighbour) {
        const int element = node(lane.node).index;
        if (neighbour) {
            const Source source = elementPair(element, *neighbour);
            return {source, lane.lane + (elementsOf(source).first == element ? 0 : 2)};
        }
        for (const auto& [elements, source] : pairs_) {
            if (elements.first == element) return {source, lane.lane};
            if (elements.second == element) return {source, lane.lane + 2};
        }
        return {elementHalf(element), lane.lane};
    }

    const std::pair<int, int>& elementsOf(Source source) const {
        for (const auto& pair : pairs_)
            if (pair.second == source) return pair.first;
        throw std::logic_error("no loaded vector");
    }

    Targets targetsOf(const std::array<Lane, 4>& lanes) {
        Targets t;
        for (std::size_t l = 0; l < 4; ++l) {
            const Lane& lane = lanes[l];
            const Lane& other = lanes[l ^ 1];
            if (isZero(lane)) {
                // The upper half of an element that is loaded alone is zero.
                t[l] = isInput(other) ? Target{elementHalf(node(other.node).index), 2}
                                      : Target{zero_, 0};
            } else if (isInput(lane)) {
                if (isZero(other))
                    t[l] = {elementHalf(node(lane.node).index), lane.lane};
                else if (isInput(other) && other.node != lane.node)
                    t[l] = inputTarget(lane, node(other.node).index);
                else
                    t[l] = inputTarget(lane, std::nullopt);
            } else {
                t[l] = {lane.node, lane.lane};
            }
        }
        return t;
    }

    // ---- shuffles ---------------------------------------------------------------------------

    // The one vector that a two-lane half of the targets lies in, if it does.
    static std::optional<Source> common(const Target& x, const Target& y) {
        if (x.source == kAny) return y.source;
        if (y.source == kAny || x.source == y.source) return x.source;
        return std::nullopt;
    }

    bool matches(const Target& t, Source source, int lane) const {
        return t.source == kAny || (t.source == source && (source == zero_ || t.lane == lane));
    }

    std::optional<Shuffle> oneShuffle(const Targets& t) const {
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
                       immediateOf(t[0].lane, t[1].lane, t[2].lane, t[3].lane)};
    }

    bool isIdentity(const Targets& t) const {
        Source s = kAny;
        for (int l = 0; l < 4; ++l) {
            const Target& x = t[static_cast<std::size_t>(l)];
            if (x.source == kAny) continue;
            if (s == kAny) s = x.source;
            if (!matches(x, s, l)) return false;
        }
        return s != kAny;
    }

    static SourcePair ordered(Source a, Source b) {
        return a < b ? SourcePair{a, b} : SourcePair{b, a};
    }

    void noteNeeds(const Targets& t) {
        if (isIdentity(t) || oneShuffle(t)) return;
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

    static std::vector<Intermediate> candidates(Source a, Source b) {
        std::vector<Intermediate> all;
        all.push_back({{Opcode::Unpcklps, a, b}, {{{0, 2, -1, -1}, {1, 3, -1, -1}}}});
        all.push_back({{Opcode::Unpckhps, a, b}, {{{-1, -1, 0, 2}, {-1, -1, 1, 3}}}});
        for (int i1 = 0; i1 < 4; ++i1)
            for (int i2 = i1; i2 < 4; ++i2)
                for (int j1 = 0; j1 < 4; ++j1)
                    for (int j2 = j1; j2 < 4; ++j2) {
                        Intermediate m{{Opcode::Shufps, a, b, immediateOf(i1, i2, j1, j2)}, {}};
                        for (auto& side : m.position) side.fill(-1);
                        m.position[0][static_cast<std::size_t>(i2)] = 1;
                        m.position[0][static_cast<std::size_t>(i1)] = 0;
                        m.position[1][static_cast<std::size_t>(j2)] = 3;
                        m.position[1][static_cast<std::size_t>(j1)] = 2;
                        all.push_back(m);
                    }
        return all;
    }

    // Position of lane l of a pair's vector `side` in an intermediate; any lane of zeros will do.
    int positionIn(const Intermediate& m, std::size_t side, Source source, int lane) const {
        if (source == zero_)
            return *std::max_element(m.position[side].begin(), m.position[side].end());
        return m.position[side][static_cast<std::size_t>(lane)];
    }

    bool covers(const Intermediate& m, const SourcePair& pair, const Need& need) const {
        return positionIn(m, 0, pair.first, need.i) >= 0 &&
               positionIn(m, 1, pair.second, need.j) >= 0;
    }

    void chooseIntermediates() {
        for (const auto& entry : needs_) {
            const SourcePair& pair = entry.first;
            std::vector<Need> open = entry.second;
            const auto all = candidates(pair.first, pair.second);
            while (!open.empty()) {
                const Intermediate* best = nullptr;
                std::ptrdiff_t most = 0;
                for (const Intermediate& m : all) {
                    const auto covered =
                        std::count_if(open.begin(), open.end(),
                                      [&](const Need& n) { return covers(m, pair, n); });
                    if (covered > most) {
                        most = covered;
                        best = &m;
                    }
                }
                Intermediate chosen = *best;
                chosen.result = newSource();
                std::erase_if(open, [&](const Need& n) { return covers(chosen, pair, n); });
                intermediates_[pair].push_back(chosen);
            }
        }
    }

    // ---- emission ---------------------------------------------------------------------------

    Instruction& push(Opcode op, int stage) {
        Instruction i{};
        i.op = op;
        i.stage = stage;
        code_.instructions.push_back(i);
        return code_.instructions.back();
    }

    Register load(Source source, int stage) {
        const auto [low, high] = elementsOf(source);
        const bool neighbours = high == low + 1 && low % 2 == 0 && !options_.halvesOnly;
        Instruction& i = push(high < 0     ? Opcode::LoadHalf
                              : neighbours ? Opcode::Load16
                                           : Opcode::LoadHalves,
                              stage);
        i.hasAddress = true;
        i.address = {Base::Src, 8 * low};
        if (i.op == Opcode::LoadHalves) i.high = {Base::Src, 8 * high};
        return i.dst = code_.fresh();
    }

    Register registerOf(Source source, int stage) {
        Register& r = sources_[static_cast<std::size_t>(source)];
        if (r != kNoRegister) return r;
        if (source == zero_) {
            Instruction& i = push(Opcode::Zero, stage);
            return r = i.dst = code_.fresh();
        }
        for (const auto& pair : pairs_)
            if (pair.second == source) return r = load(source, stage);
        throw std::logic_error("a lane of a value that is not there yet");
    }

    Register emit(const Shuffle& s, int stage) {
        const Register a = registerOf(s.a, stage);
        const Register b = registerOf(s.b, stage);
        Instruction& i = push(s.op, stage);
        i.a = a;
        i.b = b;
        i.immediate = s.immediate;
        return i.dst = code_.fresh();
    }

    // Where the two lanes of a half stand together: a vector and two lanes.
    struct Half {
        Source source;
        int first, second;
    };
    Half half(const Target& x, const Target& y, int stage) {
        if (const auto s = common(x, y)) return {*s, x.lane, y.lane};
        const SourcePair pair = ordered(x.source, y.source);
        const bool turned = pair.first != x.source;
        for (Intermediate& m : intermediates_[pair]) {
            const int px = positionIn(m, turned ? 1 : 0, x.source, x.lane);
            const int py = positionIn(m, turned ? 0 : 1, y.source, y.lane);
            if (px < 0 || py < 0) continue;
            Register& r = sources_[static_cast<std::size_t>(m.result)];
            if (r == kNoRegister) r = emit(m.shuffle, stage);
            return {m.result, px, py};
        }
        throw std::logic_error("no intermediate for two lanes");
    }

    Register gather(const Targets& t, int stage) {
        if (isIdentity(t)) {
            for (const Target& x : t)
                if (x.source != kAny) return registerOf(x.source, stage);
        }
        if (const auto shuffle = oneShuffle(t)) return emit(*shuffle, stage);
        Half low = half(t[0], t[1], stage);
        Half high = half(t[2], t[3], stage);
        // A half that may hold anything, as the upper one of an output alone in its vector.
        if (low.source == kAny) low.source = high.source;
        if (high.source == kAny) high.source = low.source;
        return emit({Opcode::Shufps, low.source, high.source,
                     immediateOf(low.first, low.second, high.first, high.second)},
                    stage);
    }

    void emitNodes() {
        for (std::size_t id = 0; id < graph_.nodes().size(); ++id) {
            const Node& n = graph_.nodes()[id];
            Register& r = sources_[id];
            switch (n.op) {
                case Op::Pack:
                    r = gather(
                        packTargets_[static_cast<std::size_t>(packOf_.at(static_cast<NodeId>(id)))],
                        n.stage);
                    break;
                case Op::Zero:
                    r = registerOf(zero_, n.stage);
                    break;
                case Op::Add:
                case Op::Sub: {
                    const Register a = registerOf(n.a, n.stage);
                    const Register b = registerOf(n.b, n.stage);
                    Instruction& i = push(n.op == Op::Add ? Opcode::AddPS : Opcode::SubPS, n.stage);
                    i.a = a;
                    i.b = b;
                    r = i.dst = code_.fresh();
                    break;
                }
                case Op::Mul: {
                    const Register a = registerOf(n.a, n.stage);
                    const Address constant = pool_.entry(graph_.constant(n));
                    Instruction& i = push(Opcode::MulPS, n.stage);
                    i.a = a;
                    i.hasAddress = true;
                    i.address = constant;
                    r = i.dst = code_.fresh();
                    break;
                }
                case Op::Input:
                case Op::Output:
                    break;
                default:
                    throw std::logic_error("not an operation of a four-lane graph");
            }
        }
    }

    // ---- outputs ----------------------------------------------------------------------------

    // Results are interleaved two elements a vector: lanes 0 and 1 of a pair of vectors, or lanes 2
    // and 3, as the unpacks give them.
    void planOutputs() {
        struct Pending {
            const Graph::PairOutput* output;
            int stage;
            bool done = false;
        };
        std::vector<Pending> pending;
        for (const Node& n : graph_.nodes())
            if (n.op == Op::Output) pending.push_back({&graph_.pairOutput(n), n.stage});
        for (std::size_t p = 0; p < pending.size(); ++p) {
            if (pending[p].done) continue;
            const auto& o = *pending[p].output;
            const auto partner =
                std::find_if(pending.begin() + static_cast<std::ptrdiff_t>(p) + 1, pending.end(),
                             [&](const Pending& q) { return !q.done && isPartner(o, *q.output); });
            OutputVector v;
            v.stage = pending[p].stage;
            v.low = o.element;
            const Graph::PairOutput* low = &o;
            const Graph::PairOutput* high = nullptr;
            if (partner != pending.end()) {
                partner->done = true;
                high = partner->output;
                if (low->re.lane > high->re.lane) std::swap(low, high);
                v.low = low->element;
                v.high = high->element;
            }
            const Targets lowTargets = targetsOf({low->re, low->im, low->re, low->im});
            v.targets = {lowTargets[0], lowTargets[1], Target{}, Target{}};
            if (high) {
                const Targets highTargets = targetsOf({high->re, high->im, high->re, high->im});
                v.targets[2] = highTargets[0];
                v.targets[3] = highTargets[1];
            }
            outputs_.push_back(v);
        }
    }

    static bool isPartner(const Graph::PairOutput& a, const Graph::PairOutput& b) {
        if (a.re.node != b.re.node || a.im.node != b.im.node) return false;
        const bool packed = a.re.node == a.im.node;
        return packed ? (a.re.lane ^ 2) == b.re.lane && (a.im.lane ^ 2) == b.im.lane
                      : (a.re.lane ^ 1) == b.re.lane && (a.im.lane ^ 1) == b.im.lane;
    }

    void emitOutputs() {
        if (outputs_.empty()) return;
        Instruction& spread = push(Opcode::SpreadSS, outputs_.front().stage);
        spread.hasAddress = true;
        spread.address = {Base::Scale, 0};
        const Register scale = spread.dst = code_.fresh();
        for (const OutputVector& o : outputs_) {
            const Register interleaved = gather(o.targets, o.stage);
            Instruction& product = push(Opcode::MulPS, o.stage);
            product.a = interleaved;
            product.b = scale;
            const Register result = product.dst = code_.fresh();
            const auto store = [&](Opcode op, int element) {
                Instruction& i = push(op, o.stage);
                i.a = result;
                i.hasAddress = true;
                i.address = {Base::Dst, 8 * element};
            };
            if (o.high == o.low + 1 && !options_.halvesOnly) {
                store(o.low % 2 == 0 ? Opcode::Store16 : Opcode::Store16At8, o.low);
            } else {
                store(Opcode::StoreLow, o.low);
                if (o.high >= 0) store(Opcode::StoreHigh, o.high);
            }
        }
    }

    const Graph& graph_;
    LoweringOptions options_;
    Code code_;
    PoolBuilder pool_;
    std::vector<Register> sources_;  // a graph's node is the source of the same number
    Source zero_;
    std::vector<std::pair<std::pair<int, int>, Source>> pairs_;
    std::vector<Targets> packTargets_;
    std::map<NodeId, int> packOf_;
    std::vector<OutputVector> outputs_;
    std::map<SourcePair, std::vector<Need>> needs_;
    std::map<SourcePair, std::vector<Intermediate>> intermediates_;
};

}  // namespace

Code lowerLanes(const Graph& graph, const LoweringOptions& options) {
    return LaneLowering(graph, options).run();
}

}  // namespace orvgen::kernelgen
