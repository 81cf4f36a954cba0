// SPDX-License-Identifier: MIT
#include "support/tester.h"

#include <xmmintrin.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <type_traits>

#include "support/control_word.h"
#include "support/guarded.h"

namespace orvgen::test {
namespace {

constexpr std::int32_t flags[] = {8, 1, 2, 4};
constexpr unsigned statusBits = 0x3f;
constexpr unsigned inexact = 0x20;

struct Mode {
    const char* name;
    unsigned control;
};
// All exceptions masked; rounding in bits 13 and 14; flush to zero, denormals are zero.
constexpr Mode modes[] = {{"nearest", 0x1f80},
                          {"down", 0x3f80},
                          {"up", 0x5f80},
                          {"to zero", 0x7f80},
                          {"flushing denormals", 0x9fc0}};

template <class Real>
using BitsOf = std::conditional_t<sizeof(Real) == 4, std::uint32_t, std::uint64_t>;

template <class Real>
bool sameBits(Real a, Real b) {
    return std::bit_cast<BitsOf<Real>>(a) == std::bit_cast<BitsOf<Real>>(b);
}

template <class Real>
std::string show(Real value) {
    char text[80];
    std::snprintf(text, sizeof text, "%.*g (0x%0*llx)", sizeof(Real) == 4 ? 9 : 17,
                  static_cast<double>(value), static_cast<int>(2 * sizeof(Real)),
                  static_cast<unsigned long long>(std::bit_cast<BitsOf<Real>>(value)));
    return text;
}

// How a call places its buffers: offsets in bytes from 64-byte boundaries.
struct Form {
    std::string name;
    std::size_t srcOffset = 0;
    std::size_t dstOffset = 0;
    bool shared = false;  // dst lies in src's memory, `distance` elements behind src
    std::ptrdiff_t distance = 0;
    int variant = -1;  // -1: the call itself
};

template <class Real>
class Run {
  public:
    explicit Run(const KernelTester<Real>& kernel)
        : k(kernel),
          longest(std::max(k.srcCount + k.srcBeyond, k.dstCount)),
          srcArea(margin + 64 + 2 * longest * sizeof(Real) + margin),
          dstArea(margin + 64 + longest * sizeof(Real) + margin) {}

    std::vector<std::string> run() {
        if (!k.call || k.srcCount == 0 || k.dstCount == 0) {
            throw std::runtime_error("tester of " + k.name + " not set up");
        }
        std::vector<Input<Real>> inputs = makeInputs<Real>(k.srcCount, k.impulses);
        inputs.insert(inputs.end(), k.moreInputs.begin(), k.moreInputs.end());
        refusals(inputs[0]);
        if (!texts.empty()) return texts;
        makeForms();
        for (const Mode& mode : modes) {
            for (std::size_t i = 0; i < inputs.size(); ++i) {
                for (std::size_t f = 0; f < 4; ++f) {
                    one(mode, inputs[i], flags[f], &mode == modes && i % 4 == f);
                    if (texts.size() >= 6) return texts;
                }
            }
        }
        for (const std::int32_t flag : flags) guards(inputs[0], flag);
        ignored(inputs);
        return texts;
    }

  private:
    static constexpr std::size_t margin = 256;

    const KernelTester<Real>& k;
    std::size_t longest;
    std::vector<std::uint8_t> srcArea, dstArea, before;
    std::vector<Form> forms;
    std::vector<std::string> texts;
    std::size_t next = 0;  // rotates the forms
    unsigned calls = 0;

    void complain(const std::string& what) { texts.push_back(k.name + ": " + what); }

    static std::uint8_t* aligned(std::vector<std::uint8_t>& area) {
        const auto a = reinterpret_cast<std::uintptr_t>(area.data()) + margin;
        return area.data() + margin + (64 - a % 64) % 64;
    }

