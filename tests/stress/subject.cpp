// SPDX-License-Identifier: MIT
#include "stress/subject.h"

#include <cstdlib>
#include <cstring>
#include <random>

#include "wht/functions.h"

namespace orvgen::test {
namespace {

template <class T>
void addOrders(std::vector<Subject>& list) {
    for (const OrderFunctions<T>& f : orderFunctions<T>()) {
        Subject s;
        s.name = f.name;
        s.number = f.order;
        s.first = kOrders.first;
        s.last = kOrders.last;
        s.kernel = reinterpret_cast<PlainFunction>(f.kernel);
        s.twin = reinterpret_cast<PlainFunction>(f.twin);
        s.byNumber = reinterpret_cast<PlainFunction>(f.byOrder);
        s.single = sizeof(T) == 4;
        s.order = true;
        s.srcBytes = s.dstBytes = f.points() * sizeof(T);
        s.bufferBytes = f.bufferBytes();
        list.push_back(s);
    }
}

std::vector<Subject> makeSubjects() {
    std::vector<Subject> list;
    for (const ListedKernel& k : listedKernels()) {
        Subject s;
        s.name = k.name;
        s.number = k.length;
        s.first = k.info->numbers.first;
        s.last = k.info->numbers.last;
        s.kernel = k.plainKernel;
        s.twin = k.plainTwin;
        s.byNumber = k.plainDispatcher;
        s.single = k.single;
        s.complex = k.complex;
        const std::size_t size = s.realBytes();
        s.srcBytes = k.srcCount * size;
        s.dstBytes = k.dstCount * size;
        s.beyondBytes = k.srcBeyond * size;
        list.push_back(s);
    }
    addOrders<Orv32f>(list);
    addOrders<Orv64f>(list);
    return list;
}

}  // namespace

Arguments Subject::arguments(const void* src, void* dst, std::int32_t flag, void* buffer) const {
    Arguments a;
    a.pointer(0, src);
    a.pointer(1, dst);
    a.integer(2, flag);
    a.pointer(3, buffer);
    return a;
}

Arguments Subject::byNumberArguments(const void* src, void* dst, std::int32_t n, std::int32_t flag,
                                     void* buffer) const {
    Arguments a;
    a.pointer(0, src);
    a.pointer(1, dst);
    a.integer(2, n);
    a.integer(3, flag);
    a.pointer(4, buffer);
    return a;
}

const std::vector<Subject>& subjects() {
    static const std::vector<Subject> list = makeSubjects();
    return list;
}

Block::Block(std::size_t bytes)
    : memory_(static_cast<std::uint8_t*>(std::aligned_alloc(64, (bytes + 64) / 64 * 64)),
              std::free) {}

void fillOrdinary(std::uint8_t* at, std::size_t bytes, bool single, unsigned seed) {
    std::mt19937 engine(seed);
    std::uniform_real_distribution<double> uniform(-1, 1);
    const std::size_t size = single ? 4 : 8;
    for (std::size_t i = 0; i < bytes; i += size) {
        // All bits of the fraction in use, so that sums round.
        const double d = uniform(engine);
        const auto f = static_cast<float>(d);
        std::memcpy(at + i, single ? static_cast<const void*>(&f) : &d, size);
    }
}

}  // namespace orvgen::test
