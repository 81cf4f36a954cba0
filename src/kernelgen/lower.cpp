// SPDX-License-Identifier: MIT
#include "lower.h"

#include <cstring>
#include <stdexcept>

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

}  // namespace

Code lowerNodes(const Graph& graph) {
    Code code;
    PoolBuilder pool(code);
    code.stages = graph.stages();
    code.scale.type = graph.elementType();
    std::vector<Register> reg(graph.nodes().size(), kNoRegister);
    const auto of = [&](NodeId id) { return reg[static_cast<std::size_t>(id)]; };
    for (std::size_t i = 0; i < graph.nodes().size(); ++i) {
        const Node& n = graph.nodes()[i];
        Instruction instruction{};
        instruction.stage = n.stage;
        const auto inMemory = [&](Address address) {
            instruction.hasAddress = true;
            instruction.address = address;
        };
        switch (n.op) {
            case Op::Input:
                instruction.op = n.type == Type::F32   ? Opcode::LoadSS
                                 : n.type == Type::F64 ? Opcode::LoadSD
                                                       : Opcode::Load16Split;
                inMemory({Base::Src, n.index * bytesOf(n.type)});
                break;
            case Op::Zero:
                instruction.op = Opcode::Zero;
                break;
            case Op::Add:
            case Op::Sub:
                instruction.op = arithmetic(n.op, n.type);
                instruction.a = of(n.a);
                instruction.b = of(n.b);
                break;
            case Op::Mul:
                instruction.op = arithmetic(n.op, n.type);
                instruction.a = of(n.a);
                inMemory(pool.entry(graph.constant(n)));
                break;
            case Op::Scale:
                continue;  // stands in memory, see MulScale
            case Op::MulScale: {
                instruction.op = arithmetic(n.op, n.type);
                instruction.a = of(n.a);
                const bool widened = n.type != code.scale.type;
                if (widened) code.scale.widened = true;
                inMemory({widened ? Base::WidenedScale : Base::Scale, 0});
                break;
            }
            case Op::Widen:
                if (graph.node(n.a).op == Op::Scale) continue;
                instruction.op = Opcode::Widen;
                instruction.a = of(n.a);
                break;
            case Op::Narrow:
                instruction.op = Opcode::Narrow;
                instruction.a = of(n.a);
                break;
            case Op::Swap:
                instruction.op = Opcode::Shufpd;
                instruction.a = instruction.b = of(n.a);
                instruction.immediate = 1;
                break;
            case Op::FlipLow:
            case Op::FlipHigh: {
                instruction.op = Opcode::XorPS;
                instruction.a = of(n.a);
                const bool low = n.op == Op::FlipLow;
                inMemory(pool.entry(PoolEntry{
                    Type::F64x2, {low ? -0.0 : 0.0, low ? 0.0 : -0.0}, "sign of one lane"}));
                break;
            }
            case Op::Output: {
                const bool isZero = graph.node(n.a).op == Op::Zero;
                if (n.type == Type::F32)
                    instruction.op = isZero ? Opcode::StoreZero4 : Opcode::StoreSS;
                else if (n.type == Type::F64)
                    instruction.op = isZero ? Opcode::StoreZero8 : Opcode::StoreSD;
                else
                    instruction.op = Opcode::Store16Split;
                if (!isZero) instruction.a = of(n.a);
                inMemory({Base::Dst, n.index * bytesOf(n.type)});
                code.instructions.push_back(instruction);
                continue;
            }
            case Op::Pack:
                throw std::logic_error("lanes in a scalar graph");
        }
        instruction.dst = reg[i] = code.fresh();
        code.instructions.push_back(instruction);
    }
    return code;
}

Code lower(const Graph& graph, const LoweringOptions& options) {
    return graph.arithmetic() == Arithmetic::SingleLanes ? lowerLanes(graph, options)
                                                         : lowerNodes(graph);
}

}  // namespace orvgen::kernelgen
