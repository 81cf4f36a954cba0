// SPDX-License-Identifier: MIT
// The operations of the 64-bit family by their names. operations.h says what each of them does.
// Sizing and running go from name to name: no _mem and no _compute is inlined into another.
#pragma once

#include "dct4/operations.h"
#include "orvgen.h"

namespace orvgen::dct4 {

extern "C" {

[[gnu::noinline]] std::int32_t owngDCT4_64fw7_env1_mem(std::int32_t length);
Env1<Orv64f>* owngDCT4_64fw7_env1___init__(void* memory, Arena* arena, std::int32_t length);
std::int32_t owngDCT4_64fw7_env1_plan(NodeHeader* node);
void owngDCT4_64fw7_env1___del__(NodeHeader* node);

[[gnu::noinline]] std::int32_t owngDCT4_64fw7_env2_mem(std::int32_t r, std::int32_t length,
                                                       const NodeHeader* twiddle);
Env2<Orv64f>* owngDCT4_64fw7_env2___init__(void* memory, Arena* arena, std::int32_t r,
                                           std::int32_t length, const NodeHeader* twiddle);
std::int32_t owngDCT4_64fw7_env2_plan(NodeHeader* node);
void owngDCT4_64fw7_env2___del__(NodeHeader* node);

[[gnu::noinline]] std::int32_t owngDCT4_64fw7_env3_mem(std::int32_t n, std::int32_t length,
                                                       std::int32_t r);
Env3<Orv64f>* owngDCT4_64fw7_env3___init__(void* memory, Arena* arena, std::int32_t n,
                                           std::int32_t length, std::int32_t r);
std::int32_t owngDCT4_64fw7_env3_plan(NodeHeader* node);
void owngDCT4_64fw7_env3___del__(NodeHeader* node);

std::int32_t owngDCT4_64fw7_env4_plan(NodeHeader* node);
void owngDCT4_64fw7_env4___del__(NodeHeader* node);
[[gnu::noinline]] OrvStatus owngDCT4_64fw7_env4_compute(const Env4<Orv64f>* node, Orv64f* dst,
                                                        const Orv64f* src);

[[gnu::noinline]] std::int32_t owngDCT4_64fw7_env5_mem(std::int32_t n, std::int32_t length,
                                                       std::int32_t r);
Env5<Orv64f>* owngDCT4_64fw7_env5___init__(void* memory, Arena* arena, std::int32_t n,
                                           std::int32_t length, std::int32_t r);
std::int32_t owngDCT4_64fw7_env5_plan(NodeHeader* node);
void owngDCT4_64fw7_env5___del__(NodeHeader* node);
[[gnu::noinline]] OrvStatus owngDCT4_64fw7_env5_compute(const Env5<Orv64f>* node, Orv64f* dst,
                                                        const Orv64f* src);

[[gnu::noinline]] std::int32_t owngDCT4_64fw7_env7_mem(std::int32_t n, std::int32_t length,
                                                       std::int32_t inStride,
                                                       std::int32_t outStride);
Env7<Orv64f>* owngDCT4_64fw7_env7___init__(void* memory, Arena* arena, std::int32_t n,
                                           std::int32_t length, std::int32_t inStride,
                                           std::int32_t outStride);
std::int32_t owngDCT4_64fw7_env7_plan(NodeHeader* node);
void owngDCT4_64fw7_env7___del__(NodeHeader* node);
[[gnu::noinline]] OrvStatus owngDCT4_64fw7_env7_compute(const Env7<Orv64f>* node, Orv64f* dst,
                                                        const Orv64f* src, std::int32_t a,
                                                        std::int32_t b, std::int32_t c);

Env8<Orv64f>* owngDCT4_64fw7_env8___init__(void* memory, Arena* arena, std::int32_t n,
                                           std::int32_t r, std::int32_t length, std::int32_t stride,
                                           const NodeHeader* frequency);
std::int32_t owngDCT4_64fw7_env8__chooseRule(const Env8<Orv64f>* node);
std::int32_t owngDCT4_64fw7_env8_plan(NodeHeader* node);
void owngDCT4_64fw7_env8___del__(NodeHeader* node);
[[gnu::noinline]] OrvStatus owngDCT4_64fw7_env8_compute(const Env8<Orv64f>* node, Orv64f* dst,
                                                        const Orv64f* src, std::int32_t c0,
                                                        std::int32_t c1);

[[gnu::noinline]] std::int32_t owngDCT4_64fw7_env9_mem(std::int32_t n, std::int32_t length,
                                                       std::int32_t r, std::int32_t inStride,
                                                       std::int32_t outStride);
Env9<Orv64f>* owngDCT4_64fw7_env9___init__(void* memory, Arena* arena, std::int32_t n,
                                           std::int32_t length, std::int32_t r,
                                           std::int32_t inStride, std::int32_t outStride);
std::int32_t owngDCT4_64fw7_env9_plan(NodeHeader* node);
void owngDCT4_64fw7_env9___del__(NodeHeader* node);
[[gnu::noinline]] OrvStatus owngDCT4_64fw7_env9_compute(const Env9<Orv64f>* node, Orv64f* dst,
                                                        const Orv64f* src, std::int32_t a,
                                                        std::int32_t b, std::int32_t c);

EnvfCompose<Orv64f>* owngDCT4_64fw7_envfCompose___init__(void* memory, Arena* arena, std::int32_t r,
                                                         std::int32_t length);
double owngDCT4_64fw7_envfCompose_at(const NodeHeader* object, std::int32_t i, std::int32_t j,
                                     std::int32_t k);
void owngDCT4_64fw7_envfCompose___del__(NodeHeader* object);

double owngDCT4_64fw7_envfsplit_at(const NodeHeader* object, std::int32_t i, std::int32_t j,
                                   std::int32_t k);
void owngDCT4_64fw7_envfsplit___del__(NodeHeader* object);

EnvLambda<Orv64f>* owngDCT4_64fw7_envlambda___init__(void* memory, Arena* arena, std::int32_t n,
                                                     std::int32_t r);
double owngDCT4_64fw7_envlambda_at(const NodeHeader* object, std::int32_t i, std::int32_t j,
                                   std::int32_t k);
void owngDCT4_64fw7_envlambda___del__(NodeHeader* object);
}

template <>
struct Operations<Env1<Orv64f>> {
    static constexpr auto mem = owngDCT4_64fw7_env1_mem;
    static constexpr auto init = owngDCT4_64fw7_env1___init__;
    static constexpr auto plan = owngDCT4_64fw7_env1_plan;
    static constexpr auto del = owngDCT4_64fw7_env1___del__;
};

template <>
struct Operations<Env2<Orv64f>> {
    static constexpr auto mem = owngDCT4_64fw7_env2_mem;
    static constexpr auto init = owngDCT4_64fw7_env2___init__;
    static constexpr auto plan = owngDCT4_64fw7_env2_plan;
    static constexpr auto del = owngDCT4_64fw7_env2___del__;
};

template <>
struct Operations<Env3<Orv64f>> {
    static constexpr auto mem = owngDCT4_64fw7_env3_mem;
    static constexpr auto init = owngDCT4_64fw7_env3___init__;
    static constexpr auto plan = owngDCT4_64fw7_env3_plan;
    static constexpr auto del = owngDCT4_64fw7_env3___del__;
};

template <>
struct Operations<Env4<Orv64f>> {
    static constexpr auto plan = owngDCT4_64fw7_env4_plan;
    static constexpr auto del = owngDCT4_64fw7_env4___del__;
    static constexpr auto compute = owngDCT4_64fw7_env4_compute;
};

template <>
struct Operations<Env5<Orv64f>> {
    static constexpr auto mem = owngDCT4_64fw7_env5_mem;
    static constexpr auto init = owngDCT4_64fw7_env5___init__;
    static constexpr auto plan = owngDCT4_64fw7_env5_plan;
    static constexpr auto del = owngDCT4_64fw7_env5___del__;
    static constexpr auto compute = owngDCT4_64fw7_env5_compute;
};

template <>
struct Operations<Env7<Orv64f>> {
    static constexpr auto mem = owngDCT4_64fw7_env7_mem;
    static constexpr auto init = owngDCT4_64fw7_env7___init__;
    static constexpr auto plan = owngDCT4_64fw7_env7_plan;
    static constexpr auto del = owngDCT4_64fw7_env7___del__;
    static constexpr auto compute = owngDCT4_64fw7_env7_compute;
};

template <>
struct Operations<Env8<Orv64f>> {
    static constexpr auto init = owngDCT4_64fw7_env8___init__;
    static constexpr auto chooseRule = owngDCT4_64fw7_env8__chooseRule;
    static constexpr auto plan = owngDCT4_64fw7_env8_plan;
    static constexpr auto del = owngDCT4_64fw7_env8___del__;
    static constexpr auto compute = owngDCT4_64fw7_env8_compute;
};

template <>
struct Operations<Env9<Orv64f>> {
    static constexpr auto mem = owngDCT4_64fw7_env9_mem;
    static constexpr auto init = owngDCT4_64fw7_env9___init__;
    static constexpr auto plan = owngDCT4_64fw7_env9_plan;
    static constexpr auto del = owngDCT4_64fw7_env9___del__;
    static constexpr auto compute = owngDCT4_64fw7_env9_compute;
};

template <>
struct Operations<EnvfCompose<Orv64f>> {
    static constexpr auto init = owngDCT4_64fw7_envfCompose___init__;
    static constexpr auto at = owngDCT4_64fw7_envfCompose_at;
    static constexpr auto del = owngDCT4_64fw7_envfCompose___del__;
};

template <>
struct Operations<EnvfSplit<Orv64f>> {
    static constexpr auto at = owngDCT4_64fw7_envfsplit_at;
    static constexpr auto del = owngDCT4_64fw7_envfsplit___del__;
};

template <>
struct Operations<EnvLambda<Orv64f>> {
    static constexpr auto init = owngDCT4_64fw7_envlambda___init__;
    static constexpr auto at = owngDCT4_64fw7_envlambda_at;
    static constexpr auto del = owngDCT4_64fw7_envlambda___del__;
};

}  // namespace orvgen::dct4
