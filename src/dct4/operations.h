// SPDX-License-Identifier: MIT
// The operations of the record types. For each type, as far as it has them:
//
//   _mem         what the sub-tree will cost in bytes, or a negative status; takes what ___init__
//                takes and touches no memory of a plan
//   ___init__    fills the record and takes its list heads
//   _plan        chooses the rule, builds children, tables and scratch; 0 or -6
//   ___del__     gives back what the two took, but for the record itself
//   _compute     runs the transform
//   _at          evaluates a function object
//
// They stand under their names in family32f.cpp and family64f.cpp. The header of a type has what
// they are made of, written once for both element types: setUp(record, arguments) gives the fields
// that are no lists, layOut(node, to) is the walk of _mem and _plan (layout.h), giveBackArray(node)
// gives back the table or scratch, compute(node, ...) runs.
#pragma once

#include "dct4/records.h"

namespace orvgen::dct4 {

// The operations of a record type by their names in its family: specialised in family32f.h and
// family64f.h.
template <class Record>
struct Operations;

// Bytes of a number of elements, for the arena. A length that the tree refuses may be negative; the
// arena's arithmetic takes it as it comes.
template <class Real>
std::uint64_t elementBytes(std::int32_t count) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(count) *
                                      static_cast<std::int64_t>(sizeof(Real)));
}

// A multiple of the length, less some, as the 32-bit integer of a record. Beyond the lengths that
// are sized correctly it wraps, as the sizes do.
inline std::int32_t wrapped(std::int64_t value) { return static_cast<std::int32_t>(value); }

// 2N - 1: the sample at P >= N of a sequence is the one at mirror - P.
inline std::int32_t mirrorOf(std::int32_t length) { return wrapped(2 * std::int64_t{length} - 1); }

// ___init__ of a record.
template <class Record, class... Arguments>
Record* initRecord(void* memory, Arena* arena, Arguments... arguments) {
    Record* record = static_cast<Record*>(memory);
    record->destructor = Operations<Record>::del;
    record->size = static_cast<std::int32_t>(sizeof(Record));
    record->arena = arena;
    if constexpr (requires { Operations<Record>::at; }) {
        record->at = Operations<Record>::at;
    } else {
        record->plan = Operations<Record>::plan;
        record->children = makeList(arena);
        for (EnvList** role : record->roles()) {
            *role = makeList(arena);
        }
    }
    setUp(*record, arguments...);
    return record;
}

// ___del__ of a transform node: its array, its role lists, its children.
template <class Node>
void dropNode(NodeHeader* header) {
    Node* node = static_cast<Node*>(header);
    Arena* arena = node->arena;
    giveBackArray(*node);
    for (EnvList** role : node->roles()) {
        dropList(arena, *role);
    }
    dropChildren(arena, node->children);
}

template <class Real>
void giveBack(Arena* arena, const Real* array, std::int32_t elements) {
    orvgArenaFree(arena, array, elementBytes<Real>(elements));
}

// The child that plays a role.
template <class Node>
const Node& childOf(const EnvList* role) {
    return *static_cast<const Node*>(EnvList_get(role, 0));
}

}  // namespace orvgen::dct4