    void makeForms() {
        const auto offset = [](std::size_t o) { return std::to_string(o); };
        for (std::size_t s = 0; s <= 16; s += sizeof(Real)) {
            for (std::size_t d = 0; d <= 16; d += sizeof(Real)) {
                forms.push_back({"src off by " + offset(s) + ", dst by " + offset(d), s, d});
            }
            forms.push_back({"in place off by " + offset(s), s, s, true});
        }
        if (k.overlap) {
            const auto n = static_cast<std::ptrdiff_t>(k.srcCount);
            for (const std::ptrdiff_t d : {std::ptrdiff_t{1}, std::ptrdiff_t{2}, std::ptrdiff_t{4},
                                           n / 2, n / 2 + 1, n - 1}) {
                for (const std::ptrdiff_t sign : {1, -1}) {
                    forms.push_back({"dst " + std::to_string(sign * d) + " reals behind src", 0, 0,
                                     true, sign * d});
                    forms.push_back(
                        {"misaligned, dst " + std::to_string(sign * d) + " reals behind src",
                         sizeof(Real), 0, true, sign * d});
                }
            }
        }
        for (std::size_t v = 0; v < k.variants.size(); ++v) {
            const std::string& name = k.variants[v].first;
            const int number = static_cast<int>(v);
            forms.push_back({name, 0, 0, false, 0, number});
            forms.push_back({name + ", misaligned", sizeof(Real), 8, false, 0, number});
            forms.push_back({name + " in place", 0, 0, true, 0, number});
        }
    }

    const typename KernelTester<Real>::Call& callOf(const Form& form) const {
        return form.variant < 0 ? k.call
                                : k.variants[static_cast<std::size_t>(form.variant)].second;
    }

    // A finite, ever different value for memory that must not matter. Beside ordinary data it is no
    // denormal one, which would raise a flag of its own.
    Real rubbish(bool ordinary) {
        ++calls;
        return static_cast<Real>(ordinary || calls % 7 ? 1e30 : -3e-40) *
               static_cast<Real>(calls % 89 + 1);
    }

    // One call; the result, empty where it was not a proper one.
    std::vector<Real> perform(const Form& form, const Input<Real>& input, std::int32_t flag,
                              const Mode& mode, const std::string& where) {
        const std::size_t srcBytes = k.srcCount * sizeof(Real);
        const std::size_t dstBytes = k.dstCount * sizeof(Real);
        const auto poison = static_cast<int>(++calls % 251 + 1);
        std::memset(srcArea.data(), poison, srcArea.size());
        std::memset(dstArea.data(), poison, dstArea.size());
        std::uint8_t* src = aligned(srcArea) + form.srcOffset;
        std::uint8_t* dst = aligned(dstArea) + form.dstOffset;
        if (form.shared) {
            const auto shift = static_cast<std::ptrdiff_t>(sizeof(Real)) * form.distance;
            // Room on the side to which dst is shifted.
            if (shift < 0) src += (static_cast<std::size_t>(-shift) + 63) / 64 * 64;
            dst = src + shift;
        }
        std::memcpy(src, input.values.data(), srcBytes);
        for (std::size_t i = 0; i < k.srcBeyond; ++i) {
            const Real r = rubbish(input.ordinary);
            std::memcpy(src + srcBytes + i * sizeof(Real), &r, sizeof(Real));
        }
        std::vector<std::uint8_t>& written = form.shared ? srcArea : dstArea;
        before = written;
        const std::vector<std::uint8_t> srcBefore =
            form.shared ? std::vector<std::uint8_t>() : srcArea;
        std::int32_t status = 0;
        unsigned after = 0;
        const std::string fault = catchFault(
            [&] {
                const ControlWord word(mode.control);
                status = callOf(form)(reinterpret_cast<const Real*>(src),
                                      reinterpret_cast<Real*>(dst), flag);
                after = _mm_getcsr();
            },
            src);
        if (!fault.empty()) {
            _mm_setcsr(modes[0].control);
            complain(where + ": " + fault + " of src");
            return {};
        }
        if (status != 0) complain(where + ": status " + std::to_string(status));
        if ((after & ~statusBits) != mode.control) complain(where + ": control word changed");
        if (input.ordinary && !k.raisesFlagsFreely && (after & statusBits & ~inexact) != 0) {
            complain(where + ": ordinary data raised exception flags " +
                     std::to_string(after & statusBits));
        }
        if (!form.shared && srcArea != srcBefore) complain(where + ": src changed");
        const auto at = static_cast<std::size_t>(dst - written.data());
        const auto tail = static_cast<std::ptrdiff_t>(at + dstBytes);
        if (!std::equal(written.begin(), written.begin() + static_cast<std::ptrdiff_t>(at),
                        before.begin()) ||
            !std::equal(written.begin() + tail, written.end(), before.begin() + tail)) {
            complain(where + ": bytes around dst changed");
        }
        std::vector<Real> result(k.dstCount);
        std::memcpy(result.data(), dst, dstBytes);
        return texts.empty() ? result : std::vector<Real>();
    }

