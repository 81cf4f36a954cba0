// SPDX-License-Identifier: MIT
// What every record of a plan begins with, and the list in which a record keeps others.
#pragma once

#include <cstdint>

#include "dct4/arena.h"

namespace orvgen::dct4 {

struct NodeHeader;

using Destructor = void (*)(NodeHeader* node);
using PlanOperation = std::int32_t (*)(NodeHeader* node);
// The value of a function object. The objects of the 32-bit family give a binary32 number, which
// binary64 holds unchanged.
using Evaluator = double (*)(const NodeHeader* object, std::int32_t i, std::int32_t j,
                             std::int32_t k);

struct NodeHeader {
    Destructor destructor;
    std::int32_t size;  // the record's own request in bytes, which its owner gives back
    union {
        PlanOperation plan;  // of a transform node
        Evaluator at;        // of a function object
    };
    Arena* arena;
};
static_assert(sizeof(NodeHeader) == 32);

// One element and the way to the next. A list is its head, which its owner allocates, so that an
// empty list is a head with value 0 and the first element costs nothing.
struct EnvList {
    NodeHeader* value;
    EnvList* next;
    Arena* arena;
};
static_assert(sizeof(EnvList) == 24);

extern "C" {

EnvList* EnvList___init__(EnvList* list, Arena* arena);

// Appends, and returns the value. A value of 0 leaves its slot empty: the next one takes it.
NodeHeader* EnvList_add(EnvList* list, NodeHeader* value);

// The element at an index; 0 for a negative index and where the chain ends before the index is
// reached. The number of list nodes itself is no index to ask for.
NodeHeader* EnvList_get(const EnvList* list, std::int32_t index);

// Gives back the list nodes behind the head.
void EnvList___del__(EnvList* list);

// Destroys the elements and gives back their records; the list nodes stay.
void EnvList_freeChildren(EnvList* list);

// What count calls of EnvList_add are charged in the sizing pass.
std::int32_t EnvList_add_mem(std::int32_t count);

// The value of a function object at three integers.
double owng_TFunc_IIIR_at(const NodeHeader* object, std::int32_t i, std::int32_t j, std::int32_t k);
}

// A list head as an owner takes it from the arena, and gives it back.
EnvList* makeList(Arena* arena);
void dropList(Arena* arena, EnvList* list);
// The same for the list that owns its elements.
void dropChildren(Arena* arena, EnvList* children);

}  // namespace orvgen::dct4
