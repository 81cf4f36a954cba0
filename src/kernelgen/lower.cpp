// SPDX-License-Identifier: MIT
#include "lower.h"

#include <cstring>
#include <stdexcept>
#include <utility>

namespace orvgen::kernelgen {

namespace {

// Equal in every bit: a sign mask is made of zeros that differ in sign.
bool sameBits(const std::vector<double>& a, const std::vector<double>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0;
}

}  // namespace

Address PoolBuilder::entry(const PoolEntry& entry) {
    for (std::size_t i = 0; i < code_.pool.size(); ++i)
        if (code_.pool[i].type == entry.type && sameBits(code_.pool[i].lanes, entry.lanes))
            return {Base::Pool, static_cast<int>(i)};
    code_.pool.push_back(entry);
    return {Base::Pool, static_cast<int>(code_.pool.size()) - 1};
}

Address PoolBuilder::entry(const StoredConstant& constant) {
    const bool single = isSingle(constant.type);
    const auto lanes = static_cast<std::size_t>(lanesOf(constant.type));
    PoolEntry e{constant.type, {}, {}};
    for (std::size_t l = 0; l < lanes; ++l) {
        const Constant& c = constant.lane(l);
        e.lanes.push_back(single ? static_cast<double>(c.asFloat()) : c.asDouble());
        if (l == 0 || constant.lanes.size() > 1) e.text += (l == 0 ? "" : ", ") + c.formula();
    }
    return entry(e);
}

namespace {

// The instruction for a node's operation in the node's type.
Opcode arithmetic(Op op, Type type) {
    const auto pick = [type](Opcode ss, Opcode sd, Opcode pd) {
        switch (type) {
            case Type::F32:
                return ss;
            case Type::F64:
                return sd;
            case Type::F64x2:
                return pd;
            default:
                throw std::logic_error("no instruction for this type here");
        }
    };
    switch (op) {
        case Op::Add:
            return pick(Opcode::AddSS, Opcode::AddSD, Opcode::AddPD);
        case Op::Sub:
            return pick(Opcode::SubSS, Opcode::SubSD, Opcode::SubPD);
        case Op::Mul:
        case Op::MulScale:
            return pick(Opcode::MulSS, Opcode::MulSD, Opcode::MulPD);
        default:
            throw std::logic_error("not an arithmetic operation");
    }
}

class NodeLowering {
  public:
    explicit NodeLowering(const Graph& graph)
        : graph_(graph), pool_(code_), registers_(graph.nodes().size(), kNoRegister) {
        code_.stages = graph.stages();
        code_.scale.type = graph.elementType();
    }

    Code run() {
        for (std::size_t i = 0; i < registers_.size(); ++i) {
            const Node& n = graph_.nodes()[i];
            if (standsInMemory(n)) continue;
            Instruction instruction = n.op == Op::Output ? store(n) : computation(n);
            instruction.stage = n.stage;
            if (n.op != Op::Output) instruction.dst = registers_[i] = code_.fresh();
            code_.instructions.push_back(instruction);
        }
        return std::move(code_);
    }

  private:
    // The scale, which products by it read.
    bool standsInMemory(const Node& n) const {
        return n.op == Op::Scale || (n.op == Op::Widen && graph_.node(n.a).op == Op::Scale);
    }

    Register of(NodeId id) const { return registers_[static_cast<std::size_t>(id)]; }

    Instruction of(Opcode op, const Node& n) const { return {.op = op, .a = of(n.a)}; }
    static Instruction inMemory(Instruction instruction, Address address) {
        instruction.hasAddress = true;
        instruction.address = address;
        return instruction;
    }

    Instruction computation(const Node& n) {
        switch (n.op) {
            case Op::Input:
                return load(n);
            case Op::Zero:
                return {.op = Opcode::Zero};
            case Op::Add:
            case Op::Sub: {
                Instruction sum = of(arithmetic(n.op, n.type), n);
                sum.b = of(n.b);
                return sum;
            }
            case Op::Mul:
                return inMemory(of(arithmetic(n.op, n.type), n), pool_.entry(graph_.constant(n)));
            case Op::MulScale: {
                const bool widened = n.type != code_.scale.type;
                if (widened) code_.scale.widened = true;
                return inMemory(of(arithmetic(n.op, n.type), n),
                                {widened ? Base::WidenedScale : Base::Scale, 0});
            }
            case Op::Widen:
                return of(Opcode::Widen, n);
            case Op::Narrow:
                return of(Opcode::Narrow, n);
            case Op::Swap: {
                Instruction swap = of(Opcode::Shufpd, n);
                swap.b = swap.a;
                swap.immediate = 1;
                return swap;
            }
            case Op::FlipLow:
                return inMemory(of(Opcode::XorPS, n), sign({-0.0, 0.0}));
            case Op::FlipHigh:
                return inMemory(of(Opcode::XorPS, n), sign({0.0, -0.0}));
            default:
                throw std::logic_error("not an operation of a graph without lanes");
        }
    }

    Address sign(const std::vector<double>& lanes) {
        return pool_.entry(PoolEntry{Type::F64x2, lanes, "sign of one lane"});
    }

    static Instruction load(const Node& n) {
        const Opcode op = n.type == Type::F32   ? Opcode::LoadSS
                          : n.type == Type::F64 ? Opcode::LoadSD
                                                : Opcode::Load16Split;
        return inMemory({.op = op}, {Base::Src, n.index * bytesOf(n.type)});
    }

    Instruction store(const Node& n) const {
        const bool isZero = graph_.node(n.a).op == Op::Zero;
        Instruction store{.op = Opcode::Store16Split};
        if (n.type == Type::F32) store.op = isZero ? Opcode::StoreZero4 : Opcode::StoreSS;
        if (n.type == Type::F64) store.op = isZero ? Opcode::StoreZero8 : Opcode::StoreSD;
        if (!isZero) store.a = of(n.a);
        return inMemory(store, {Base::Dst, n.index * bytesOf(n.type)});
    }

    const Graph& graph_;
    Code code_;
    PoolBuilder pool_;
    std::vector<Register> registers_;  // of the nodes' values
};

}  // namespace

Code lowerNodes(const Graph& graph) { return NodeLowering(graph).run(); }

Code lower(const Graph& graph, const LoweringOptions& options) {
    return graph.arithmetic() == Arithmetic::SingleLanes ? lowerLanes(graph, options)
                                                         : lowerNodes(graph);
}

}  // namespace orvgen::kernelgen
