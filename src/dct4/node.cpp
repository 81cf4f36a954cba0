// SPDX-License-Identifier: MIT
#include "dct4/node.h"

namespace orvgen::dct4 {

extern "C" {

EnvList* EnvList___init__(EnvList* list, Arena* arena) {
    list->value = nullptr;
    list->next = nullptr;
    list->arena = arena;
    return list;
}

NodeHeader* EnvList_add(EnvList* list, NodeHeader* value) {
    EnvList* last = list;
    while (last->next != nullptr) {
        last = last->next;
    }
    if (last->value != nullptr) {
        void* memory = orvgArenaMalloc(last->arena, sizeof(EnvList));
        last->next = EnvList___init__(static_cast<EnvList*>(memory), last->arena);
        last = last->next;
    }
    last->value = value;
    return value;
}

NodeHeader* EnvList_get(const EnvList* list, std::int32_t index) {
    if (index < 0) {
        return nullptr;
    }
    for (; index > 0; --index) {
        if (list == nullptr) {
            return nullptr;
        }
        list = list->next;
    }
    return list->value;
}

void EnvList___del__(EnvList* list) {
    EnvList* node = list->next;
    while (node != nullptr) {
        EnvList* next = node->next;
        orvgArenaFree(list->arena, node, sizeof(EnvList));
        node = next;
    }
}

void EnvList_freeChildren(EnvList* list) {
    for (EnvList* node = list; node != nullptr; node = node->next) {
        NodeHeader* value = node->value;
        if (value != nullptr) {
            value->destructor(value);
            orvgArenaFree(node->arena, value, static_cast<std::uint64_t>(value->size));
        }
    }
}

std::int32_t EnvList_add_mem(std::int32_t count) {
    return static_cast<std::int32_t>(orvgAlignSize32Bytes(sizeof(EnvList))) * count;
}

double owng_TFunc_IIIR_at(const NodeHeader* object, std::int32_t i, std::int32_t j,
                          std::int32_t k) {
    return object->at(object, i, j, k);
}
}

EnvList* makeList(Arena* arena) {
    return EnvList___init__(static_cast<EnvList*>(orvgArenaMalloc(arena, sizeof(EnvList))), arena);
}

void dropList(Arena* arena, EnvList* list) {
    EnvList___del__(list);
    orvgArenaFree(arena, list, sizeof(EnvList));
}

void dropChildren(Arena* arena, EnvList* children) {
    EnvList_freeChildren(children);
    dropList(arena, children);
}

}  // namespace orvgen::dct4
