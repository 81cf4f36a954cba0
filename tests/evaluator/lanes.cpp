// SPDX-License-Identifier: MIT
#include "evaluator/lanes.h"

#include <algorithm>
#include <cstdlib>
#include <map>

#include "evaluator/vectors.h"

namespace orvgen::test::evaluator {
namespace {

constexpr std::uint8_t kSecond = 16;  // the second source's words begin here

// Where the words of a result come from. Instructions are described for each 16 bytes of a vector,
// or for the whole of it.
class Words {
  public:
    explicit Words(Operation& op) : op_(op), imm_(static_cast<int>(op.immediate)) {
        op.pick.fill(kZeroWord);
    }
    int imm() const { return imm_; }
    int bits(int from, int count) const { return imm_ >> from & ((1 << count) - 1); }
    int words() const { return op_.width / 4; }
    int sourceWords() const { return op_.secondBytes / 4; }
    void set(int to, int from) {
        op_.pick[static_cast<std::size_t>(to)] = static_cast<std::uint8_t>(from);
    }
    void copy(int to, int from, int count) {
        for (int i = 0; i < count; ++i) set(to + i, from + i);
    }
    // fill(first word of the part, its number)
    template <class Fill>
    void eachPart(const Fill& fill) {
        for (int part = 0; 4 * part < words(); ++part) fill(4 * part, part);
    }

