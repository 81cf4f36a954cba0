// SPDX-License-Identifier: MIT
#include "digests/plans.h"

#include <limits>
#include <stdexcept>

#include "digests/digest.h"

namespace orvgen::test {
namespace {

std::uint64_t word(std::int32_t value) { return static_cast<std::uint64_t>(value); }

// Small ones, and all about the powers of two.
std::vector<std::int32_t> lengths() {
    std::vector<std::int32_t> list = {std::numeric_limits<std::int32_t>::min(),
                                      std::numeric_limits<std::int32_t>::max()};
    for (std::int32_t n = -2; n <= 260; ++n) list.push_back(n);
    for (std::int32_t n = 512; n <= 1 << 30; n *= 2) {
        for (const std::int32_t off : {-1, 0, 1, 2}) list.push_back(n + off);
        if (n == 1 << 30) break;
    }
    return list;
}

// Above, building plans would take long.
constexpr std::int32_t largestBuilt = 4096;

}  // namespace

PlanFunctions::PlanFunctions(const LoadedLibrary& library, bool isSingle)
    : single(isSingle), type(isSingle ? "32f" : "64f") {
    getSize = library.function<OrvStatus(std::int32_t, std::int32_t*)>("orvgDCT4GetSize_" + type);
    init = library.function<OrvStatus(void**, std::int32_t, std::uint8_t*)>("orvgDCT4Init_" + type);
    initAlloc = library.function<OrvStatus(void**, std::int32_t)>("orvgDCT4InitAlloc_" + type);
    free = library.function<OrvStatus(void*)>("orvgDCT4Free_" + type);
    run = library.function<OrvStatus(const void*, void*, void*)>("orvgDCT4_" + type);
}

std::shared_ptr<void> PlanFunctions::planIn(Memory memory, std::int32_t length) const {
    void* plan = nullptr;
    if (memory == Memory::OfTheLibrary) {
        if (initAlloc(&plan, length) != orvOk) throw std::runtime_error("no plan");
        return {plan, free};
    }
    std::int32_t size = 0;
    if (getSize(length, &size) != orvOk) throw std::runtime_error("no size");
    // Off every boundary.
    const auto block =
        std::make_shared<std::vector<std::uint8_t>>(static_cast<std::size_t>(size) + 1);
    if (init(&plan, length, block->data() + 1) != orvOk) throw std::runtime_error("no plan");
    return {block, plan};
}

Transform PlanFunctions::plan(std::int32_t length, Memory memory) const {
    const auto call = [run = run, plan = planIn(memory, length)](const void* src, void* dst,
                                                                 std::int32_t) {
        return run(src, dst, plan.get());
    };
    return {single, static_cast<std::size_t>(length), call, {0}};
}

std::vector<PlanFunctions::Answers> PlanFunctions::answers() const {
    Digest sizes, inits, allocs, frees, runs;
    for (const std::int32_t n : lengths()) {
        std::int32_t size = -77;
        const OrvStatus status = getSize(n, &size);
        sizes.add(word(status));
        sizes.add(word(size));
        if (n > largestBuilt) continue;
        void* plan = nullptr;
        allocs.add(word(initAlloc(&plan, n)));
        if (plan != nullptr) frees.add(word(free(plan)));
        if (status != orvOk) continue;
        std::vector<std::uint8_t> block(static_cast<std::size_t>(size));
        inits.add(word(init(&plan, n, block.data())));
    }
    void* plan = nullptr;
    std::uint8_t some[64] = {};
    inits.add(word(init(nullptr, 8, some)));
    inits.add(word(init(&plan, 8, nullptr)));
    allocs.add(word(initAlloc(nullptr, 8)));
    frees.add(word(free(nullptr)));
    const std::shared_ptr<void> eight = planIn(Memory::OfTheLibrary, 8);
    runs.add(word(run(nullptr, some, eight.get())));
    runs.add(word(run(some, nullptr, eight.get())));
    runs.add(word(run(some, some, nullptr)));
    return {{"orvgDCT4GetSize_" + type, sizes.value()},
            {"orvgDCT4Init_" + type, inits.value()},
            {"orvgDCT4InitAlloc_" + type, allocs.value()},
            {"orvgDCT4Free_" + type, frees.value()},
            {runName(), runs.value()}};
}

}  // namespace orvgen::test
