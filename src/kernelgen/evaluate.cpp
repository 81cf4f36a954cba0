// SPDX-License-Identifier: MIT
#include "evaluate.h"

#include <cstring>
#include <stdexcept>

#include "evaluate_exactly.h"

namespace orvgen::kernelgen {

namespace {

std::size_t at(NodeId id) { return static_cast<std::size_t>(id); }

// One value of any type in the arithmetic of the kernel. A binary32 lane is kept as a double of the
// same value; every operation on it is done in float.
struct NativeArithmetic {
    using Number = double;

    const void* src;
    void* dst;
    double scale;

    static bool isSingle(Type t) { return t != Type::F64 && t != Type::F64x2; }
    static double add(Type t, double a, double b) {
        return isSingle(t) ? static_cast<double>(static_cast<float>(a) + static_cast<float>(b))
                           : a + b;
    }
    static double sub(Type t, double a, double b) {
        return isSingle(t) ? static_cast<double>(static_cast<float>(a) - static_cast<float>(b))
                           : a - b;
    }
    static double mul(Type t, double a, double b) {
        return isSingle(t) ? static_cast<double>(static_cast<float>(a) * static_cast<float>(b))
                           : a * b;
    }
    static double narrow(double a) { return static_cast<double>(static_cast<float>(a)); }
    static double constant(const StoredConstant& c, std::size_t lane) { return c.value(lane); }
    double load(Type t, std::size_t scalar) const {
        const auto* bytes = static_cast<const unsigned char*>(src);
        if (isSingle(t)) {
            float v;
            std::memcpy(&v, bytes + 4 * scalar, 4);
            return static_cast<double>(v);
        }
        double v;
        std::memcpy(&v, bytes + 8 * scalar, 8);
        return v;
    }
    void store(Type t, std::size_t scalar, double value) const {
        auto* bytes = static_cast<unsigned char*>(dst);
        if (isSingle(t)) {
            const auto v = static_cast<float>(value);
            std::memcpy(bytes + 4 * scalar, &v, 4);
        } else {
            std::memcpy(bytes + 8 * scalar, &value, 8);
        }
    }
};

struct ExactArithmetic {
    using Number = Real;

    const std::vector<Real>& inputs;
    std::vector<Real>& outputs;
    Real scale = 1;

    static Real add(Type, const Real& a, const Real& b) { return a + b; }
    static Real sub(Type, const Real& a, const Real& b) { return a - b; }
    static Real mul(Type, const Real& a, const Real& b) { return a * b; }
    static Real narrow(const Real& a) { return a; }
    static Real constant(const StoredConstant& c, std::size_t lane) {
        return c.lane(lane).exact().value;
    }
    Real load(Type, std::size_t scalar) const { return inputs.at(scalar); }
    void store(Type, std::size_t scalar, const Real& value) const {
        if (outputs.size() <= scalar) outputs.resize(scalar + 1);
        outputs[scalar] = value;
    }
};

template <class Arithmetic>
void run(const Graph& graph, Arithmetic&& arithmetic) {
    using Number = typename std::remove_reference_t<Arithmetic>::Number;
    std::vector<std::array<Number, 4>> values(graph.nodes().size());
    const auto lane = [&](const Lane& l) -> const Number& {
        return values[at(l.node)][static_cast<std::size_t>(l.lane)];
    };
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Node& n = graph.nodes()[i];
        const auto count = static_cast<std::size_t>(lanesOf(n.type));
        auto& v = values[i];
        const auto each = [&](auto&& f) {
            for (std::size_t l = 0; l < count; ++l) v[l] = f(l);
        };
        const auto a = [&](std::size_t l) -> const Number& { return values[at(n.a)][l]; };
        const auto b = [&](std::size_t l) -> const Number& { return values[at(n.b)][l]; };
        switch (n.op) {
            case Op::Input:
                each([&](std::size_t l) {
                    return arithmetic.load(n.type, at(n.index) * count + l);
                });
                break;
            case Op::Zero:
                each([](std::size_t) { return Number(0); });
                break;
            case Op::Pack:
                each([&](std::size_t l) { return lane(graph.lanes(n)[l]); });
                break;
            case Op::Add:
                each([&](std::size_t l) { return arithmetic.add(n.type, a(l), b(l)); });
                break;
            case Op::Sub:
                each([&](std::size_t l) { return arithmetic.sub(n.type, a(l), b(l)); });
                break;
            case Op::Mul:
                each([&](std::size_t l) {
                    const Number c = arithmetic.constant(graph.constant(n), l);
                    return arithmetic.mul(n.type, a(l), c);
                });
                break;
            case Op::Scale:
                each([&](std::size_t) { return arithmetic.scale; });
                break;
            case Op::MulScale:
                each([&](std::size_t l) { return arithmetic.mul(n.type, a(l), b(l)); });
                break;
            case Op::Widen:
                v[0] = a(0);
                break;
            case Op::Narrow:
                v[0] = arithmetic.narrow(a(0));
                break;
            case Op::Swap:
                v[0] = a(1);
                v[1] = a(0);
                break;
            case Op::FlipLow:
                v[0] = -a(0);
                v[1] = a(1);
                break;
            case Op::FlipHigh:
                v[0] = a(0);
                v[1] = -a(1);
                break;
            case Op::Output:
                if (n.type == Type::F32Pair) {
                    const auto& out = graph.pairOutput(n);
                    const std::size_t first = 2 * at(out.element);
                    arithmetic.store(Type::F32, first,
                                     arithmetic.mul(Type::F32, lane(out.re), arithmetic.scale));
                    arithmetic.store(Type::F32, first + 1,
                                     arithmetic.mul(Type::F32, lane(out.im), arithmetic.scale));
                } else {
                    for (std::size_t l = 0; l < count; ++l)
                        arithmetic.store(n.type, at(n.index) * count + l, a(l));
                }
                break;
        }
    }
}

}  // namespace

void evaluate(const Graph& graph, const void* src, void* dst, double scale) {
    run(graph, NativeArithmetic{src, dst, scale});
}

std::vector<Real> evaluateExactly(const Graph& graph, const std::vector<Real>& inputs) {
    std::vector<Real> outputs;
    run(graph, ExactArithmetic{inputs, outputs});
    return outputs;
}

}  // namespace orvgen::kernelgen
