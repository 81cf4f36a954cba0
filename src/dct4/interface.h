// SPDX-License-Identifier: MIT
// The exported functions of a family: size, building and end of a plan. (The run is in run.h.)
#pragma once

#include "core/orvcore.h"
#include "dct4/operations.h"
#include "dct4/radix.h"
#include "orvgen.h"

namespace orvgen::dct4 {

template <class Real>
OrvStatus planSize(std::int32_t length, std::int32_t* size) {
    const std::int32_t bytes = Operations<Env1<Real>>::mem(length);
    if (bytes < 0) {
        return orvErrSize;
    }
    // Head room for the bump pointer and for a block at any address.
    *size = bytes + 2 * static_cast<std::int32_t>(orvgAlignSize32Bytes(1));
    return orvOk;
}

template <class Real, class Spec>
OrvStatus initPlan(Spec** spec, std::int32_t length, std::uint8_t* mem) {
    if (spec == nullptr || mem == nullptr) {
        return orvErrNullPtr;
    }
    // The first allocation starts on the 32-byte boundary between 33 and 64 bytes behind mem.
    Arena* arena = reinterpret_cast<Arena*>(mem);
    const std::int64_t address = reinterpret_cast<std::int64_t>(mem);
    const std::int64_t unit = static_cast<std::int64_t>(orvgAlignSize32Bytes(1));
    arena->setBump(static_cast<std::uint64_t>(address + 2 * unit - address % unit));

    using Top = Operations<Env1<Real>>;
    void* memory = orvgArenaMalloc(arena, sizeof(Env1<Real>));
    Env1<Real>* plan = Top::init(memory, arena, length);
    const std::int32_t status = Top::plan(plan);
    if (status != planned) {
        Top::del(plan);
        orvgArenaFree(arena, plan, sizeof(Env1<Real>));
        return status;
    }
    *spec = reinterpret_cast<Spec*>(plan);
    return orvOk;
}

template <class Real, class Spec>
OrvStatus allocatePlan(Spec** spec, std::int32_t length) {
    if (spec == nullptr) {
        return orvErrNullPtr;
    }
    std::int32_t size;
    OrvStatus status = planSize<Real>(length, &size);
    if (status != orvOk) {
        return status;
    }
    // A failed allocation is not looked at: as a null block it makes initPlan fail.
    void* block = orvMalloc(size);
    status = initPlan<Real>(spec, length, static_cast<std::uint8_t*>(block));
    if (status != orvOk) {
        orvFree(block);
    }
    return status;
}

template <class Real, class Spec>
OrvStatus freePlan(Spec* spec) {
    if (spec == nullptr) {
        return orvErrNullPtr;
    }
    Env1<Real>* plan = reinterpret_cast<Env1<Real>*>(spec);
    Arena* arena = plan->arena;
    Operations<Env1<Real>>::del(plan);
    orvgArenaFree(arena, plan, sizeof(Env1<Real>));
    orvFree(arena);
    return orvOk;
}

}  // namespace orvgen::dct4
