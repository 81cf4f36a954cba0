// Size, building and end of a plan.
#include "core/orvcore.h"
#include "dct4/operations.h"
#include "dct4/radix.h"

using namespace orvgen::dct4;

OrvStatus EXPORTED(DCT4GetSize)(std::int32_t len, std::int32_t* size) {
    const std::int32_t bytes = FAMILY(env1_mem)(len);
    if (bytes < 0) {
        return orvErrSize;
    }
    // Head room for the bump pointer and for a block at any address.
    *size = bytes + 2 * static_cast<std::int32_t>(orvgAlignSize32Bytes(1));
    return orvOk;
}

OrvStatus EXPORTED(DCT4Init)(Spec** spec, std::int32_t len, std::uint8_t* mem) {
    if (spec == nullptr || mem == nullptr) {
        return orvErrNullPtr;
    }
    // The first allocation starts on the 32-byte boundary between 33 and 64 bytes behind mem.
    Arena* arena = reinterpret_cast<Arena*>(mem);
    const std::int64_t address = reinterpret_cast<std::int64_t>(mem);
    const std::int64_t unit = static_cast<std::int64_t>(orvgAlignSize32Bytes(1));
    arena->setBump(static_cast<std::uint64_t>(address + 2 * unit - address % unit));

    void* memory = orvgArenaMalloc(arena, sizeof(Env1));
    Env1* plan = FAMILY(env1___init__)(memory, arena, len);
    const std::int32_t status = FAMILY(env1_plan)(plan);
    if (status != planned) {
        FAMILY(env1___del__)(plan);
        orvgArenaFree(arena, plan, sizeof(Env1));
        return status;
    }
    *spec = reinterpret_cast<Spec*>(plan);
    return orvOk;
}

OrvStatus EXPORTED(DCT4InitAlloc)(Spec** spec, std::int32_t len) {
    if (spec == nullptr) {
        return orvErrNullPtr;
    }
    std::int32_t size;
    OrvStatus status = EXPORTED(DCT4GetSize)(len, &size);
    if (status != orvOk) {
        return status;
    }
    // A failed allocation is not looked at: as a null block it makes Init fail.
    void* block = orvMalloc(size);
    status = EXPORTED(DCT4Init)(spec, len, static_cast<std::uint8_t*>(block));
    if (status != orvOk) {
        orvFree(block);
    }
    return status;
}

OrvStatus EXPORTED(DCT4Free)(Spec* spec) {
    if (spec == nullptr) {
        return orvErrNullPtr;
    }
    Env1* plan = reinterpret_cast<Env1*>(spec);
    Arena* arena = plan->arena;
    FAMILY(env1___del__)(plan);
    orvgArenaFree(arena, plan, sizeof(Env1));
    orvFree(arena);
    return orvOk;
}
