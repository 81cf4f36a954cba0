// SPDX-License-Identifier: MIT
#include "lower_parts.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>

#include "lower.h"

namespace orvgen::kernelgen {

namespace {

// The single kernel's code with each of its vectors repeated in every part of a wider one.
class PartsLowering {
  public:
    PartsLowering(const Graph& graph, const Target& target, Parts parts)
        : target_(target), parts_(parts), code_(lower(graph, {})) {}

    Code run() {
        code_.scale.type = isSingle(code_.scale.type) ? Type::F32 : Type::F64;
        for (PoolEntry& entry : code_.pool) repeat(entry);
        std::erase_if(code_.instructions, [&](const Instruction& i) {
            const bool isScale = i.op == Opcode::SpreadSS;
            if (isScale) scale_ = i.dst;
            return isScale;
        });
        for (Instruction& i : code_.instructions) widen(i);
        return std::move(code_);
    }

  private:
    static bool isOneNumber(const PoolEntry& entry) {
        return std::ranges::all_of(entry.lanes, [&](double x) {
            return std::bit_cast<std::uint64_t>(x) ==
                   std::bit_cast<std::uint64_t>(entry.lanes.front());
        });
    }

    void repeat(PoolEntry& entry) {
        if (target_.broadcasts && isOneNumber(entry)) {
            entry.lanes.resize(1);
            return;
        }
        const std::vector<double> part = entry.lanes;
        for (int bytes = kPartBytes; bytes < target_.vectorBytes; bytes += kPartBytes)
            entry.lanes.insert(entry.lanes.end(), part.begin(), part.end());
    }

    void move(Instruction& i, Opcode ofRows, Opcode ofColumns) const {
        i.op = parts_ == Parts::OfRows ? ofRows : ofColumns;
        if (parts_ == Parts::OfColumns) i.address.offset *= target_.vectorBytes / kPartBytes;
    }

    void widen(Instruction& i) {
        i.width = target_.vectorBytes;
        switch (i.op) {
            case Opcode::Load16:
            case Opcode::Load16Split:
                return move(i, Opcode::LoadRows, Opcode::Load16);
            case Opcode::Store16:
            case Opcode::Store16At8:
            case Opcode::Store16Split:
                return move(i, Opcode::StoreRows, Opcode::Store16);
            case Opcode::Shufpd: {
                const int part = i.immediate;
                for (int p = 1; p < target_.vectorBytes / kPartBytes; ++p)
                    i.immediate |= part << 2 * p;
                return;
            }
            case Opcode::Movlhps:
                i.op = Opcode::Unpcklpd;
                return;
            case Opcode::Movhlps:
                i.op = Opcode::Unpckhpd;
                std::swap(i.a, i.b);
                return;
            default:
                break;
        }
        if (i.b != kNoRegister && i.b == scale_) {
            i.b = kNoRegister;
            i.hasAddress = true;
            i.address = {Base::Scale, 0};
        }
        if (!i.hasAddress) return;
        if (i.address.base == Base::Scale) i.broadcast = target_.broadcasts;
        if (i.address.base == Base::Pool)
            i.broadcast = code_.pool[static_cast<std::size_t>(i.address.offset)].lanes.size() == 1;
    }

    const Target& target_;
    Parts parts_;
    Code code_;
    Register scale_ = kNoRegister;
};

}  // namespace

Code lowerParts(const Graph& graph, const Target& target, Parts parts) {
    return PartsLowering(graph, target, parts).run();
}

}  // namespace orvgen::kernelgen
