// The operations of the record types. For each type, as far as it has them:
//
//   _mem         what the sub-tree will cost in bytes, or a negative status; takes what ___init__
//                takes and touches no memory of a plan
//   ___init__    fills the record and takes its list heads
//   _plan        chooses the rule, builds children, tables and scratch; 0 or -6
//   ___del__     gives back what the two took, but for the record itself
//   _compute     runs the transform
//
// A function object has ___init__, _at, which evaluates it, and ___del__. The operations stand
// under their names in family32f.cpp and family64f.cpp; what is written here and in the headers of
// the types is written once for both element types.
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

template <class Record>
Record* placeRecord(void* memory, Arena* arena) {
    Record* record = static_cast<Record*>(memory);
    record->destructor = Operations<Record>::del;
    record->size = static_cast<std::int32_t>(sizeof(Record));
    record->arena = arena;
    return record;
}

// ___init__ of a transform node. setUp(node, arguments) gives the fields that are no lists.
template <class Node, class... Arguments>
Node* initNode(void* memory, Arena* arena, Arguments... arguments) {
    Node* node = placeRecord<Node>(memory, arena);
    node->plan = Operations<Node>::plan;
    node->children = makeList(arena);
    for (EnvList** role : node->roles()) {
        *role = makeList(arena);
    }
    setUp(*node, arguments...);
    return node;
}

// ___init__ of a function object.
template <class Function, class... Arguments>
Function* initFunction(void* memory, Arena* arena, Arguments... arguments) {
    Function* object = placeRecord<Function>(memory, arena);
    object->at = Operations<Function>::at;
    setUp(*object, arguments...);
    return object;
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
