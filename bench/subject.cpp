// SPDX-License-Identifier: MIT
#include "subject.h"

#include <cstdlib>
#include <stdexcept>
#include <type_traits>

#include "orvgen.h"

namespace orvgen::bench {
namespace {

// Bytes of a real, or of each part of a complex element.
template <class T>
constexpr std::size_t realBytes() {
    if constexpr (std::is_floating_point_v<T>) {
        return sizeof(T);
    } else {
        return sizeof(T::re);
    }
}

// What a family of fixed lengths computes, by its name in the lists.
Problem problemOf(const std::string& name, int n, std::size_t real) {
    Problem p;
    p.length = n;
    p.wide = real == sizeof(double);
    const auto size = static_cast<std::size_t>(n) * real;
    const auto packed =
        size + (name.find("CCS") == std::string::npos ? 0U : (n % 2 ? 1U : 2U)) * real;
    p.srcBytes = p.dstBytes = size;
    if (name == "DFTFwd_CToC" || name == "DFTInv_CToC") {
        p.srcBytes = p.dstBytes = 2 * size;
        p.inverse = name == "DFTInv_CToC";
    } else if (name.starts_with("DFTFwd_RTo")) {
        p.transform = Transform::realForward;
        p.dstBytes = packed;
    } else if (name.starts_with("DFTInv_")) {
        p.transform = Transform::realInverse;
        p.inverse = true;
        p.srcBytes = packed;
    } else {
        p.transform = Transform::hartley;
    }
    return p;
}

std::string formatOf(const std::string& name) {
    for (const char* format : {"CCS", "Pack", "Perm"}) {
        if (name.find(format) != std::string::npos) return format;
    }
    return "";
}

template <class Call>
void add(std::vector<Subject>& list, const std::string& name, const std::string& family,
         const std::string& format, const Problem& problem, Call call) {
    list.push_back({name, family, format, problem, makeLoop(problem, call)});
}

// Of the transforms on N reals.
Problem realProblem(Transform transform, int n, std::size_t real) {
    Problem p;
    p.transform = transform;
    p.wide = real == sizeof(double);
    p.length = n;
    p.srcBytes = p.dstBytes = static_cast<std::size_t>(n) * real;
    return p;
}

std::shared_ptr<std::uint8_t> buffer(int bytes) {
    const auto size = (static_cast<std::size_t>(bytes) + 127) / 64 * 64;
    return {static_cast<std::uint8_t*>(std::aligned_alloc(64, size)), std::free};
}

template <class T>
void addLength(std::vector<Subject>& list, const KernelLibrary& library, const std::string& name,
               int n, const std::string& type) {
    const std::string kernel = "orvg" + name + "_" + std::to_string(n) + "_" + type;
    auto* function = library.function<OrvStatus(const T*, T*, std::int32_t)>(kernel);
    add(list, kernel, name + "_" + type, formatOf(name), problemOf(name, n, realBytes<T>()),
        [function](const void* s, void* d) {
            function(static_cast<const T*>(s), static_cast<T*>(d), orvScaleBySqrtN);
        });
}

template <class T>
void addOrder(std::vector<Subject>& list, const KernelLibrary& library, const std::string& name,
              int order, const std::string& type) {
    std::int32_t bytes = 0;
    library.function<OrvStatus(std::int32_t, std::int32_t*)>("orvg" + name + "GetBufferSize_" +
                                                             type)(order, &bytes);
    const auto work = buffer(bytes);
    const std::string kernel = "orvg" + name + "_" + std::to_string(order) + "_" + type;
    auto* function = library.function<OrvStatus(const T*, T*, std::int32_t, std::uint8_t*)>(kernel);
    add(list, kernel, name + "_" + type, "",
        realProblem(Transform::wht, 1 << order, realBytes<T>()),
        [function, work](const void* s, void* d) {
            function(static_cast<const T*>(s), static_cast<T*>(d), orvScaleBySqrtN, work.get());
        });
}

template <class T, class Spec>
void addPlan(std::vector<Subject>& list, const KernelLibrary& library, const std::string& name,
             int n, const std::string& type) {
    const std::string run = "orvg" + name + "_" + type;
    Spec* made = nullptr;
    auto* init =
        library.function<OrvStatus(Spec**, std::int32_t)>("orvg" + name + "InitAlloc_" + type);
    if (init(&made, n) != orvOk) throw std::runtime_error("no plan of " + run);
    const std::shared_ptr<Spec> plan(
        made, library.function<OrvStatus(Spec*)>("orvg" + name + "Free_" + type));
    auto* function = library.function<OrvStatus(const T*, T*, const Spec*)>(run);
    add(list, run + " of " + std::to_string(n), name + "_" + type, "",
        realProblem(Transform::dct4, n, realBytes<T>()), [function, plan](const void* s, void* d) {
            function(static_cast<const T*>(s), static_cast<T*>(d), plan.get());
        });
}

}  // namespace

#define ADD_LENGTH(NAME, N, T) addLength<Orv##T>(list, library, #NAME, N, #T);
#define ADD_LENGTHS(NAME, T, LIST) LIST(ADD_LENGTH, NAME, T)
#define ADD_ORDER(NAME, K, T) addOrder<Orv##T>(list, library, #NAME, K, #T);
#define ADD_ORDERS(NAME, T, LIST) LIST(ADD_ORDER, NAME, T)
#define ADD_PLANS(NAME, T)             \
    for (int n = 2; n <= 8192; n *= 2) \
        addPlan<Orv##T, Orv##NAME##Spec_##T>(list, library, #NAME, n, #T);

std::vector<Subject> allSubjects(const KernelLibrary& library) {
    std::vector<Subject> list;
    ORVGEN_LENGTH_FAMILIES(ADD_LENGTHS)
    ORVGEN_ORDER_FAMILIES(ADD_ORDERS)
    ORVGEN_DCT4_FAMILIES(ADD_PLANS)
    return list;
}

}  // namespace orvgen::bench
