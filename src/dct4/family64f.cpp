// SPDX-License-Identifier: MIT
// Every function of the 64-bit family by its name, the exported ones first. What they do is written
// once for both families: the head of each part names its file.
#include "dct4/family64f.h"

#include "dct4/env1.h"
#include "dct4/env2.h"
#include "dct4/env3.h"
#include "dct4/env4.h"
#include "dct4/env5.h"
#include "dct4/env7.h"
#include "dct4/env8.h"
#include "dct4/env9.h"
#include "dct4/functions.h"
#include "dct4/interface.h"
#include "dct4/run.h"
#include "dct4/stagetwo.h"

using namespace orvgen::dct4;

extern "C" {

// interface.h

OrvStatus orvgDCT4GetSize_64f(std::int32_t len, std::int32_t* size) {
    return planSize<Orv64f>(len, size);
}

OrvStatus orvgDCT4Init_64f(OrvDCT4Spec_64f** spec, std::int32_t len, std::uint8_t* mem) {
    return initPlan<Orv64f>(spec, len, mem);
}

OrvStatus orvgDCT4InitAlloc_64f(OrvDCT4Spec_64f** spec, std::int32_t len) {
    return allocatePlan<Orv64f>(spec, len);
}

OrvStatus orvgDCT4Free_64f(OrvDCT4Spec_64f* spec) { return freePlan<Orv64f>(spec); }

// run.h

OrvStatus orvgDCT4_64f(const Orv64f* src, Orv64f* dst, OrvDCT4Spec_64f* spec) {
    return runPlan<Orv64f>(src, dst, spec);
}
}

