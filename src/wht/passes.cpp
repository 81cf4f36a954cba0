// SPDX-License-Identifier: MIT
#include "wht/passes.h"

#include <vector>

namespace orvgen::wht {

namespace {

using kernelgen::Address;
using kernelgen::Base;
using kernelgen::Code;
using kernelgen::Instruction;
using kernelgen::Opcode;
using kernelgen::Register;

// The instructions for one element type.
struct Operations {
    Opcode add, sub, mul;
    Opcode load, store;  // src and dst; the buffer is always aligned
    Opcode spread;
};

constexpr Operations kScalar32{Opcode::AddSS,  Opcode::SubSS,   Opcode::MulSS,
                               Opcode::LoadSS, Opcode::StoreSS, Opcode::LoadSS};
constexpr Operations kScalar64{Opcode::AddSD,  Opcode::SubSD,   Opcode::MulSD,
                               Opcode::LoadSD, Opcode::StoreSD, Opcode::LoadSD};
constexpr Operations kVector32{Opcode::AddPS,  Opcode::SubPS,   Opcode::MulPS,
                               Opcode::Load16, Opcode::Store16, Opcode::SpreadSS};
constexpr Operations kVector64{Opcode::AddPD,       Opcode::SubPD,        Opcode::MulPD,
                               Opcode::Load16Split, Opcode::Store16Split, Opcode::SpreadSD};

const Operations& operationsOf(const Pass& pass) {
    if (pass.element == Element::F32) return pass.scalar ? kScalar32 : kVector32;
    return pass.scalar ? kScalar64 : kVector64;
}

int log2Lanes(Element element) { return element == Element::F32 ? 2 : 1; }

class PassBuilder {
  public:
    PassBuilder(const Pass& pass, int split)
        : pass_(pass), operations_(operationsOf(pass)), split_(split) {
        code_.scale.type =
            pass.element == Element::F32 ? kernelgen::Type::F32 : kernelgen::Type::F64;
        code_.stages = {""};
    }

    Code run() {
        const int rows = 1 << pass_.rows;
        const int group = 1 << split_;
        std::vector<Register> a;
        if (pass_.scale != ScaleFrom::None) scale_ = loadScale();
        for (int r = 0; r < rows; ++r) a.push_back(loadRow(r));

        stage(firstStage());
        for (int g = 0; g < rows; g += group) {
            if (pass_.block && !pass_.scalar) layersBetweenLanes(a, g, group);
            layers(a, g, 1, split_);
        }
        if (split_ < pass_.rows) stage("then the layers across these groups");
        for (int c = 0; c < group; ++c) {
            layers(a, c, group, pass_.rows - split_);
            for (int r = c; r < rows; r += group) storeRow(r, a[index(r)]);
        }
        return std::move(code_);
    }

  private:
    static std::size_t index(int i) { return static_cast<std::size_t>(i); }

    // The butterflies of `bits` layers on the 2^bits rows first, first + step, ..., lowest bit
    // first: (a[p], a[q]) becomes (a[p] + a[q], a[p] - a[q]) where q = p + 2^b and bit b of p is 0.
    void layers(std::vector<Register>& a, int first, int step, int bits) {
        for (int b = 0; b < bits; ++b)
            for (int p = 0; p < 1 << bits; ++p)
                if (!(p & 1 << b))
                    butterfly(a[index(first + step * p)], a[index(first + step * (p + (1 << b)))]);
    }

    void butterfly(Register& a, Register& c) {
        const Register sum = emit(operations_.add, a, c);
        const Register difference = emit(operations_.sub, a, c);
        a = sum;
        c = difference;
    }

    // The layers whose partners lie in one vector: transposed, they are layers of whole vectors.
    void layersBetweenLanes(std::vector<Register>& a, int first, int count) {
        const int bits = log2Lanes(pass_.element);
        for (int r = first; r < first + count; r += 1 << bits) {
            transpose(a, r);
            layers(a, r, 1, bits);
            transpose(a, r);
        }
    }

    void transpose(std::vector<Register>& a, int r) {
        if (pass_.element == Element::F32)
            transpose4(a[index(r)], a[index(r + 1)], a[index(r + 2)], a[index(r + 3)]);
        else
            transpose2(a[index(r)], a[index(r + 1)]);
    }

    void transpose2(Register& a, Register& b) {
        const Register low = emit(Opcode::Unpcklpd, a, b);
        const Register high = emit(Opcode::Unpckhpd, a, b);
        a = low;
        b = high;
    }

