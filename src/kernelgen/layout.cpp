// SPDX-License-Identifier: MIT
#include "layout.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <stdexcept>

namespace orvgen::kernelgen {

namespace {

int roundUp(int bytes, int multiple) { return (bytes + multiple - 1) / multiple * multiple; }

// The numbers 0 to n - 1 by how often the block's addresses of this base name them, most first.
std::vector<std::size_t> byUse(const std::vector<MachineInstruction>& block, Base base,
                               std::size_t n) {
    std::vector<int> uses(n, 0);
    for (const MachineInstruction& m : block)
        if (m.hasAddress && m.address.base == base)
            ++uses[static_cast<std::size_t>(m.address.offset)];
    std::vector<std::size_t> order(n);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return uses[a] > uses[b]; });
    return order;
}

void rewrite(std::vector<MachineInstruction>& block, Base base, const std::vector<int>& offset) {
    for (MachineInstruction& m : block)
        if (m.hasAddress && m.address.base == base)
            m.address.offset = offset[static_cast<std::size_t>(m.address.offset)];
}

// Places of sizes that are powers of two, each at a multiple of its size. What alignment leaves
// free below the end is filled by smaller ones; there is never more than one such hole of a size.
class Places {
  public:
    int place(int size) {
        const auto hole = holes_.lower_bound(size);
        if (hole == holes_.end()) {
            while (end_ % size != 0) {
                const int low = end_ & -end_;
                holes_.emplace(low, end_);
                end_ += low;
            }
            end_ += size;
            return end_ - size;
        }
        int bytes = hole->first;
        const int offset = hole->second;
        holes_.erase(hole);
        while (bytes > size) {
            bytes /= 2;
            holes_.emplace(bytes, offset + bytes);
        }
        return offset;
    }

  private:
    int end_ = 0;
    std::map<int, int> holes_;  // size -> offset
};

}  // namespace

int frameBytes(const std::vector<int>& slotSizes) {
    if (slotSizes.empty()) return 0;
    return roundUp(std::accumulate(slotSizes.begin(), slotSizes.end(), 0),
                   std::max(16, *std::ranges::max_element(slotSizes)));
}

void layOutFrame(Allocation& allocation) {
    const std::vector<int>& sizes = allocation.slotSizes;
    std::vector<int> offset(sizes.size(), 0);
    Places places;
    for (const std::size_t s : byUse(allocation.instructions, Base::Frame, sizes.size()))
        offset[s] = places.place(sizes[s]);
    rewrite(allocation.instructions, Base::Frame, offset);
}

PoolLayout layOutPool(const std::vector<PoolEntry>& pool, std::vector<MachineInstruction>& block,
                      int firstOffset) {
    PoolLayout layout;
    // Vectors stand in front of scalars, the widest first: each at a multiple of its size.
    const auto vectorBytes = [&](std::size_t i) {
        return pool[i].bytes() < 16 ? 0 : pool[i].bytes();
    };
    layout.order = byUse(block, Base::Pool, pool.size());
    std::stable_sort(layout.order.begin(), layout.order.end(),
                     [&](std::size_t a, std::size_t b) { return vectorBytes(a) > vectorBytes(b); });
    layout.offset.resize(pool.size());
    int end = firstOffset;
    for (const std::size_t i : layout.order) {
        layout.offset[i] = end;
        end += pool[i].bytes();
    }
    layout.size = end;
    rewrite(block, Base::Pool, layout.offset);
    return layout;
}

void renumberRegisters(std::vector<MachineInstruction>& block, const Target& target) {
    const auto n = static_cast<std::size_t>(target.registers);
    std::vector<int> uses(n, 0);
    const auto count = [&](int r) {
        if (r >= 0) ++uses[static_cast<std::size_t>(r)];
    };
    for (const MachineInstruction& m : block) {
        // Three operands: only the last one costs a byte where its number is above 7.
        if (!target.threeOperands() || !isStore(m.op)) count(m.src);
        if (!target.threeOperands()) count(m.dst);
    }
    std::vector<std::size_t> order(n);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return uses[a] > uses[b]; });
    std::vector<int> number(n, 0);
    for (std::size_t i = 0; i < n; ++i) number[order[i]] = static_cast<int>(i);
    for (MachineInstruction& m : block)
        for (int* r : {&m.dst, &m.first, &m.src})
            if (*r >= 0) *r = number[static_cast<std::size_t>(*r)];
}

}  // namespace orvgen::kernelgen
