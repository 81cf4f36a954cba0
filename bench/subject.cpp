#include "subject.h"

#include <cstdlib>

#include "orvgen.h"

namespace orvgen::bench {
namespace {

template <class T>
constexpr std::size_t realBytes = sizeof(T);
template <>
constexpr std::size_t realBytes<Orv32fc> = sizeof(Orv32f);
template <>
constexpr std::size_t realBytes<Orv64fc> = sizeof(Orv64f);

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

[[maybe_unused]] void addLength(std::vector<Subject>& list, const char* name, const char* type,
                                int n, std::size_t real, Loop loop) {
    Subject s;
    s.family = std::string(name) + "_" + type;
    s.name = "orvg" + std::string(name) + "_" + std::to_string(n) + "_" + type;
    s.format = formatOf(name);
    s.problem = problemOf(name, n, real);
    s.loop = std::move(loop);
    list.push_back(std::move(s));
}

[[maybe_unused]] void addOrder(std::vector<Subject>& list, const char* type, int k,
                               std::size_t real, Loop loop) {
    Subject s;
    s.family = std::string("WHT_") + type;
    s.name = "orvgWHT_" + std::to_string(k) + "_" + type;
    s.problem.transform = Transform::wht;
    s.problem.length = 1 << k;
    s.problem.wide = real == sizeof(double);
    s.problem.srcBytes = s.problem.dstBytes = (std::size_t{1} << k) * real;
    s.loop = std::move(loop);
    list.push_back(std::move(s));
}

[[maybe_unused]] std::shared_ptr<std::uint8_t> buffer(int bytes) {
    const auto size = (static_cast<std::size_t>(bytes) + 127) / 64 * 64;
    return {static_cast<std::uint8_t*>(std::aligned_alloc(64, size)), std::free};
}

[[maybe_unused]] void addPlan(std::vector<Subject>& list, const char* type, int n, std::size_t real,
                              Loop loop) {
    Subject s;
    s.family = std::string("DCT4_") + type;
    s.name = "orvgDCT4_" + std::string(type) + " of " + std::to_string(n);
    s.problem.transform = Transform::dct4;
    s.problem.length = n;
    s.problem.wide = real == sizeof(double);
    s.problem.srcBytes = s.problem.dstBytes = static_cast<std::size_t>(n) * real;
    s.loop = std::move(loop);
    list.push_back(std::move(s));
}

}  // namespace

#define ADD_LENGTH(NAME, N, T)                                                                   \
    addLength(list, #NAME, #T, N, realBytes<Orv##T>, makeLoop([](const void* s, void* d) {       \
                  orvg##NAME##_##N##_##T(static_cast<const Orv##T*>(s), static_cast<Orv##T*>(d), \
                                         orvScaleBySqrtN);                                       \
              }));
#define ADD_LENGTHS(NAME, T, LIST) LIST(ADD_LENGTH, NAME, T)

#define ADD_ORDER(NAME, K, T)                                                                      \
    {                                                                                              \
        int32_t bytes = 0;                                                                         \
        orvg##NAME##GetBufferSize_##T(K, &bytes);                                                  \
        const auto work = buffer(bytes);                                                           \
        addOrder(list, #T, K, realBytes<Orv##T>, makeLoop([work](const void* s, void* d) {         \
                     orvg##NAME##_##K##_##T(static_cast<const Orv##T*>(s),                         \
                                            static_cast<Orv##T*>(d), orvScaleBySqrtN, work.get()); \
                 }));                                                                              \
    }
#define ADD_ORDERS(NAME, T, LIST) LIST(ADD_ORDER, NAME, T)

#define ADD_PLANS(NAME, T)                                                                   \
    for (int n = 2; n <= 1024; n *= 2) {                                                     \
        Orv##NAME##Spec_##T* made = nullptr;                                                 \
        if (orvg##NAME##InitAlloc_##T(&made, n) != orvOk) continue;                          \
        const std::shared_ptr<Orv##NAME##Spec_##T> plan(made, orvg##NAME##Free_##T);         \
        addPlan(list, #T, n, realBytes<Orv##T>, makeLoop([plan](const void* s, void* d) {    \
                    orvg##NAME##_##T(static_cast<const Orv##T*>(s), static_cast<Orv##T*>(d), \
                                     plan.get());                                            \
                }));                                                                         \
    }

std::vector<Subject> allSubjects() {
    std::vector<Subject> list;
    ORVGEN_LENGTH_FAMILIES(ADD_LENGTHS)
    ORVGEN_ORDER_FAMILIES(ADD_ORDERS)
    ORVGEN_DCT4_FAMILIES(ADD_PLANS)
    return list;
}

}  // namespace orvgen::bench
