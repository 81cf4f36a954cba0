// SPDX-License-Identifier: MIT
// Sizing and building a plan: one walk with two receivers.
//
// For each type of node there is one function layOut(node, to): it chooses the rule and hands on,
// in the order of building, what the node takes:
//
//   to.function(place, children, arguments)      a function object, owned by the children list
//   to.child(place, children, role, arguments)   a node, likewise, with a role; gives its status
//   to.scratch(array, count)                     elements
//   to.table(array, count, fill)                 elements that fill() writes
//
// The receiver Building takes it from the arena, lists the children and plans them. The receiver
// Sizing adds up what that would cost, on a node that stands in no arena.
#pragma once

#include "dct4/elements.h"
#include "dct4/operations.h"
#include "dct4/radix.h"

namespace orvgen::dct4 {

// Where a record will stand. Its place may be taken before what it is made of.
template <class Record>
struct Place {
    template <class Receiver>
    explicit Place(Receiver& to) : memory(to.takeRecord(sizeof(Record))) {}
    void* memory;
};

class Building {
  public:
    explicit Building(Arena* arena) : arena_(arena) {}

    void* takeRecord(std::uint64_t size) { return orvgArenaMalloc(arena_, size); }

    template <class Function, class... Arguments>
    const NodeHeader* function(Place<Function> place, EnvList* children, Arguments... arguments) {
        return EnvList_add(children, create(place, arguments...));
    }

    template <class Node, class... Arguments>
    std::int32_t child(Place<Node> place, EnvList* children, EnvList* role,
                       Arguments... arguments) {
        NodeHeader* node = create(place, arguments...);
        EnvList_add(role, EnvList_add(children, node));
        return node->plan(node);
    }

    template <class Real>
    void scratch(Real*& array, std::int32_t count) {
        array = static_cast<Real*>(orvgArenaMalloc(arena_, elementBytes<Real>(count)));
    }

    template <class Real, class Fill>
    void table(Real*& array, std::int32_t count, const Fill& fill) {
        scratch(array, count);
        fill();
    }

  private:
    // A type without an ___init__ of its own is filled in here.
    template <class Record, class... Arguments>
    Record* create(Place<Record> place, Arguments... arguments) {
        if constexpr (requires { Operations<Record>::init; }) {
            return Operations<Record>::init(place.memory, arena_, arguments...);
        } else {
            return initRecord<Record>(place.memory, arena_, arguments...);
        }
    }

    Arena* arena_;
};

// The sum of a node is formed in 64 bits and handed on in 32, and a negative one is a failure. A
// length whose true sum reaches 2^31 therefore fails, and beyond 2^32 the sum wraps: sizes are
// 32-bit numbers in every signature.
//
// Every entry in a list is charged a list node here, whereas the first one goes into the head,
// which is charged already: sizing charges more than building takes.
class Sizing {
  public:
    std::int32_t bytes() const { return static_cast<std::int32_t>(sum_); }

    // A node with its list heads and all that it takes.
    template <class Node, class... Arguments>
    std::int32_t node(Arguments... arguments) {
        Node node{};
        setUp(node, arguments...);
        charge(sizeof(Node));
        const std::size_t lists = 1 + node.roles().size();
        for (std::size_t i = 0; i < lists; ++i) {
            charge(sizeof(EnvList));
        }
        return layOut(node, *this);
    }

    // A record is charged with what it becomes.
    void* takeRecord(std::uint64_t) { return nullptr; }

    template <class Function, class... Arguments>
    const NodeHeader* function(Place<Function>, const EnvList*, Arguments...) {
        charge(sizeof(Function));
        sum_ += EnvList_add_mem(1);
        return nullptr;
    }

    // A type without a _mem is part of its owner's sum.
    template <class Child, class... Arguments>
    std::int32_t child(Place<Child>, const EnvList*, const EnvList*, Arguments... arguments) {
        sum_ += EnvList_add_mem(2);
        if constexpr (requires { Operations<Child>::mem; }) {
            const std::int32_t cost = Operations<Child>::mem(arguments...);
            if (cost < 0) {
                return cost;
            }
            sum_ += cost;
            return planned;
        } else {
            return node<Child>(arguments...);
        }
    }

    template <class Real>
    void scratch(const Real*, std::int32_t count) {
        charge(elementBytes<Real>(count));
    }

    template <class Real, class Fill>
    void table(const Real* array, std::int32_t count, const Fill&) {
        scratch(array, count);
    }

  private:
    void charge(std::uint64_t size) {
        sum_ += static_cast<std::int64_t>(orvgAlignSize32Bytes(size));
    }

    std::int64_t sum_ = 0;
};

// _mem of a node type.
template <class Node, class... Arguments>
std::int32_t sizeNode(Arguments... arguments) {
    Sizing sizing;
    const std::int32_t status = sizing.node<Node>(arguments...);
    return status == planned ? sizing.bytes() : status;
}

// _plan of a node type.
template <class Node>
std::int32_t planNode(NodeHeader* header) {
    Building building(header->arena);
    return layOut(*static_cast<Node*>(header), building);
}

}  // namespace orvgen::dct4
