// SPDX-License-Identifier: MIT
#include "batch/comparison.h"

#include <limits>

namespace orvgen::test::batch {

const char* nameOf(Data data) {
    switch (data) {
        case Data::Ordinary:
            return "ordinary numbers";
        case Data::Exact:
            return "small integers";
        case Data::Denormal:
            return "denormals";
        case Data::Huge:
            return "huge numbers";
        default:
            return "infinities and NaNs";
    }
}

template <class R>
std::vector<R> draw(Data data, std::size_t count, unsigned seed) {
    using Limits = std::numeric_limits<R>;
    std::mt19937 random(seed);
    std::uniform_real_distribution<R> uniform(-1, 1);
    std::uniform_int_distribution<int> small(-3, 3), oneIn40(0, 39);
    std::vector<R> x(count);
    for (R& value : x) {
        switch (data) {
            case Data::Exact:
                value = std::copysign(static_cast<R>(small(random)), uniform(random));
                break;
            case Data::Denormal:
                value = static_cast<R>(small(random)) * Limits::denorm_min() *
                        static_cast<R>(1 << oneIn40(random) % 24);
                break;
            case Data::Huge:
                value = uniform(random) * Limits::max();
                break;
            case Data::Special:
                value = uniform(random);
                if (const int which = oneIn40(random); which == 0)
                    value = Limits::infinity();
                else if (which == 1)
                    value = -Limits::infinity();
                else if (which == 2)
                    value = Limits::quiet_NaN();
                break;
            default:
                value = uniform(random);
                break;
        }
    }
    return x;
}
template std::vector<float> draw(Data, std::size_t, unsigned);
template std::vector<double> draw(Data, std::size_t, unsigned);

Extent Extent::of(std::ptrdiff_t stride, std::ptrdiff_t distance, const Side& side, int points,
                  std::ptrdiff_t count) {
    if (count == 0) return {};
    const std::ptrdiff_t j = (side.elements(points) - 1) * stride, t = (count - 1) * distance;
    const std::ptrdiff_t low = std::min<std::ptrdiff_t>(j, 0) + std::min<std::ptrdiff_t>(t, 0);
    const std::ptrdiff_t high = std::max<std::ptrdiff_t>(j, 0) + std::max<std::ptrdiff_t>(t, 0);
    return {low * side.width, high * side.width + side.width - 1};
}

Extent Extent::both(const Extent& a, const Extent& b) {
    return {std::min(a.first, b.first), std::max(a.last, b.last)};
}

namespace {

// Neither a result of any transform here nor a NaN.
template <class R>
constexpr R untouched = static_cast<R>(-0x1.a5a5a4p-77);

template <class R>
R* place(GuardedMemory& memory, const Extent& extent, Placement placement) {
    R* const begin = reinterpret_cast<R*>(memory.data());
    if (placement == Placement::AtBegin) return begin - extent.first;
    R* const end = reinterpret_cast<R*>(memory.end()) - (placement == Placement::OffByOne ? 1 : 0);
    return end - extent.size() - extent.first;
}

// With a number to spare.
template <class R>
auto allocate(const Extent& extent) {
    return std::make_unique<GuardedMemory>((extent.size() + 1) * sizeof(R));
}

}  // namespace

template <class R>
Comparison<R>::Comparison(const Family<R>& family, int number, const Layout& layout, int most,
                          Data data, std::int32_t flag, std::uint32_t control, unsigned seed)
    : family_(family),
      number_(number),
      points_(family.points(number)),
      layout_(layout),
      flag_(flag),
      control_(control) {
    srcWhole_ = srcExtent(most);
    dstWhole_ = dstExtent(most);
    if (layout.inPlace) srcWhole_ = dstWhole_ = Extent::both(srcWhole_, dstWhole_);
    for (int p = 0; p < family.src.planes; ++p) {
        srcImage_[p] = draw<R>(data, srcWhole_.size(), seed + static_cast<unsigned>(p));
        src_[p] = allocate<R>(srcWhole_);
    }
    for (int p = 0; p < family.dst.planes; ++p) {
        before_[p] = layout.inPlace ? srcImage_[p] : Image(dstWhole_.size(), untouched<R>);
        dst_[p] = allocate<R>(dstWhole_);
    }
    runSingles(most);
    std::copy(std::begin(before_), std::end(before_), std::begin(expected_));
}

template <class R>
Extent Comparison<R>::srcExtent(int count) const {
    return Extent::of(layout_.srcStride, layout_.srcDistance, family_.src, points_, count);
}
template <class R>
Extent Comparison<R>::dstExtent(int count) const {
    return Extent::of(layout_.dstStride, layout_.dstDistance, family_.dst, points_, count);
}

template <class R>
void Comparison<R>::runSingles(int most) {
    const int width = family_.src.width, planes = family_.src.planes;
    const int elements = family_.src.elements(points_);
    const auto reals = static_cast<std::size_t>(2 * points_ + 4);
    for (int t = 0; t < most; ++t) {
        Image x(reals, 0), y(reals, 0);
        for (int j = 0; j < elements; ++j)
            for (int p = 0; p < planes; ++p)
                for (int c = 0; c < width; ++c)
                    x[static_cast<std::size_t>(j * width * planes + p + c)] =
                        at(srcImage_[p], srcWhole_, srcAt(j, t) + c);
        OrvStatus status = orvErrPlan;
        flags_.push_back(flagsOf(
            control_, [&] { status = family_.single(x.data(), y.data(), number_, flag_); }));
        if (status != orvOk) throw std::runtime_error("a single function refuses");
        results_.push_back(std::move(y));
    }
}

template <class R>
std::string Comparison<R>::check(int count, Placement placement) {
    std::uint32_t flags = 0;
    for (int t = 0; t < count; ++t) flags |= flags_[static_cast<std::size_t>(t)];
    for (; expectedCount_ < count; ++expectedCount_) {
        const int t = expectedCount_, width = family_.dst.width, planes = family_.dst.planes;
        const Image& y = results_[static_cast<std::size_t>(t)];
        for (int j = 0; j < family_.dst.elements(points_); ++j)
            for (int p = 0; p < planes; ++p)
                for (int c = 0; c < width; ++c)
                    at(expected_[p], dstWhole_, dstAt(j, t) + c) =
                        y[static_cast<std::size_t>(j * width * planes + p + c)];
    }

    Extent srcPart = srcExtent(count), dstPart = dstExtent(count);
    if (layout_.inPlace) srcPart = dstPart = Extent::both(srcPart, dstPart);
    const auto bytes = [](const Extent& e) { return e.size() * sizeof(R); };
    Place<const R> src{{}, layout_.srcStride, layout_.srcDistance};
    Place<R> dst{{}, layout_.dstStride, layout_.dstDistance};
    for (int p = 0; p < family_.dst.planes; ++p) {
        dst.plane[p] = place<R>(*dst_[p], dstPart, placement);
        std::memcpy(dst.plane[p] + dstPart.first, &at(before_[p], dstWhole_, dstPart.first),
                    bytes(dstPart));
    }
    for (int p = 0; p < family_.src.planes; ++p) {
        R* plane = layout_.inPlace ? dst.plane[p] : place<R>(*src_[p], srcPart, placement);
        if (!layout_.inPlace)
            std::memcpy(plane + srcPart.first, &at(srcImage_[p], srcWhole_, srcPart.first),
                        bytes(srcPart));
        src.plane[p] = plane;
    }

    OrvStatus status = orvErrPlan;
    std::uint32_t found = 0;
    const std::string fault = catchFault(
        [&] {
            found = flagsOf(control_, [&] {
                status = family_.batch(src, dst, number_, static_cast<std::size_t>(count), flag_);
            });
        },
        dst.plane[0]);
    if (!fault.empty()) return fault;
    if (status != orvOk) return "status " + std::to_string(status);
    if (found != flags) return "flags " + std::to_string(found) + " for " + std::to_string(flags);
    for (int p = 0; p < family_.dst.planes; ++p) {
        const std::string text =
            difference(dst.plane[p] + dstPart.first, &at(expected_[p], dstWhole_, dstPart.first),
                       dstPart.size());
        if (!text.empty()) return text;
    }
    for (int p = 0; p < family_.src.planes && !layout_.inPlace; ++p)
        if (std::memcmp(src.plane[p] + srcPart.first, &at(srcImage_[p], srcWhole_, srcPart.first),
                        bytes(srcPart)) != 0)
            return "the source was written";
    return "";
}

template <class R>
std::string Comparison<R>::difference(const R* found, const R* expected, std::size_t size) const {
    if (std::memcmp(found, expected, size * sizeof(R)) == 0) return "";
    for (std::size_t i = 0; i < size; ++i) {
        if (std::isnan(found[i]) && std::isnan(expected[i])) continue;  // whatever the payload
        if (std::memcmp(found + i, expected + i, sizeof(R)) == 0) continue;
        char text[100];
        std::snprintf(text, sizeof text, "number %zu of %zu: %a for %a", i, size,
                      static_cast<double>(found[i]), static_cast<double>(expected[i]));
        return text;
    }
    return "";
}

template class Comparison<float>;
template class Comparison<double>;

}  // namespace orvgen::test::batch