    void compare(const std::vector<Real>& expected, const std::vector<Real>& found, bool anyNan,
                 const std::string& where) {
        if (found.empty()) return;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            if (sameBits(expected[i], found[i])) continue;
            if (anyNan && std::isnan(expected[i]) && std::isnan(found[i])) continue;
            complain(where + ", element " + std::to_string(i) + ": expected " + show(expected[i]) +
                     ", found " + show(found[i]));
            return;
        }
    }

    void one(const Mode& mode, const Input<Real>& input, std::int32_t flag, bool allForms) {
        const std::string where = input.name + ", flag " + std::to_string(flag) + ", " + mode.name;
        const std::vector<Real> base = perform(forms[0], input, flag, mode, where);
        if (base.empty()) return;
        if (k.reference) {
            std::vector<Real> expected(k.dstCount);
            {
                const ControlWord word(mode.control);
                k.reference(input.values.data(), expected.data(), flag);
            }
            compare(expected, base, true, where + ", against the reference");
        }
        const std::size_t count =
            allForms ? forms.size() - 1 : std::min<std::size_t>(3, forms.size() - 1);
        for (std::size_t i = 0; i < count && texts.empty(); ++i) {
            next = next % (forms.size() - 1) + 1;
            const Form& form = forms[next];
            const std::string here = where + ", " + form.name;
            compare(base, perform(form, input, flag, mode, here), false, here);
        }
    }

    // Null pointers and flags: the status, and nothing written.
    void refusals(const Input<Real>& input) {
        std::vector<std::pair<std::string, typename KernelTester<Real>::Call>> all = k.variants;
        all.insert(all.begin(), {"", k.call});
        for (const auto& [label, function] : all) {
            for (const std::size_t offset : {std::size_t{0}, sizeof(Real), std::size_t{8}}) {
                for (int nulls = 0; nulls < 4; ++nulls) {
                    for (const std::int32_t flag : {8, 1, 0, 3, 5, 6, 7, 9, 12, 16, -1, 0x108}) {
                        const bool good = flag == 8 || flag == 1;
                        if (nulls == 0 && good) continue;
                        refusal(label, function, input, offset, nulls, flag);
                        if (texts.size() >= 6) return;
                    }
                }
            }
        }
    }

    void refusal(const std::string& label, const typename KernelTester<Real>::Call& function,
                 const Input<Real>& input, std::size_t offset, int nulls, std::int32_t flag) {
        const std::string where = label + (label.empty() ? "" : ", ") + "off by " +
                                  std::to_string(offset) + (nulls & 1 ? ", src null" : "") +
                                  (nulls & 2 ? ", dst null" : "") + ", flag " +
                                  std::to_string(flag);
        std::memset(dstArea.data(), static_cast<int>(++calls % 251), dstArea.size());
        std::uint8_t* src = aligned(srcArea) + offset;
        std::uint8_t* dst = aligned(dstArea) + offset;
        std::memcpy(src, input.values.data(), k.srcCount * sizeof(Real));
        before = dstArea;
        std::int32_t status = 0;
        const std::string fault = catchFault(
            [&] {
                status = function(nulls & 1 ? nullptr : reinterpret_cast<const Real*>(src),
                                  nulls & 2 ? nullptr : reinterpret_cast<Real*>(dst), flag);
            },
            src);
        const std::int32_t expected = nulls ? -8 : -16;
        if (!fault.empty()) {
            complain(where + ": " + fault);
        } else if (status != expected) {
            complain(where + ": status " + std::to_string(status) + " for " +
                     std::to_string(expected));
        } else if (dstArea != before) {
            complain(where + ": dst changed");
        }
    }

