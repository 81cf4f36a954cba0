// SPDX-License-Identifier: MIT
// The functions of each Walsh-Hadamard order, by the lists of the public header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "frame/names.h"
#include "support/loaded_function.h"

namespace orvgen::test {

template <class T>
struct OrderFunctions {
    using Kernel = OrvStatus(const T*, T*, std::int32_t, std::uint8_t*);
    using ByOrder = OrvStatus(const T*, T*, std::int32_t, std::int32_t, std::uint8_t*);
    using SizeQuery = OrvStatus(std::int32_t, std::int32_t*);

    int order;
    std::string name;
    Kernel* kernel;
    Kernel* twin;  // null: none
    ByOrder* byOrder;
    SizeQuery* bufferSize;

    std::size_t points() const { return std::size_t{1} << order; }
    std::size_t bufferBytes() const {
        std::int32_t bytes = -1;
        bufferSize(order, &bytes);
        return static_cast<std::size_t>(bytes);
    }
};

template <class T>
const std::vector<OrderFunctions<T>>& orderFunctions();

// The twin, where there is one; programs that link the archive ask for none.
#ifdef ORVGEN_TEST_TWINS
#define ORVGEN_TEST_TWIN(NAME, K, T)                                                              \
    !familyOf(#NAME, #T).hasTwin(K) ? nullptr                                                     \
                                    : reinterpret_cast<typename OrderFunctions<Orv##T>::Kernel*>( \
                                          loadedFunction(twinName(familyOf(#NAME, #T), K)))
#else
#define ORVGEN_TEST_TWIN(NAME, K, T) nullptr
#endif
#define ORVGEN_TEST_ROW(NAME, K, T)                                        \
    list.push_back({K, "orvg" #NAME "_" #K "_" #T, orvg##NAME##_##K##_##T, \
                    ORVGEN_TEST_TWIN(NAME, K, T), orvg##NAME##_##T,        \
                    orvg##NAME##GetBufferSize_##T});
#define ORVGEN_TEST_ORDERS(NAME, T, LIST)                                        \
    template <>                                                                  \
    inline const std::vector<OrderFunctions<Orv##T>>& orderFunctions<Orv##T>() { \
        static const auto functions = [] {                                       \
            std::vector<OrderFunctions<Orv##T>> list;                            \
            LIST(ORVGEN_TEST_ROW, NAME, T)                                       \
            return list;                                                         \
        }();                                                                     \
        return functions;                                                        \
    }
ORVGEN_ORDER_FAMILIES(ORVGEN_TEST_ORDERS)
#undef ORVGEN_TEST_ORDERS
#undef ORVGEN_TEST_ROW
#undef ORVGEN_TEST_TWIN

}  // namespace orvgen::test