    void transpose4(Register& a, Register& b, Register& c, Register& d) {
        constexpr int kHighHalves = 0xee;
        const Register ab0 = emit(Opcode::Unpcklps, a, b);  // a0 b0 a1 b1
        const Register ab2 = emit(Opcode::Unpckhps, a, b);  // a2 b2 a3 b3
        const Register cd0 = emit(Opcode::Unpcklps, c, d);
        const Register cd2 = emit(Opcode::Unpckhps, c, d);
        a = emit(Opcode::Movlhps, ab0, cd0);  // a0 b0 c0 d0
        b = emit(Opcode::Shufps, ab0, cd0, kHighHalves);
        c = emit(Opcode::Movlhps, ab2, cd2);
        d = emit(Opcode::Shufps, ab2, cd2, kHighHalves);
    }

    Register loadScale() {
        const bool parked = pass_.scale == ScaleFrom::Parked;
        return load(parked ? Opcode::LoadAligned : operations_.spread, {Base::Scale, 0});
    }
    Register loadRow(int r) {
        const Opcode op = pass_.from == Base::Src ? operations_.load : Opcode::LoadAligned;
        return load(op, {pass_.from, r * pass_.spacing});
    }
    void storeRow(int r, Register value) {
        if (scale_ != kernelgen::kNoRegister) value = emit(operations_.mul, value, scale_);
        Instruction i{};
        i.op = pass_.to == Base::Dst ? operations_.store : Opcode::StoreAligned;
        i.a = value;
        i.hasAddress = true;
        i.address = {pass_.to, r * pass_.spacing};
        push(i);
    }

    Register load(Opcode op, Address address) {
        Instruction i{};
        i.op = op;
        i.dst = code_.fresh();
        i.hasAddress = true;
        i.address = address;
        return push(i);
    }
    Register emit(Opcode op, Register a, Register b, int immediate = 0) {
        Instruction i{};
        i.op = op;
        i.dst = code_.fresh();
        i.a = a;
        i.b = b;
        i.immediate = immediate;
        return push(i);
    }
    Register push(Instruction i) {
        i.stage = static_cast<int>(code_.stages.size()) - 1;
        code_.instructions.push_back(i);
        return i.dst;
    }

    void stage(const std::string& name) { code_.stages.push_back(name); }
    std::string firstStage() const {
        const int last = pass_.firstLayer + pass_.layers() - (pass_.rows - split_) - 1;
        const std::string which =
            last == pass_.firstLayer
                ? "layer " + std::to_string(last)
                : "layers " + std::to_string(pass_.firstLayer) + " to " + std::to_string(last);
        return which + (split_ < pass_.rows ? " in groups of " + std::to_string(1 << split_) : "");
    }

    const Pass& pass_;
    const Operations& operations_;
    int split_;
    Code code_;
    Register scale_ = kernelgen::kNoRegister;
};

}  // namespace

int Pass::layers() const { return rows + (block && !scalar ? log2Lanes(element) : 0); }

Pass blockPass(Element element, int layers) {
    Pass pass;
    pass.element = element;
    pass.rows = layers - log2Lanes(element);
    return pass;
}

Pass columnPass(Element element, int layers, int firstLayer) {
    Pass pass;
    pass.element = element;
    pass.block = false;
    pass.rows = layers;
    pass.spacing = (1 << firstLayer) * bytesOf(element);
    pass.firstLayer = firstLayer;
    return pass;
}

Pass scalarPass(Element element, int layers) {
    Pass pass;
    pass.element = element;
    pass.scalar = true;
    pass.rows = layers;
    pass.spacing = bytesOf(element);
    pass.scale = ScaleFrom::Scalar;
    return pass;
}

kernelgen::Pass inForms(const Pass& pass) {
    kernelgen::Pass result;
    // Groups that a few registers hold; a group holds whole transposes.
    const int least = pass.block && !pass.scalar ? log2Lanes(pass.element) : 1;
    for (int split = least; split <= pass.rows; ++split)
        result.forms.push_back(PassBuilder(pass, split).run());
    result.allocation.foldSrc = pass.scalar;
    result.allocation.commute = false;  // a[p] is the first operand, as in the formula
    result.from = pass.from;
    result.to = pass.to;
    return result;
}

}  // namespace orvgen::wht
