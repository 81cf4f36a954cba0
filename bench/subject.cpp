// SPDX-License-Identifier: MIT
#include "subject.h"

#include <cstdlib>
#include <stdexcept>

namespace orvgen::bench {
namespace {

Transform kindOf(const FamilyInfo& family) {
    switch (family.transform) {
        case orvgen::Transform::Hartley:
            return Transform::hartley;
        case orvgen::Transform::WalshHadamard:
            return Transform::wht;
        case orvgen::Transform::Dct4:
            return Transform::dct4;
        default:
            if (family.isComplex()) return Transform::complexDft;
            return family.direction == Direction::Forward ? Transform::realForward
                                                          : Transform::realInverse;
    }
}

Problem problemOf(const FamilyInfo& family, int number) {
    const auto bytes = [&](int reals) {
        return static_cast<std::size_t>(reals) * static_cast<std::size_t>(family.realBytes());
    };
    return {.transform = kindOf(family),
            .inverse = family.direction == Direction::Inverse,
            .wide = !family.isSingle(),
            .length = family.points(number),
            .srcBytes = bytes(family.srcReals(number)),
            .dstBytes = bytes(family.dstReals(number))};
}

template <class Call>
void add(std::vector<Subject>& list, const std::string& name, const Member& member, Call call) {
    const Problem problem = problemOf(*member.family, member.number);
    list.push_back({name, member, problem, makeLoop(problem, call)});
}

std::shared_ptr<std::uint8_t> buffer(int bytes) {
    const auto size = (static_cast<std::size_t>(bytes) + 127) / 64 * 64;
    return {static_cast<std::uint8_t*>(std::aligned_alloc(64, size)), std::free};
}

template <class T>
void addLength(std::vector<Subject>& list, const KernelLibrary& library, const Member& member) {
    const std::string name = member.name();
    auto* function = library.function<OrvStatus(const T*, T*, std::int32_t)>(name);
    add(list, name, member, [function](const void* s, void* d) {
        function(static_cast<const T*>(s), static_cast<T*>(d), orvScaleBySqrtN);
    });
}

// The functions beside the transforms: GetBufferSize and the like.
std::string besides(const FamilyInfo& family, const char* what) {
    return "orvg" + std::string(family.name) + what + "_" + std::string(family.element);
}

template <class T>
void addOrder(std::vector<Subject>& list, const KernelLibrary& library, const Member& member) {
    std::int32_t bytes = 0;
    library.function<OrvStatus(std::int32_t, std::int32_t*)>(
        besides(*member.family, "GetBufferSize"))(member.number, &bytes);
    const auto work = buffer(bytes);
    const std::string name = member.name();
    auto* function = library.function<OrvStatus(const T*, T*, std::int32_t, std::uint8_t*)>(name);
    add(list, name, member, [function, work](const void* s, void* d) {
        function(static_cast<const T*>(s), static_cast<T*>(d), orvScaleBySqrtN, work.get());
    });
}

template <class T, class Spec>
void addPlan(std::vector<Subject>& list, const KernelLibrary& library, const Member& member) {
    const FamilyInfo& family = *member.family;
    const std::string run = nameOf(family);
    Spec* made = nullptr;
    auto* init = library.function<OrvStatus(Spec**, std::int32_t)>(besides(family, "InitAlloc"));
    if (init(&made, member.number) != orvOk) throw std::runtime_error("no plan of " + run);
    const std::shared_ptr<Spec> plan(made,
                                     library.function<OrvStatus(Spec*)>(besides(family, "Free")));
    auto* function = library.function<OrvStatus(const T*, T*, const Spec*)>(run);
    add(list, run + " of " + std::to_string(member.number), member,
        [function, plan](const void* s, void* d) {
            function(static_cast<const T*>(s), static_cast<T*>(d), plan.get());
        });
}

}  // namespace

constexpr int kLongestPlan = 8192;

#define ADD_LENGTHS(NAME, T, LIST)                  \
    for (const int n : familyOf(#NAME, #T).numbers) \
        addLength<Orv##T>(list, library, {&familyOf(#NAME, #T), n});
#define ADD_ORDERS(NAME, T, LIST)                   \
    for (const int k : familyOf(#NAME, #T).numbers) \
        addOrder<Orv##T>(list, library, {&familyOf(#NAME, #T), k});
#define ADD_PLANS(NAME, T)                          \
    for (const int n : familyOf(#NAME, #T).numbers) \
        if (n <= kLongestPlan)                      \
            addPlan<Orv##T, Orv##NAME##Spec_##T>(list, library, {&familyOf(#NAME, #T), n});

std::vector<Subject> allSubjects(const KernelLibrary& library) {
    std::vector<Subject> list;
    ORVGEN_LENGTH_FAMILIES(ADD_LENGTHS)
    ORVGEN_ORDER_FAMILIES(ADD_ORDERS)
    ORVGEN_DCT4_FAMILIES(ADD_PLANS)
    return list;
}

}  // namespace orvgen::bench