namespace orvgen::dct4 {

extern "C" {

// env1.h: the plan

std::int32_t owngDCT4_64fw7_env1_mem(std::int32_t length) { return sizeNode<Env1<Orv64f>>(length); }

Env1<Orv64f>* owngDCT4_64fw7_env1___init__(void* memory, Arena* arena, std::int32_t length) {
    return initRecord<Env1<Orv64f>>(memory, arena, length);
}

std::int32_t owngDCT4_64fw7_env1_plan(NodeHeader* node) { return planNode<Env1<Orv64f>>(node); }

void owngDCT4_64fw7_env1___del__(NodeHeader* node) { dropNode<Env1<Orv64f>>(node); }

// env2.h: the wrapper of the second stage

std::int32_t owngDCT4_64fw7_env2_mem(std::int32_t r, std::int32_t length,
                                     const NodeHeader* twiddle) {
    return sizeNode<Env2<Orv64f>>(r, length, twiddle);
}

Env2<Orv64f>* owngDCT4_64fw7_env2___init__(void* memory, Arena* arena, std::int32_t r,
                                           std::int32_t length, const NodeHeader* twiddle) {
    return initRecord<Env2<Orv64f>>(memory, arena, r, length, twiddle);
}

std::int32_t owngDCT4_64fw7_env2_plan(NodeHeader* node) { return planNode<Env2<Orv64f>>(node); }

void owngDCT4_64fw7_env2___del__(NodeHeader* node) { dropNode<Env2<Orv64f>>(node); }

// env3.h: the wrapper of the first stage

std::int32_t owngDCT4_64fw7_env3_mem(std::int32_t n, std::int32_t length, std::int32_t r) {
    return sizeNode<Env3<Orv64f>>(n, length, r);
}

Env3<Orv64f>* owngDCT4_64fw7_env3___init__(void* memory, Arena* arena, std::int32_t n,
                                           std::int32_t length, std::int32_t r) {
    return initRecord<Env3<Orv64f>>(memory, arena, n, length, r);
}

std::int32_t owngDCT4_64fw7_env3_plan(NodeHeader* node) { return planNode<Env3<Orv64f>>(node); }

void owngDCT4_64fw7_env3___del__(NodeHeader* node) { dropNode<Env3<Orv64f>>(node); }

// env4.h: the second stage

std::int32_t owngDCT4_64fw7_env4_plan(NodeHeader* node) { return planNode<Env4<Orv64f>>(node); }

void owngDCT4_64fw7_env4___del__(NodeHeader* node) { dropNode<Env4<Orv64f>>(node); }

OrvStatus owngDCT4_64fw7_env4_compute(const Env4<Orv64f>* node, Orv64f* dst, const Orv64f* src) {
    return stageTwoKernel(*node, dst, src);
}

// env5.h: the first stage

std::int32_t owngDCT4_64fw7_env5_mem(std::int32_t n, std::int32_t length, std::int32_t r) {
    return sizeNode<Env5<Orv64f>>(n, length, r);
}

Env5<Orv64f>* owngDCT4_64fw7_env5___init__(void* memory, Arena* arena, std::int32_t n,
                                           std::int32_t length, std::int32_t r) {
    return initRecord<Env5<Orv64f>>(memory, arena, n, length, r);
}

std::int32_t owngDCT4_64fw7_env5_plan(NodeHeader* node) { return planNode<Env5<Orv64f>>(node); }

void owngDCT4_64fw7_env5___del__(NodeHeader* node) { dropNode<Env5<Orv64f>>(node); }

OrvStatus owngDCT4_64fw7_env5_compute(const Env5<Orv64f>* node, Orv64f* dst, const Orv64f* src) {
    return compute(*node, dst, src);
}

// env7.h: one level of the recursion

std::int32_t owngDCT4_64fw7_env7_mem(std::int32_t n, std::int32_t length, std::int32_t inStride,
                                     std::int32_t outStride) {
    return sizeNode<Env7<Orv64f>>(n, length, inStride, outStride);
}

Env7<Orv64f>* owngDCT4_64fw7_env7___init__(void* memory, Arena* arena, std::int32_t n,
                                           std::int32_t length, std::int32_t inStride,
                                           std::int32_t outStride) {
    return initRecord<Env7<Orv64f>>(memory, arena, n, length, inStride, outStride);
}

std::int32_t owngDCT4_64fw7_env7_plan(NodeHeader* node) { return planNode<Env7<Orv64f>>(node); }

void owngDCT4_64fw7_env7___del__(NodeHeader* node) { dropNode<Env7<Orv64f>>(node); }

OrvStatus owngDCT4_64fw7_env7_compute(const Env7<Orv64f>* node, Orv64f* dst, const Orv64f* src,
                                      std::int32_t a, std::int32_t b, std::int32_t c) {
    return compute(*node, dst, src, a, b, c);
}

// env8.h: the join of a level

Env8<Orv64f>* owngDCT4_64fw7_env8___init__(void* memory, Arena* arena, std::int32_t n,
                                           std::int32_t r, std::int32_t length, std::int32_t stride,
                                           const NodeHeader* frequency) {
    return initRecord<Env8<Orv64f>>(memory, arena, n, r, length, stride, frequency);
}

std::int32_t owngDCT4_64fw7_env8__chooseRule(const Env8<Orv64f>* node) { return chooseRule(*node); }

std::int32_t owngDCT4_64fw7_env8_plan(NodeHeader* node) { return planNode<Env8<Orv64f>>(node); }

void owngDCT4_64fw7_env8___del__(NodeHeader* node) { dropNode<Env8<Orv64f>>(node); }

OrvStatus owngDCT4_64fw7_env8_compute(const Env8<Orv64f>* node, Orv64f* dst, const Orv64f* src,
                                      std::int32_t c0, std::int32_t c1) {
    return compute(*node, dst, src, c0, c1);
}

// env9.h: the inner transforms of a level

std::int32_t owngDCT4_64fw7_env9_mem(std::int32_t n, std::int32_t length, std::int32_t r,
                                     std::int32_t inStride, std::int32_t outStride) {
    return sizeNode<Env9<Orv64f>>(n, length, r, inStride, outStride);
}

Env9<Orv64f>* owngDCT4_64fw7_env9___init__(void* memory, Arena* arena, std::int32_t n,
                                           std::int32_t length, std::int32_t r,
                                           std::int32_t inStride, std::int32_t outStride) {
    return initRecord<Env9<Orv64f>>(memory, arena, n, length, r, inStride, outStride);
}

std::int32_t owngDCT4_64fw7_env9_plan(NodeHeader* node) { return planNode<Env9<Orv64f>>(node); }

void owngDCT4_64fw7_env9___del__(NodeHeader* node) { dropNode<Env9<Orv64f>>(node); }

OrvStatus owngDCT4_64fw7_env9_compute(const Env9<Orv64f>* node, Orv64f* dst, const Orv64f* src,
                                      std::int32_t a, std::int32_t b, std::int32_t c) {
    return compute(*node, dst, src, a, b, c);
}

// functions.h: the function objects; none holds anything to give back

EnvfCompose<Orv64f>* owngDCT4_64fw7_envfCompose___init__(void* memory, Arena* arena, std::int32_t r,
                                                         std::int32_t length) {
    return initRecord<EnvfCompose<Orv64f>>(memory, arena, r, length);
}

double owngDCT4_64fw7_envfCompose_at(const NodeHeader* object, std::int32_t i, std::int32_t j,
                                     std::int32_t k) {
    return evaluate<EnvfCompose<Orv64f>>(object, i, j, k);
}

void owngDCT4_64fw7_envfCompose___del__(NodeHeader*) {}

double owngDCT4_64fw7_envfsplit_at(const NodeHeader* object, std::int32_t i, std::int32_t j,
                                   std::int32_t k) {
    return evaluate<EnvfSplit<Orv64f>>(object, i, j, k);
}

void owngDCT4_64fw7_envfsplit___del__(NodeHeader*) {}

EnvLambda<Orv64f>* owngDCT4_64fw7_envlambda___init__(void* memory, Arena* arena, std::int32_t n,
                                                     std::int32_t r) {
    return initRecord<EnvLambda<Orv64f>>(memory, arena, n, r);
}

double owngDCT4_64fw7_envlambda_at(const NodeHeader* object, std::int32_t i, std::int32_t j,
                                   std::int32_t k) {
    return evaluate<EnvLambda<Orv64f>>(object, i, j, k);
}

void owngDCT4_64fw7_envlambda___del__(NodeHeader*) {}
}

}  // namespace orvgen::dct4