  private:
    Operation& op_;
    int imm_;
};

// Words side by side in both sources, from the lower or the upper half of each part.
template <int size, bool upper>
void unpack(Words& w) {
    w.eachPart([&](int b, int) {
        const int from = b + (upper ? 2 : 0);
        for (int i = 0; i < 4; i += size)
            w.copy(b + i, from + i / 2 / size * size + (i / size % 2 != 0 ? kSecond : 0), size);
    });
}
void shufps(Words& w) {
    w.eachPart([&](int b, int) {
        for (int i = 0; i < 4; ++i) w.set(b + i, b + w.bits(2 * i, 2) + (i < 2 ? 0 : kSecond));
    });
}
void shufpd(Words& w) {
    w.eachPart([&](int b, int part) {
        w.copy(b, b + 2 * w.bits(2 * part, 1), 2);
        w.copy(b + 2, b + 2 * w.bits(2 * part + 1, 1) + kSecond, 2);
    });
}
// Half of the parts from each source.
void shuffleParts(Words& w) {
    const int parts = w.words() / 4, bits = parts == 4 ? 2 : 1;
    for (int i = 0; i < parts; ++i)
        w.copy(4 * i, 4 * w.bits(bits * i, bits) + (2 * i < parts ? 0 : kSecond), 4);
}
void permuteHalves(Words& w) {
    for (int i = 0; i < 2; ++i) {
        const int choice = w.bits(4 * i, 4);
        if ((choice & 8) == 0)
            w.copy(4 * i, 4 * (choice & 1) + ((choice & 2) != 0 ? kSecond : 0), 4);
    }
}
void permpd(Words& w) {
    for (int i = 0; i < w.words(); i += 2) w.copy(i, i / 8 * 8 + 2 * w.bits(i % 8, 2), 2);
}
template <int size>
void spread(Words& w) {
    for (int i = 0; i < w.words(); i += size) w.copy(i, 0, size);
}
template <int size>
void insert(Words& w) {
    w.copy(0, 0, w.words());
    w.copy(size * w.bits(0, w.words() / size == 4 ? 2 : 1), kSecond, size);
}
template <int size>
void extract(Words& w) {
    w.copy(0, size * w.bits(0, w.sourceWords() / size == 4 ? 2 : 1), size);
}
// As if the second source stood below the first.
template <int size>
void align(Words& w) {
    const int words = w.words(), by = (w.imm() & (words / size - 1)) * size;
    for (int i = 0; i < words; ++i) w.set(i, i + by < words ? kSecond + i + by : i + by - words);
}
void insertps(Words& w, bool fromMemory) {
    w.copy(0, 0, 4);
    w.set(w.bits(4, 2), kSecond + (fromMemory ? 0 : w.bits(6, 2)));
    for (int i = 0; i < 4; ++i)
        if (w.bits(i, 1) != 0) w.set(i, kZeroWord);
}

// Half of 16 bytes in memory.
template <int half>
void moveHalf(Words& w, bool toMemory) {
    if (toMemory) return w.copy(0, 2 * half, 2);
    w.copy(0, 0, 4);
    w.copy(2 * half, kSecond, 2);
}

void pickWords(State& s, const Operation& op) {
    Vector room, r;
    std::uint32_t all[kZeroWord + 1];
    // A source that there is not is register 0, whose words nobody picks.
    std::memcpy(all, &source(s, op, 1, room), sizeof(Vector));
    std::memcpy(all + kSecond, &source(s, op, 2, room), sizeof(Vector));
    all[kZeroWord] = 0;
    for (std::size_t i = 0; i < r.words.size(); ++i) r.words[i] = all[op.pick[i]];
    put(s, op, r);
}

// The whole, as it stands.
void moveWhole(State& s, const Operation& op) {
    Vector room;
    put(s, op, source(s, op, 1, room));
}
// A short number clears what is behind it.
void moveShort(State& s, const Operation& op) {
    if (op.memoryOperand == 0)
        return copyBytes(memoryOf(s, op), &s.vectors[op.first], op.memoryBytes);
    Vector r = {};
    copyBytes(&r, memoryOf(s, op), op.memoryBytes);
    put(s, op, r);
}
// Between a general register and a vector.
void fromGeneral(State& s, const Operation& op) {
    Vector r = {};
    copyNumber(&r, &s.general[op.first], op.secondBytes);
    put(s, op, r);
}
void toGeneral(State& s, const Operation& op) {
    s.general[op.to] = 0;
    copyNumber(&s.general[op.to], &s.vectors[op.first], op.width);
}
// One number into the first place, or what a mask has instead; the rest is the first source's.
template <int bytes>
void moveFirst(State& s, const Operation& op) {
    const bool isChosen = op.mask == 0 || (s.masks[op.mask] & 1) != 0;
    Vector r = {};
    if (op.memoryOperand == kNone) r = s.vectors[op.first];
    if (isChosen && op.memoryOperand == 1)
        copyBytes(&r, memoryOf(s, op), bytes);
    else if (isChosen)
        copyBytes(&r, &s.vectors[op.second], bytes);
    else if (op.zeroes)
        std::memset(&r, 0, bytes);
    else
        copyBytes(&r, &s.vectors[op.to], bytes);
    put(s, op, r);
}

// By numbers in a vector.
template <int size>
void permute(State& s, const Operation& op) {
    Vector room, r;
    const Vector &index = s.vectors[op.first], &from = source(s, op, 2, room);
    const int count = op.width / 4 / size;
    for (int i = 0; i < count; ++i) {
        const auto to = static_cast<std::size_t>(i * size);
        const std::size_t at = (index.words[to] & static_cast<unsigned>(count - 1)) * size;
        for (std::size_t k = 0; k < size; ++k) r.words[to + k] = from.words[at + k];
    }
    put(s, op, r);
}
// From two vectors, of which the result takes the first one's place.
template <int size>
void permuteTwo(State& s, const Operation& op) {
    Vector room, r;
    const Vector &low = s.vectors[op.to], &index = s.vectors[op.first];
    const Vector& high = source(s, op, 2, room);
    const auto count = static_cast<unsigned>(op.width / 4 / size);
    for (unsigned i = 0; i < count; ++i) {
        const std::uint32_t number = index.words[i * size];
        const Vector& from = (number & count) != 0 ? high : low;
        const std::size_t at = (number & (count - 1)) * size;
        for (std::size_t k = 0; k < size; ++k) r.words[i * size + k] = from.words[at + k];
    }
    put(s, op, r);
}

template <class Combine>
void combine(State& s, const Operation& op, const Combine& of) {
    Vector room, r;
    const Vector &a = source(s, op, 1, room), &b = source(s, op, 2, room);
    for (std::size_t i = 0; 4 * i < op.width; ++i) r.words[i] = of(a.words[i], b.words[i]);
    put(s, op, r);
}
void bitXor(State& s, const Operation& op) {
    combine(s, op, [](std::uint32_t x, std::uint32_t y) { return x ^ y; });
}
template <class Of>
void onLongs(State& s, const Operation& op, const Of& of) {
    Vector room, r;
    std::int64_t x[8], y[8];
    std::memcpy(x, &source(s, op, 1, room), sizeof x);
    if (op.operands == 3) std::memcpy(y, &source(s, op, 2, room), sizeof y);
    for (int i = 0; 8 * i < op.width; ++i) x[i] = of(x[i], y[i]);
    std::memcpy(&r, x, sizeof r);
    put(s, op, r);
}
void minimum(State& s, const Operation& op) {
    onLongs(s, op, [](std::int64_t x, std::int64_t y) { return std::min(x, y); });
}
void maximum(State& s, const Operation& op) {
    onLongs(s, op, [](std::int64_t x, std::int64_t y) { return std::max(x, y); });
}
void magnitude(State& s, const Operation& op) {
    onLongs(s, op, [](std::int64_t x, std::int64_t) { return x < 0 ? -x : x; });
}

void clearUpper(State& s, const Operation&) {
    for (std::size_t i = 0; i < 16; ++i) std::memset(bytesOf(s.vectors[i]) + 16, 0, 48);
}
void setMask(State& s, const Operation& op) { s.masks[op.to] = s.general[op.first] & 0xffff; }

const std::map<std::string_view, void (*)(Words&)> picked = {
    {"alignd", align<1>},
    {"alignq", align<2>},
    {"broadcastf64x4", spread<8>},
    {"broadcasti64x4", spread<8>},
    {"broadcastsd", spread<2>},
    {"broadcastss", spread<1>},
    {"extractf128", extract<4>},
    {"extractf32x4", extract<4>},
    {"extractf64x2", extract<4>},
    {"extractf64x4", extract<8>},
    {"extractps", extract<1>},
    {"insertf128", insert<4>},
    {"insertf32x4", insert<4>},
    {"insertf32x8", insert<8>},
    {"insertf64x2", insert<4>},
    {"insertf64x4", insert<8>},
    {"inserti128", insert<4>},
    {"inserti64x4", insert<8>},
    {"perm2f128", permuteHalves},
    {"shuff64x2", shuffleParts},
    {"shufpd", shufpd},
    {"shufps", shufps},
    {"unpckhpd", unpack<2, true>},
    {"unpckhps", unpack<1, true>},
    {"unpcklpd", unpack<2, false>},
    {"unpcklps", unpack<1, false>},
};
const std::map<std::string_view, Handler> others = {
    {"kmovw", setMask},          {"pabsq", magnitude},
    {"permps", permute<1>},      {"permt2pd", permuteTwo<2>},
    {"permt2ps", permuteTwo<1>}, {"pmaxsq", maximum},
    {"pminsq", minimum},         {"pxor", bitXor},
    {"pxord", bitXor},           {"xorpd", bitXor},
    {"xorps", bitXor},           {"zeroupper", clearUpper},
};
const std::string_view moves[] = {"movapd", "movaps",   "movdqa", "movdqa32", "movdqa64",
                                  "movdqu", "movdqu64", "movupd", "movups"};

// One number, from or to memory, a general register, or another vector.
Handler numberHandler(std::string_view name, Words& words, const Operation& op) {
    const bool isShort = name == "movss" || name == "movd";
    if (!isShort && name != "movsd" && name != "movq") return nullptr;
    if (op.isGeneral(0)) return toGeneral;
    if (op.isGeneral(1)) return fromGeneral;
    if (op.memoryOperand != kNone && op.mask == 0) return moveShort;
    if (op.memoryOperand == 0) return nullptr;
    if (name == "movss") return moveFirst<4>;
    if (name == "movsd") return moveFirst<8>;
    words.copy(0, 0, isShort ? 1 : 2);
    return pickWords;
}

}  // namespace

Handler lanesHandler(std::string_view name, Operation& op) {
    Words words(op);
    if (const Handler handler = numberHandler(name, words, op)) return handler;
    if (op.mask != 0) return nullptr;
    if (const auto it = picked.find(name); it != picked.end()) {
        it->second(words);
        return pickWords;
    }
    if (const auto it = others.find(name); it != others.end()) return it->second;
    if (std::find(std::begin(moves), std::end(moves), name) != std::end(moves)) return moveWhole;
    const bool toMemory = op.memoryOperand == 0;
    if (name == "movlps" || name == "movlpd") return moveHalf<0>(words, toMemory), pickWords;
    if (name == "movhps" || name == "movhpd") return moveHalf<1>(words, toMemory), pickWords;
    if (name == "insertps") return insertps(words, op.memoryOperand == 2), pickWords;
    const bool byImmediate = name == "permpd" && op.operands == 2;
    return byImmediate ? (permpd(words), pickWords) : nullptr;
}

}  // namespace orvgen::test::evaluator
