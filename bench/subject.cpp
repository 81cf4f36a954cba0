#include "subject.h"

#include <cstdlib>
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
[[maybe_unused]] void add(std::vector<Subject>& list, const std::string& name,
                          const std::string& family, const std::string& format,
                          const Problem& problem, Call call) {
    list.push_back({name, family, format, problem, makeLoop(problem, call)});
}

// Tables of these: compilers take minutes over a function with a thousand calls of templates.
template <class T>
struct Row {
    int length;
    OrvStatus (*function)(const T* src, T* dst, std::int32_t flag);
};

template <class T>
void addLength(std::vector<Subject>& list, const std::string& name, const std::string& type,
               const Row<T>& row) {
    add(list, "orvg" + name + "_" + std::to_string(row.length) + "_" + type, name + "_" + type,
        formatOf(name), problemOf(name, row.length, realBytes<T>()),
        [function = row.function](const void* s, void* d) {
            function(static_cast<const T*>(s), static_cast<T*>(d), orvScaleBySqrtN);
        });
}

// Of the transforms on N reals.
[[maybe_unused]] Problem realProblem(Transform transform, int n, std::size_t real) {
    Problem p;
    p.transform = transform;
    p.wide = real == sizeof(double);
    p.length = n;
    p.srcBytes = p.dstBytes = static_cast<std::size_t>(n) * real;
    return p;
}

[[maybe_unused]] std::shared_ptr<std::uint8_t> buffer(int bytes) {
    const auto size = (static_cast<std::size_t>(bytes) + 127) / 64 * 64;
    return {static_cast<std::uint8_t*>(std::aligned_alloc(64, size)), std::free};
}

}  // namespace

#define LENGTH_ROW(NAME, N, T) {N, orvg##NAME##_##N##_##T},
#define ADD_LENGTHS(NAME, T, LIST)                                         \
    {                                                                      \
        static constexpr Row<Orv##T> rows[] = {LIST(LENGTH_ROW, NAME, T)}; \
        for (const auto& row : rows) addLength(list, #NAME, #T, row);      \
    }

#define ADD_ORDER(NAME, K, T)                                                                  \
    {                                                                                          \
        int32_t bytes = 0;                                                                     \
        orvg##NAME##GetBufferSize_##T(K, &bytes);                                              \
        const auto work = buffer(bytes);                                                       \
        add(list, "orvg" #NAME "_" #K "_" #T, #NAME "_" #T, "",                                \
            realProblem(Transform::wht, 1 << K, realBytes<Orv##T>()),                          \
            [work](const void* s, void* d) {                                                   \
                orvg##NAME##_##K##_##T(static_cast<const Orv##T*>(s), static_cast<Orv##T*>(d), \
                                       orvScaleBySqrtN, work.get());                           \
            });                                                                                \
    }
#define ADD_ORDERS(NAME, T, LIST) LIST(ADD_ORDER, NAME, T)

#define ADD_PLANS(NAME, T)                                                                         \
    for (int n = 2; n <= 8192; n *= 2) {                                                           \
        Orv##NAME##Spec_##T* made = nullptr;                                                       \
        if (orvg##NAME##InitAlloc_##T(&made, n) != orvOk) continue;                                \
        const std::shared_ptr<Orv##NAME##Spec_##T> plan(made, orvg##NAME##Free_##T);               \
        add(list, "orvg" #NAME "_" #T " of " + std::to_string(n), #NAME "_" #T, "",                \
            realProblem(Transform::dct4, n, realBytes<Orv##T>()), [plan](const void* s, void* d) { \
                orvg##NAME##_##T(static_cast<const Orv##T*>(s), static_cast<Orv##T*>(d),           \
                                 plan.get());                                                      \
            });                                                                                    \
    }

std::vector<Subject> allSubjects() {
    std::vector<Subject> list;
    ORVGEN_LENGTH_FAMILIES(ADD_LENGTHS)
    ORVGEN_ORDER_FAMILIES(ADD_ORDERS)
    ORVGEN_DCT4_FAMILIES(ADD_PLANS)
    return list;
}

}  // namespace orvgen::bench
