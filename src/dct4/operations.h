// The operations of the node types. For each type, as far as it has them:
//
//   _mem         what the sub-tree will cost in bytes, or a negative status; touches no memory
//   ___init__    fills the record and takes its list heads
//   _plan        chooses the rule, builds children, tables and scratch; 0 or -6
//   ___del__     gives back what the two took, but for the record itself
//   _compute     runs the transform
//
// _mem and _plan are two walks over the same decisions, kept in step by hand.
#pragma once

#include "dct4/records.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

extern "C" {

// Sizing.
std::int32_t FAMILY(env1_mem)(std::int32_t length);
std::int32_t FAMILY(env2_mem)(std::int32_t r, std::int32_t length);
std::int32_t FAMILY(env3_mem)(std::int32_t n, std::int32_t length, std::int32_t r);
std::int32_t FAMILY(env5_mem)(std::int32_t n, std::int32_t length);
std::int32_t FAMILY(env7_mem)(std::int32_t n, std::int32_t length);
std::int32_t FAMILY(env9_mem)(std::int32_t n, std::int32_t length);

// Building.
Env1* FAMILY(env1___init__)(void* memory, Arena* arena, std::int32_t length);
std::int32_t FAMILY(env1_plan)(NodeHeader* node);
void FAMILY(env1___del__)(NodeHeader* node);

Env2* FAMILY(env2___init__)(void* memory, Arena* arena, std::int32_t r, std::int32_t length,
                            std::int32_t blockLength, std::int32_t m, std::int32_t lengthAgain,
                            std::int32_t mirror, std::int32_t n, const NodeHeader* twiddle);
std::int32_t FAMILY(env2_plan)(NodeHeader* node);
void FAMILY(env2___del__)(NodeHeader* node);

Env3* FAMILY(env3___init__)(void* memory, Arena* arena, std::int32_t n, std::int32_t length,
                            std::int32_t mirror, std::int32_t blockLength, std::int32_t r,
                            std::int32_t lengthAgain, std::int32_t rAgain);
std::int32_t FAMILY(env3_plan)(NodeHeader* node);
void FAMILY(env3___del__)(NodeHeader* node);

std::int32_t FAMILY(env4_plan)(NodeHeader* node);
void FAMILY(env4___del__)(NodeHeader* node);

Env5* FAMILY(env5___init__)(void* memory, Arena* arena, std::int32_t n, std::int32_t length,
                            std::int32_t mirror, std::int32_t blockLength, std::int32_t groups,
                            std::int32_t lengthAgain, std::int32_t r);
std::int32_t FAMILY(env5_plan)(NodeHeader* node);
void FAMILY(env5___del__)(NodeHeader* node);

Env7* FAMILY(env7___init__)(void* memory, Arena* arena, std::int32_t n, std::int32_t length,
                            std::int32_t lengthAgain, std::int32_t inStride,
                            std::int32_t scratchLength, std::int32_t outStride);
std::int32_t FAMILY(env7_plan)(NodeHeader* node);
void FAMILY(env7___del__)(NodeHeader* node);

Env8* FAMILY(env8___init__)(void* memory, Arena* arena, const Env8Sizes* sizes,
                            const NodeHeader* frequency);
std::int32_t FAMILY(env8__chooseRule)(const Env8Sizes* sizes);
std::int32_t FAMILY(env8_plan)(NodeHeader* node);
void FAMILY(env8___del__)(NodeHeader* node);

Env9* FAMILY(env9___init__)(void* memory, Arena* arena, std::int32_t n, std::int32_t length,
                            std::int32_t lengthAgain, std::int32_t inStride,
                            std::int32_t sequenceStride, std::int32_t count,
                            std::int32_t lengthOnceMore, std::int32_t outStride,
                            std::int32_t sequenceOutStride);
std::int32_t FAMILY(env9_plan)(NodeHeader* node);
void FAMILY(env9___del__)(NodeHeader* node);

// Function objects.
EnvfCompose* FAMILY(envfCompose___init__)(void* memory, Arena* arena, std::int32_t blockLength,
                                          std::int32_t eightLengths, std::int32_t m, std::int32_t r,
                                          std::int32_t step);
double FAMILY(envfCompose_at)(const NodeHeader* object, std::int32_t i, std::int32_t j,
                              std::int32_t k);
void FAMILY(envfCompose___del__)(NodeHeader* object);
double FAMILY(envfsplit_at)(const NodeHeader* object, std::int32_t i, std::int32_t j,
                            std::int32_t k);
void FAMILY(envfsplit___del__)(NodeHeader* object);
EnvLambda* FAMILY(envlambda___init__)(void* memory, Arena* arena, std::int32_t n, std::int32_t r);
double FAMILY(envlambda_at)(const NodeHeader* object, std::int32_t i, std::int32_t j,
                            std::int32_t k);
void FAMILY(envlambda___del__)(NodeHeader* object);

// Running. a, b, c of the inner nodes: offset of the first sample of the first lane's sequence in
// src, its mirror offset 2N - 1 - 2a, and the offset of its first result in dst.
OrvStatus FAMILY(env4_compute)(const Env4* node, Real* dst, const Real* src);
OrvStatus FAMILY(env5_compute)(const Env5* node, Real* dst, const Real* src);
OrvStatus FAMILY(env7_compute)(const Env7* node, Real* dst, const Real* src, std::int32_t a,
                               std::int32_t b, std::int32_t c);
OrvStatus FAMILY(env8_compute)(const Env8* node, Real* dst, const Real* src, std::int32_t c0,
                               std::int32_t c1);
OrvStatus FAMILY(env9_compute)(const Env9* node, Real* dst, const Real* src, std::int32_t a,
                               std::int32_t b, std::int32_t c);
}

// Bytes of a number of elements, for the arena. A length that the tree refuses may be negative; the
// arena's arithmetic takes it as it comes.
inline std::uint64_t elementBytes(std::int32_t count) {
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(count) *
                                      static_cast<std::int64_t>(sizeof(Real)));
}

inline Real* takeElements(Arena* arena, std::int32_t count) {
    return static_cast<Real*>(orvgArenaMalloc(arena, elementBytes(count)));
}

// Header of a record, whatever its type.
template <class Record>
Record* placeRecord(void* memory, Arena* arena, Destructor destructor) {
    Record* record = static_cast<Record*>(memory);
    record->destructor = destructor;
    record->size = static_cast<std::int32_t>(sizeof(Record));
    record->arena = arena;
    return record;
}

template <class Record>
Record* placeNode(void* memory, Arena* arena, Destructor destructor, PlanOperation plan) {
    Record* record = placeRecord<Record>(memory, arena, destructor);
    record->plan = plan;
    return record;
}

template <class Record>
Record* placeFunction(void* memory, Arena* arena, Destructor destructor, Evaluator at) {
    Record* record = placeRecord<Record>(memory, arena, destructor);
    record->at = at;
    return record;
}

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
