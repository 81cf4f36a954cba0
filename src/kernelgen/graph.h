// SPDX-License-Identifier: MIT
// The value graph of one transform: every value once, every rounding a node.
//
// A flow (an algorithm over values, see value.h) builds it; counting, proving, evaluation and
// lowering read it. Equal operations on equal values are one node; nothing else is simplified: x*1,
// x*0 and x+0 are operations that run and stay in the graph.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "constant.h"

namespace orvgen::kernelgen {

enum class Type : std::uint8_t {
    F32,      // one binary32
    F64,      // one binary64
    F32Pair,  // one complex element as it lies in memory: lane 0 real, lane 1 imaginary
    F32x4,    // four lanes of binary32
    F64x2,    // one complex element of binary64: low lane real, high lane imaginary
};

inline bool isSingle(Type type) {
    return type == Type::F32 || type == Type::F32Pair || type == Type::F32x4;
}
inline int lanesOf(Type type) {
    return type == Type::F32x4 ? 4 : type == Type::F32Pair || type == Type::F64x2 ? 2 : 1;
}
inline int bytesOf(Type type) { return lanesOf(type) * (isSingle(type) ? 4 : 8); }

enum class Op : std::uint8_t {
    Input,     // element `index` of src
    Zero,      // +0.0 in every lane
    Pack,      // F32x4 out of four lanes of other values (`index` into the lane table)
    Add,       // a + b
    Sub,       // a - b
    Mul,       // a * constant `index`
    Scale,     // the factor that the caller's flag selects
    MulScale,  // a * b, where b is the scale (or the widened scale)
    Widen,     // binary32 to binary64
    Narrow,    // binary64 to binary32, the one rounding of a double expression
    Swap,      // F64x2: exchange of the lanes
    FlipLow,   // F64x2: sign of the low lane inverted
    FlipHigh,  // F64x2: sign of the high lane inverted
    Output,    // element `index` of dst: a, or the two lanes of the lane table (F32Pair)
};

using NodeId = std::int32_t;
inline constexpr NodeId kNone = -1;

// One lane of a value.
struct Lane {
    NodeId node = kNone;
    int lane = 0;
    auto operator<=>(const Lane&) const = default;
};

// Four lanes of constants, or one constant in all lanes, as stored in a kernel's pool.
struct StoredConstant {
    Type type = Type::F32;
    std::vector<Constant> lanes;  // 1 or 4 entries
    std::vector<double> values;   // the same, rounded to the type
    const Constant& lane(std::size_t i) const { return lanes.size() == 1 ? lanes[0] : lanes[i]; }
    double value(std::size_t i) const { return values.size() == 1 ? values[0] : values[i]; }
};

struct Node {
    Op op;
    Type type;
    NodeId a = kNone;
    NodeId b = kNone;
    int index = 0;  // element, constant or lane-table index, by op
    int stage = 0;  // index into Graph::stages, for comments only
};

// What the arithmetic of a flow is. It decides what an addition and a product by a constant mean;
// no algorithm asks for it.
enum class Arithmetic : std::uint8_t {
    Single,  // scalar binary32 sums; a product by a constant runs in binary64 up to one narrowing
    Double,  // scalar binary64
    SingleLanes,  // four lanes of binary32 throughout
    DoublePair,   // one complex binary64 element per value, real constants in both lanes
};

class Graph {
  public:
    explicit Graph(Arithmetic arithmetic) : arithmetic_(arithmetic) { stage(""); }

    Arithmetic arithmetic() const { return arithmetic_; }
    Type elementType() const;  // type of an Input
    Type valueType() const;    // type of a sum of inputs

    NodeId input(int element);
    NodeId zero(Type type);
    NodeId pack(const std::array<Lane, 4>& lanes);
    NodeId add(NodeId a, NodeId b);
    NodeId sub(NodeId a, NodeId b);
    NodeId mul(NodeId a, const std::vector<Constant>& lanes);  // 1 or 4 constants
    NodeId mulScale(NodeId a);                                 // by the scale in the type of `a`
    NodeId widen(NodeId a);
    NodeId narrow(NodeId a);
    NodeId swap(NodeId a);
    NodeId flip(NodeId a, bool high);
    void output(int element, NodeId value);
    void output(int element, Lane re, Lane im);

    // The difference a - b if it exists already.
    NodeId findSub(NodeId a, NodeId b) const;

    // Names the part of the algorithm that follows, for the comments of the emitted kernel.
    void stage(const std::string& name);

    const std::vector<Node>& nodes() const { return nodes_; }
    const Node& node(NodeId id) const { return nodes_[static_cast<std::size_t>(id)]; }
    const std::array<Lane, 4>& lanes(const Node& n) const {
        return lanes_[static_cast<std::size_t>(n.index)];
    }
    const StoredConstant& constant(const Node& n) const {
        return constants_[static_cast<std::size_t>(n.index)];
    }
    // For an Output of two lanes: the element it is stored to, and its lanes.
    struct PairOutput {
        int element;
        Lane re, im;
    };
    const PairOutput& pairOutput(const Node& n) const {
        return pairOutputs_[static_cast<std::size_t>(n.index)];
    }
    const std::vector<std::string>& stages() const { return stages_; }

    // Values that no output depends on (there are none in a finished flow).
    std::vector<NodeId> deadNodes() const;
    // Drops them, for flows that want only some of the results of a transform.
    void removeDeadNodes();

  private:
    NodeId intern(Op op, Type type, NodeId a, NodeId b, int index);

    Arithmetic arithmetic_;
    std::vector<Node> nodes_;
    std::vector<std::array<Lane, 4>> lanes_;
    std::vector<StoredConstant> constants_;
    std::vector<PairOutput> pairOutputs_;
    std::vector<std::string> stages_;
    std::map<std::tuple<Op, Type, NodeId, NodeId, int>, NodeId> interned_;
    std::map<std::array<Lane, 4>, int> laneIndex_;
    std::map<std::pair<Type, std::vector<double>>, int> constantIndex_;
};

}  // namespace orvgen::kernelgen
