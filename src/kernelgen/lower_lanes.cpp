// SPDX-License-Identifier: MIT
// Data movement of four-lane graphs: which loads, shuffles and stores bring the lanes together that
// a flow packs.
//
// A pack names four lanes of other values; lane_shuffles.h tells how they come together.
#include <algorithm>
#include <optional>
#include <stdexcept>

#include "lane_shuffles.h"
#include "lower.h"

namespace orvgen::kernelgen {

namespace {

class LaneLowering {
  public:
    LaneLowering(const Graph& graph, const LoweringOptions& options)
        : graph_(graph),
          options_(options),
          pool_(code_),
          sources_(graph.nodes().size() + 1, kNoRegister),
          zero_(static_cast<Source>(graph.nodes().size())),
          shuffles_(zero_) {
        code_.stages = graph.stages();
    }

    Code run() {
        planLoads();
        planOutputs();
        for (const Targets& targets : packTargets_) shuffles_.note(targets);
        for (const OutputVector& output : outputs_) shuffles_.note(output.targets);
        sources_.resize(static_cast<std::size_t>(
                            shuffles_.chooseIntermediates(static_cast<Source>(sources_.size()))),
                        kNoRegister);
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
        if (const auto s = LaneShuffles::common(x, y)) return {*s, x.lane, y.lane};
        const auto [m, px, py] = shuffles_.find(x, y);
        Register& r = sources_[static_cast<std::size_t>(m.result)];
        if (r == kNoRegister) r = emit(m.shuffle, stage);
        return {m.result, px, py};
    }

    Register gather(const Targets& t, int stage) {
        if (const auto source = shuffles_.identity(t)) return registerOf(*source, stage);
        if (const auto shuffle = shuffles_.oneShuffle(t)) return emit(*shuffle, stage);
        Half low = half(t[0], t[1], stage);
        Half high = half(t[2], t[3], stage);
        // A half that may hold anything, as the upper one of an output alone in its vector.
        if (low.source == kAny) low.source = high.source;
        if (high.source == kAny) high.source = low.source;
        return emit({Opcode::Shufps, low.source, high.source,
                     shuffleImmediate(low.first, low.second, high.first, high.second)},
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
    LaneShuffles shuffles_;
    std::vector<std::pair<std::pair<int, int>, Source>> pairs_;
    std::vector<Targets> packTargets_;
    std::map<NodeId, int> packOf_;
    std::vector<OutputVector> outputs_;
};

}  // namespace

Code lowerLanes(const Graph& graph, const LoweringOptions& options) {
    return LaneLowering(graph, options).run();
}

}  // namespace orvgen::kernelgen
