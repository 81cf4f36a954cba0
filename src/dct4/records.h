// SPDX-License-Identifier: MIT
// The records of a plan's tree.
//
// A DCT-IV of length N = 2 r m is done in two stages (docs/dct4.md gives the mathematics):
//
//   env1                    the plan: radix r, the scratch t between the stages
//   |- envfCompose          the twiddle between the stages, as a function of block and result
//   |- env2                 second stage
//   |  |- envfsplit         the same function by vector and lane
//   |  `- env4              kernel of 2r points over the m blocks, v of them in the lanes
//   `- env3                 first stage
//      `- env5              odd-frequency transforms of n = 2m points, v of them in the lanes
//         `- env7           where n has no kernel: n = r' n'
//            |- envlambda   frequency of a block
//            |- env8        twiddle and r'-point transforms
//            `- env9        the r' inner transforms of n' points, by a kernel or an env7 again
//
// The children list of a record owns what it created, in the order of creation; a role list borrows
// the child that plays a role, and it is through these that a run finds its way.
//
// Order and values of the fields are the plan's layout. A field that nothing reads is called
// unused, with its number in the record, and holds what its comment says; a reserved pointer is 0.
#pragma once

#include <array>

#include "dct4/node.h"

namespace orvgen::dct4 {

template <class Real>
struct Env1 : NodeHeader {
    EnvList* children;
    EnvList* stageTwoRole;
    EnvList* stageOneRole;
    Real* scratch;      // t, N elements; 0 where a straight-line body does the length
    std::int32_t rule;  // 1 to 6
    std::int32_t r;     // not set for rules 1 to 5
    std::int32_t length;

    auto roles() { return std::array{&stageTwoRole, &stageOneRole}; }
};

template <class Real>
struct Env2 : NodeHeader {
    EnvList* children;
    EnvList* kernelRole;
    void* reserved;
    std::int32_t active;  // 1 once the plan is found to fit the lanes; a run skips the stage if not
    std::int32_t r;
    std::int32_t length;
    std::int32_t unused1;  // 2r
    std::int32_t m;
    std::int32_t unused2;       // N
    std::int32_t unused3;       // 2N - 1
    std::int32_t unused4;       // n
    const NodeHeader* twiddle;  // the envfCompose of env1, not owned

    auto roles() { return std::array{&kernelRole}; }
};

template <class Real>
struct Env3 : NodeHeader {
    EnvList* children;
    EnvList* transformRole;
    void* reserved;
    std::int32_t active;
    std::int32_t n;
    std::int32_t length;
    std::int32_t unused1;  // 2N - 1
    std::int32_t unused2;  // 2r
    std::int32_t r;
    std::int32_t unused3;  // N
    std::int32_t unused4;  // r

    auto roles() { return std::array{&transformRole}; }
};

template <class Real>
struct Env4 : NodeHeader {
    EnvList* children;  // stays empty
    Real* table;        // per group 2r vectors: cosine and sine of every p in the order of use
    std::int32_t rule;
    std::int32_t r;
    std::int32_t unused1;  // N
    std::int32_t unused2;  // 2r
    std::int32_t unused3;  // 2r times the lanes
    std::int32_t groups;   // m / lanes
    std::int32_t unused4;  // N
    std::int32_t mirror;   // 2N - 1
    std::int32_t n;
    const NodeHeader* twiddle;  // the envfsplit

    auto roles() { return std::array<EnvList**, 0>{}; }
};

// What env5 and env9 begin with: odd-frequency transforms of n points, by a kernel or an env7.
template <class Real>
struct TransformNode : NodeHeader {
    EnvList* children;  // empty where n has a kernel
    EnvList* recursionRole;
    void* reserved;
    std::int32_t rule;
    std::int32_t n;
    std::int32_t length;

    auto roles() { return std::array{&recursionRole}; }
};

template <class Real>
struct Env5 : TransformNode<Real> {
    std::int32_t mirror;       // 2N - 1
    std::int32_t blockLength;  // 2r
    std::int32_t groups;       // r / lanes
    std::int32_t unused1;      // N
    std::int32_t r;
};

template <class Real>
struct Env7 : NodeHeader {
    EnvList* children;
    EnvList* joinRole;
    EnvList* innerRole;
    Real* scratch;  // N elements, the same positions as the caller's output
    std::int32_t active;
    std::int32_t n;
    std::int32_t r;  // r'
    std::int32_t length;
    std::int32_t unused1;  // N
    std::int32_t inStride;
    std::int32_t scratchLength;
    std::int32_t outStride;

    auto roles() { return std::array{&joinRole, &innerRole}; }
};

template <class Real>
struct Env8 : NodeHeader {
    EnvList* children;  // stays empty
    Real* table;        // 2r' - 2 vectors for each of the m' results of an inner transform
    std::int32_t rule;
    std::int32_t r;        // r'
    std::int32_t unused1;  // N
    std::int32_t stride;
    std::int32_t blockStride;     // 2r' times stride
    std::int32_t m;               // m' = n / (2r')
    std::int32_t unused2;         // N
    std::int32_t unused3;         // n / 2
    std::int32_t unused4;         // n - 1
    std::int32_t unused5;         // stride
    std::int32_t unused6;         // n' = n / r'
    const NodeHeader* frequency;  // the envlambda

    auto roles() { return std::array<EnvList**, 0>{}; }
};

template <class Real>
struct Env9 : TransformNode<Real> {
    std::int32_t unused1;            // N
    std::int32_t inStride;           // from sample to sample of one sequence
    std::int32_t sequenceStride;     // from sequence to sequence
    std::int32_t count;              // r' sequences
    std::int32_t unused2;            // N
    std::int32_t outStride;          // from component to component of one sequence's results
    std::int32_t sequenceOutStride;  // from sequence to sequence
};

template <class Real>
struct EnvfCompose : NodeHeader {
    std::int32_t unused1;       // 2r
    std::int32_t eightLengths;  // 8N
    std::int32_t unused2;       // m
    std::int32_t r;
    std::int32_t step;  // 2r
};

template <class Real>
struct EnvfSplit : NodeHeader {
    std::int32_t unused1;     // 2r
    std::int32_t unused2;     // m / lanes
    const NodeHeader* inner;  // not owned
};

template <class Real>
struct EnvLambda : NodeHeader {
    std::int32_t n;
    std::int32_t r;  // r'
};

// The sizes are part of the layout too: they are what a record asks of the arena.
template <class Real>
constexpr bool recordsHaveTheirSizes = sizeof(Env1<Real>) == 80 && sizeof(Env2<Real>) == 96 &&
                                       sizeof(Env3<Real>) == 88 && sizeof(Env4<Real>) == 96 &&
                                       sizeof(Env5<Real>) == 88 && sizeof(Env7<Real>) == 96 &&
                                       sizeof(Env8<Real>) == 104 && sizeof(Env9<Real>) == 96 &&
                                       sizeof(EnvLambda<Real>) == 40 &&
                                       sizeof(EnvfSplit<Real>) == 48 &&
                                       sizeof(EnvfCompose<Real>) == 56;
static_assert(recordsHaveTheirSizes<float> && recordsHaveTheirSizes<double>);

}  // namespace orvgen::dct4
