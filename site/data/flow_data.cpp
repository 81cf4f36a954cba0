// SPDX-License-Identifier: MIT
#include "flow_data.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <stdexcept>

namespace orvgen::site {

using namespace kernelgen;

namespace {

constexpr int kMostDrawn = 128;  // points of a Walsh-Hadamard transform; longer ones are loops

// The layers of a Walsh-Hadamard transform, which its kernel does in passes.
Graph layers(const Kernel& kernel) {
    Graph graph(kernel.flow.arithmetic());
    const auto points = static_cast<std::size_t>(kernel.length);
    std::vector<NodeId> a;
    for (std::size_t j = 0; j < points; ++j) a.push_back(graph.input(static_cast<int>(j)));
    for (std::size_t distance = 1; distance < points; distance *= 2) {
        graph.stage("layer " + std::to_string(std::countr_zero(distance)) + ": distance " +
                    std::to_string(distance));
        for (std::size_t p = 0; p < points; ++p) {
            if ((p & distance) != 0) continue;
            const NodeId low = a[p], high = a[p + distance];
            a[p] = graph.add(low, high);
            a[p + distance] = graph.sub(low, high);
        }
    }
    graph.stage("scale and store");
    for (std::size_t i = 0; i < points; ++i)
        graph.output(static_cast<int>(i), graph.mulScale(a[i]));
    return graph;
}

char letterOf(const Node& node) {
    switch (node.op) {
        case Op::Input:
            return 'I';
        case Op::Zero:
            return 'Z';
        case Op::Pack:
            return 'P';
        case Op::Add:
            return '+';
        case Op::Sub:
            return '-';
        case Op::Mul:
            return '*';
        case Op::MulScale:
            return 's';
        case Op::Widen:
            return 'W';
        case Op::Narrow:
            return 'N';
        case Op::Swap:
            return 'X';
        case Op::FlipLow:
            return 'L';
        case Op::FlipHigh:
            return 'H';
        case Op::Output:
            return node.type == Type::F32Pair ? 'Q' : 'O';
        case Op::Scale:
            break;
    }
    throw std::logic_error("the scale is not drawn");
}

// The scale itself stands in every product by it and is left out, widened or not.
bool isScale(const Graph& graph, const Node& node) {
    return node.op == Op::Scale || (node.op == Op::Widen && graph.node(node.a).op == Op::Scale);
}

class Writer {
  public:
    explicit Writer(const Graph& graph)
        : graph_(graph), place_(graph.nodes().size(), -1), stage_(graph.stages().size(), -1) {}

    Json run() {
        for (std::size_t i = 0; i < graph_.nodes().size(); ++i) {
            const Node& node = graph_.nodes()[i];
            if (isScale(graph_, node)) continue;
            place_[i] = count_++;
            write(node);
        }
        return object({{"stages", array(stages_)},
                       {"constants", array(constants_)},
                       {"nodes", quoted(nodes_)}});
    }

  private:
    void write(const Node& node) {
        if (!nodes_.empty()) nodes_ += ';';
        nodes_ += letterOf(node);
        nodes_ += std::to_string(stageOf(node));
        if (node.op == Op::Pack) {
            for (const Lane& lane : graph_.lanes(node)) add(laneOf(lane));
        } else if (node.op == Op::Output && node.type == Type::F32Pair) {
            const Graph::PairOutput& out = graph_.pairOutput(node);
            for (const int value : {out.element, laneOf(out.re), laneOf(out.im)}) add(value);
        } else {
            if (node.op == Op::Mul) add(constantOf(node));
            if (node.op == Op::Input || node.op == Op::Output) add(node.index);
            if (node.a != kNone) add(placeOf(node.a));
            if (node.b != kNone && node.op != Op::MulScale) add(placeOf(node.b));
        }
    }

    void add(int value) { nodes_ += "," + std::to_string(value); }

    int placeOf(NodeId id) const { return place_[static_cast<std::size_t>(id)]; }
    int laneOf(const Lane& lane) const { return 4 * placeOf(lane.node) + lane.lane; }

    int stageOf(const Node& node) {
        int& stage = stage_[static_cast<std::size_t>(node.stage)];
        if (stage < 0) {
            stage = static_cast<int>(stages_.size());
            stages_.push_back(quoted(graph_.stages()[static_cast<std::size_t>(node.stage)]));
        }
        return stage;
    }

    int constantOf(const Node& node) {
        const auto index = static_cast<std::size_t>(node.index);
        if (index >= constant_.size()) constant_.resize(index + 1, -1);
        if (constant_[index] < 0) {
            constant_[index] = static_cast<int>(constants_.size());
            std::string text;
            for (const Constant& c : graph_.constant(node).lanes)
                text += (text.empty() ? "" : " | ") + c.formula();
            constants_.push_back(quoted(text));
        }
        return constant_[index];
    }

    const Graph& graph_;
    int count_ = 0;
    std::vector<int> place_, stage_, constant_;
    std::vector<Json> stages_, constants_;
    std::string nodes_;
};

}  // namespace

Json flowOf(const Kernel& kernel) {
    if (!kernel.passes) return Writer(kernel.flow).run();
    if (kernel.length > kMostDrawn) return {};
    return Writer(layers(kernel)).run();
}

double largestConstant(const Kernel& kernel) {
    double largest = 0;
    for (const Node& node : kernel.flow.nodes()) {
        if (node.op != Op::Mul) continue;
        for (const double value : kernel.flow.constant(node).values)
            if (std::abs(value) != 2) largest = std::max(largest, std::abs(value));
    }
    return largest;
}

}  // namespace orvgen::site
