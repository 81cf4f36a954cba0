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
#pragma once

#include "dct4/family.h"
#include "dct4/node.h"

namespace orvgen::dct4 {
inline namespace ORVGEN_DCT4_NAMESPACE {

struct Env1 : NodeHeader {
    EnvList* children;
    EnvList* stageTwoRole;
    EnvList* stageOneRole;
    Real* scratch;      // t, N elements; 0 where a straight-line body does the length
    std::int32_t rule;  // 1 to 6
    std::int32_t r;     // not set for rules 1 to 5
    std::int32_t length;
};

struct Env2 : NodeHeader {
    EnvList* children;
    EnvList* kernelRole;
    void* reserved;
    std::int32_t active;  // 1 once the plan is found to fit the lanes; a run skips the stage if not
    std::int32_t r;
    std::int32_t length;
    std::int32_t blockLength;  // 2r
    std::int32_t m;
    std::int32_t lengthAgain;  // N
    std::int32_t mirror;       // 2N - 1
    std::int32_t n;
    const NodeHeader* twiddle;  // the envfCompose of env1, not owned
};

struct Env3 : NodeHeader {
    EnvList* children;
    EnvList* transformRole;
    void* reserved;
    std::int32_t active;
    std::int32_t n;
    std::int32_t length;
    std::int32_t mirror;
    std::int32_t blockLength;
    std::int32_t r;
    std::int32_t lengthAgain;
    std::int32_t rAgain;
};

struct Env4 : NodeHeader {
    EnvList* children;  // stays empty
    Real* table;        // per group 2r vectors: cosine and sine of every p in the order of use
    std::int32_t rule;
    std::int32_t r;
    std::int32_t length;
    std::int32_t blockLength;
    std::int32_t groupStride;  // 2r times the lanes
    std::int32_t groups;       // m / lanes
    std::int32_t lengthAgain;
    std::int32_t mirror;
    std::int32_t n;
    const NodeHeader* twiddle;  // the envfsplit
};

// What env5 and env9 begin with: odd-frequency transforms of n points, by a kernel or an env7.
struct TransformNode : NodeHeader {
    EnvList* children;  // empty where n has a kernel
    EnvList* recursionRole;
    void* reserved;
    std::int32_t rule;
    std::int32_t n;
    std::int32_t length;
};

struct Env5 : TransformNode {
    std::int32_t mirror;
    std::int32_t blockLength;
    std::int32_t groups;  // r / lanes
    std::int32_t lengthAgain;
    std::int32_t r;
};

struct Env7 : NodeHeader {
    EnvList* children;
    EnvList* joinRole;
    EnvList* innerRole;
    Real* scratch;  // N elements, the same positions as the caller's output
    std::int32_t active;
    std::int32_t n;
    std::int32_t r;  // r'
    std::int32_t length;
    std::int32_t lengthAgain;
    std::int32_t inStride;
    std::int32_t scratchLength;
    std::int32_t outStride;
};

// The integers of env8, as its constructor and its choice of a rule take them.
struct Env8Sizes {
    std::int32_t r;  // r'
    std::int32_t length;
    std::int32_t stride;
    std::int32_t blockStride;  // 2r' times stride
    std::int32_t m;            // m' = n / (2r')
    std::int32_t lengthAgain;
    std::int32_t half;  // n / 2
    std::int32_t last;  // n - 1
    std::int32_t outStride;
    std::int32_t innerN;  // n' = n / r'
};

struct Env8 : NodeHeader {
    EnvList* children;  // stays empty
    Real* table;        // 2r' - 2 vectors for each of the m' results of an inner transform
    std::int32_t rule;
    Env8Sizes sizes;
    const NodeHeader* frequency;  // the envlambda
};

struct Env9 : TransformNode {
    std::int32_t lengthAgain;
    std::int32_t inStride;        // from sample to sample of one sequence
    std::int32_t sequenceStride;  // from sequence to sequence
    std::int32_t count;           // r' sequences
    std::int32_t lengthOnceMore;
    std::int32_t outStride;          // from component to component of one sequence's results
    std::int32_t sequenceOutStride;  // from sequence to sequence
};

struct EnvfCompose : NodeHeader {
    std::int32_t blockLength;   // 2r
    std::int32_t eightLengths;  // 8N
    std::int32_t m;
    std::int32_t r;
    std::int32_t step;  // 2r
};

struct EnvfSplit : NodeHeader {
    std::int32_t blockLength;  // 2r
    std::int32_t groups;       // m / lanes
    const NodeHeader* inner;   // not owned
};

struct EnvLambda : NodeHeader {
    std::int32_t n;
    std::int32_t r;
};

// The sizes are part of the plan's layout: they are what a record asks of the arena.
static_assert(sizeof(Env1) == 80);
static_assert(sizeof(Env2) == 96);
static_assert(sizeof(Env3) == 88);
static_assert(sizeof(Env4) == 96);
static_assert(sizeof(Env5) == 88);
static_assert(sizeof(Env7) == 96);
static_assert(sizeof(Env8) == 104);
static_assert(sizeof(Env9) == 96);
static_assert(sizeof(EnvLambda) == 40);
static_assert(sizeof(EnvfSplit) == 48);
static_assert(sizeof(EnvfCompose) == 56);

}  // namespace ORVGEN_DCT4_NAMESPACE
}  // namespace orvgen::dct4