    // Buffers flush with the guard pages; src cannot be written.
    void guards(const Input<Real>& input, std::int32_t flag) {
        const std::size_t srcBytes = (k.srcCount + k.srcBeyond) * sizeof(Real);
        const std::size_t dstBytes = k.dstCount * sizeof(Real);
        GuardedMemory srcMemory(srcBytes + 64), dstMemory(dstBytes + 64);
        std::vector<Real> expected;
        for (const std::size_t back : {std::size_t{0}, std::size_t{1}, std::size_t{2}}) {
            for (const bool atEnd : {true, false}) {
                // Flush; the next 16-byte boundary; one element further.
                const auto place = [&](const GuardedMemory& m, std::size_t bytes) {
                    if (!atEnd) return m.data() + (back == 1 ? 0 : back / 2 * sizeof(Real));
                    const std::size_t gap = (m.size() - bytes) % 16;
                    return m.end() - bytes - (back == 1 ? gap : back / 2 * sizeof(Real));
                };
                srcMemory.setReadOnly(false);
                std::memset(dstMemory.data(), static_cast<int>(++calls % 251), dstMemory.size());
                std::uint8_t* src = place(srcMemory, srcBytes);
                std::uint8_t* dst = place(dstMemory, dstBytes);
                std::memset(src, 0, srcBytes);
                std::memcpy(src, input.values.data(), k.srcCount * sizeof(Real));
                srcMemory.setReadOnly(true);
                const std::string where = std::string("guard page ") +
                                          (atEnd ? "behind" : "before") + ", flag " +
                                          std::to_string(flag);
                const std::string fault = catchFault(
                    [&] {
                        k.call(reinterpret_cast<const Real*>(src), reinterpret_cast<Real*>(dst),
                               flag);
                    },
                    src);
                if (!fault.empty()) {
                    complain(where + ": " + fault + " of src");
                    return;
                }
                std::vector<Real> result(k.dstCount);
                std::memcpy(result.data(), dst, dstBytes);
                if (expected.empty()) expected = result;
                compare(expected, result, false, where);
            }
        }
    }

    // Whatever stands at positions that are never read changes nothing.
    void ignored(const std::vector<Input<Real>>& inputs) {
        if (k.neverRead.empty()) return;
        const Real list[] = {std::numeric_limits<Real>::quiet_NaN(),
                             std::numeric_limits<Real>::infinity(), Real{-0.0}, Real{1e30f}};
        for (const Input<Real>& input : inputs) {
            Input<Real> plain = input;
            for (const std::size_t i : k.neverRead) plain.values[i] = 0;
            const std::vector<Real> expected = perform(forms[0], plain, 8, modes[0], input.name);
            if (expected.empty()) return;
            for (const Real value : list) {
                for (const std::size_t i : k.neverRead) plain.values[i] = value;
                const std::string where =
                    input.name + ", " + show(value) + " where nothing is read";
                plain.ordinary = false;
                compare(expected, perform(forms[0], plain, 8, modes[0], where), false, where);
            }
        }
    }
};

}  // namespace

template <class Real>
std::vector<std::string> KernelTester<Real>::complaints() const {
    return Run<Real>(*this).run();
}

template <class Real>
std::string KernelTester<Real>::report() const {
    std::string text;
    for (const std::string& s : complaints()) text += s + "\n";
    return text;
}

template class KernelTester<float>;
template class KernelTester<double>;

}  // namespace orvgen::test
