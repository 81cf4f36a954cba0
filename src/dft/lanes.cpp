// SPDX-License-Identifier: MIT
#include "lanes.h"

#include <stdexcept>

namespace orvgen::dft {

using kernelgen::Node;
using kernelgen::Op;
using kernelgen::Type;

Points Lanes::load(std::size_t length) {
    Points elements;
    for (std::size_t i = 0; i < length; ++i) {
        const kernelgen::NodeId id = graph_->input(static_cast<int>(i));
        elements.push_back({{id, 0}, {id, 1}});
    }
    return elements;
}

void Lanes::store(const Points& results) {
    for (std::size_t i = 0; i < results.size(); ++i)
        graph_->output(static_cast<int>(i), results[i].re, results[i].im);
}

Vector Lanes::gather(const Points& numbers) {
    std::vector<Lane> re, im;
    for (const Point& z : numbers) {
        re.push_back(z.re);
        im.push_back(z.im);
    }
    return {pack(re), pack(im)};
}

Point Lanes::at(const Vector& vector, std::size_t lane) const {
    return {laneOf(vector.re, lane), laneOf(vector.im, lane)};
}

Points Lanes::scatter(const Vector& vector, std::size_t count) const {
    Points numbers;
    for (std::size_t i = 0; i < count; ++i) numbers.push_back(at(vector, i));
    return numbers;
}

Value Lanes::pack(const std::vector<Lane>& lanes) {
    if (lanes.empty() || lanes.size() > 4) throw std::logic_error("a vector has four lanes");
    std::array<Lane, 4> four;
    for (std::size_t i = 0; i < 4; ++i)
        four[i] =
            i < lanes.size() ? lanes[i] : Lane{graph_->zero(Type::F32x4), static_cast<int>(i)};

    bool standsSo = graph_->node(four[0].node).type == Type::F32x4;
    for (int i = 0; i < 4; ++i) {
        const Lane there{four[0].node, i};
        const Lane& wanted = four[static_cast<std::size_t>(i)];
        standsSo = standsSo && (wanted == there || (isZero(wanted) && isZero(there)));
    }
    return {*graph_, standsSo ? four[0].node : graph_->pack(four)};
}

bool Lanes::isZero(const Lane& lane) const {
    const Node& n = graph_->node(lane.node);
    const auto zero = [&](kernelgen::NodeId id) { return isZero({id, lane.lane}); };
    switch (n.op) {
        case Op::Zero:
            return true;
        case Op::Pack:
            return isZero(graph_->lanes(n)[static_cast<std::size_t>(lane.lane)]);
        case Op::Add:
        case Op::Sub:
            return zero(n.a) && zero(n.b);
        case Op::Mul:
            return zero(n.a) ||
                   graph_->constant(n).lane(static_cast<std::size_t>(lane.lane)).isZero();
        default:
            return false;
    }
}

Lane laneOf(const Value& value, std::size_t lane) {
    if (value.negative()) throw std::logic_error("a lane cannot hold a pending sign");
    return {value.id(), static_cast<int>(lane)};
}

}  // namespace orvgen::dft
