// SPDX-License-Identifier: MIT
#include "graph.h"

#include <stdexcept>
#include <utility>

namespace orvgen::kernelgen {

Type Graph::elementType() const {
    switch (arithmetic_) {
        case Arithmetic::Single:
            return Type::F32;
        case Arithmetic::Double:
            return Type::F64;
        case Arithmetic::SingleLanes:
            return Type::F32Pair;
        case Arithmetic::DoublePair:
            return Type::F64x2;
    }
    throw std::logic_error("unknown arithmetic");
}

Type Graph::valueType() const {
    return arithmetic_ == Arithmetic::SingleLanes ? Type::F32x4 : elementType();
}

NodeId Graph::intern(Op op, Type type, NodeId a, NodeId b, int index) {
    const auto key = std::make_tuple(op, type, a, b, index);
    if (const auto found = interned_.find(key); found != interned_.end()) return found->second;
    if (op == Op::Add) {  // a + b and b + a are one value; the order first asked for stays
        const auto turned = interned_.find(std::make_tuple(op, type, b, a, index));
        if (turned != interned_.end()) return turned->second;
    }
    const auto id = static_cast<NodeId>(nodes_.size());
    nodes_.push_back({op, type, a, b, index, static_cast<int>(stages_.size()) - 1});
    interned_.emplace(key, id);
    return id;
}

NodeId Graph::input(int element) { return intern(Op::Input, elementType(), kNone, kNone, element); }

NodeId Graph::zero(Type type) { return intern(Op::Zero, type, kNone, kNone, 0); }

NodeId Graph::pack(const std::array<Lane, 4>& lanes) {
    const Node& first = node(lanes[0].node);
    const bool same = lanes[0].lane == 0 && lanes[1] == Lane{lanes[0].node, 1} &&
                      lanes[2] == Lane{lanes[0].node, 2} && lanes[3] == Lane{lanes[0].node, 3};
    if (same && first.type == Type::F32x4) return lanes[0].node;
    auto [place, isNew] = laneIndex_.try_emplace(lanes, static_cast<int>(lanes_.size()));
    if (isNew) lanes_.push_back(lanes);
    return intern(Op::Pack, Type::F32x4, kNone, kNone, place->second);
}

NodeId Graph::add(NodeId a, NodeId b) {
    if (node(a).type != node(b).type) throw std::logic_error("sum of values of two types");
    return intern(Op::Add, node(a).type, a, b, 0);
}

NodeId Graph::sub(NodeId a, NodeId b) {
    if (node(a).type != node(b).type) throw std::logic_error("difference of values of two types");
    return intern(Op::Sub, node(a).type, a, b, 0);
}

NodeId Graph::findSub(NodeId a, NodeId b) const {
    const auto found = interned_.find(std::make_tuple(Op::Sub, node(a).type, a, b, 0));
    return found == interned_.end() ? kNone : found->second;
}

NodeId Graph::mul(NodeId a, const std::vector<Constant>& lanes) {
    const Type type = node(a).type;
    const bool isDoubling = lanes.size() == 1 && lanes[0].equals(2);
    if (type == Type::F32 && arithmetic_ == Arithmetic::Single && !isDoubling)
        throw std::logic_error("a product by a transform constant runs in binary64");
    const bool single = type == Type::F32x4 || type == Type::F32;
    std::vector<double> stored;
    for (const Constant& c : lanes)
        stored.push_back(single ? static_cast<double>(c.asFloat()) : c.asDouble());
    bool uniform = true;
    for (const double v : stored) uniform = uniform && v == stored[0];
    if (uniform) stored.resize(1);
    auto [place, isNew] =
        constantIndex_.try_emplace({type, stored}, static_cast<int>(constants_.size()));
    if (isNew) {
        StoredConstant c{type, lanes, stored};
        if (uniform) c.lanes.resize(1);
        constants_.push_back(std::move(c));
    }
    return intern(Op::Mul, type, a, kNone, place->second);
}

NodeId Graph::mulScale(NodeId a) {
    const Type type = node(a).type;
    NodeId scale = kNone;
    if (arithmetic_ == Arithmetic::Single) {
        scale = intern(Op::Scale, Type::F32, kNone, kNone, 0);
        if (type == Type::F64) scale = widen(scale);
    } else {
        scale = intern(Op::Scale, type, kNone, kNone, 0);
    }
    return intern(Op::MulScale, type, a, scale, 0);
}

NodeId Graph::widen(NodeId a) {
    if (node(a).type != Type::F32) throw std::logic_error("only binary32 is widened");
    return intern(Op::Widen, Type::F64, a, kNone, 0);
}

NodeId Graph::narrow(NodeId a) {
    if (node(a).type != Type::F64) throw std::logic_error("only binary64 is narrowed");
    return intern(Op::Narrow, Type::F32, a, kNone, 0);
}

NodeId Graph::swap(NodeId a) { return intern(Op::Swap, Type::F64x2, a, kNone, 0); }

NodeId Graph::flip(NodeId a, bool high) {
    return intern(high ? Op::FlipHigh : Op::FlipLow, Type::F64x2, a, kNone, 0);
}

void Graph::output(int element, NodeId value) {
    intern(Op::Output, node(value).type, value, kNone, element);
}

void Graph::output(int element, Lane re, Lane im) {
    const auto index = static_cast<int>(pairOutputs_.size());
    pairOutputs_.push_back({element, re, im});
    intern(Op::Output, Type::F32Pair, kNone, kNone, index);
}

void Graph::stage(const std::string& name) { stages_.push_back(name); }

std::vector<NodeId> Graph::deadNodes() const {
    std::vector<bool> live(nodes_.size(), false);
    const auto mark = [&](NodeId id) {
        if (id != kNone) live[static_cast<std::size_t>(id)] = true;
    };
    for (std::size_t i = nodes_.size(); i-- > 0;) {
        const Node& n = nodes_[i];
        if (n.op == Op::Output) {
            live[i] = true;
            if (n.type == Type::F32Pair) {
                mark(pairOutput(n).re.node);
                mark(pairOutput(n).im.node);
            }
        }
        if (!live[i]) continue;
        mark(n.a);
        mark(n.b);
        if (n.op == Op::Pack)
            for (const Lane& lane : lanes(n)) mark(lane.node);
    }
    std::vector<NodeId> dead;
    for (std::size_t i = 0; i < nodes_.size(); ++i)
        if (!live[i]) dead.push_back(static_cast<NodeId>(i));
    return dead;
}

void Graph::removeDeadNodes() {
    std::vector<NodeId> renamed(nodes_.size(), 0);
    for (const NodeId id : deadNodes()) renamed[static_cast<std::size_t>(id)] = kNone;
    const auto rename = [&](NodeId& id) {
        if (id != kNone) id = renamed[static_cast<std::size_t>(id)];
    };
    const std::vector<std::array<Lane, 4>> packs = std::move(lanes_);
    std::vector<Node> live;
    lanes_.clear();
    laneIndex_.clear();
    interned_.clear();
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
        if (renamed[i] == kNone) continue;
        Node n = nodes_[i];
        rename(n.a);
        rename(n.b);
        if (n.op == Op::Pack) {
            std::array<Lane, 4> four = packs[static_cast<std::size_t>(n.index)];
            for (Lane& lane : four) rename(lane.node);
            n.index = static_cast<int>(lanes_.size());
            lanes_.push_back(four);
            laneIndex_.emplace(four, n.index);
        }
        renamed[i] = static_cast<NodeId>(live.size());
        interned_.emplace(std::make_tuple(n.op, n.type, n.a, n.b, n.index), renamed[i]);
        live.push_back(n);
    }
    nodes_ = std::move(live);
    for (PairOutput& out : pairOutputs_) {
        rename(out.re.node);
        rename(out.im.node);
    }
}

}  // namespace orvgen::kernelgen
