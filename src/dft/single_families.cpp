// The complex binary32 kernels: lengths 2 to 5 on scalars, from 6 up in lanes.
#include "bluestein.h"
#include "butterflies.h"
#include "families.h"
#include "joins.h"
#include "rader.h"
#include "single_kernels.h"
#include "single_table.h"

namespace orvgen::dft {

using kernelgen::Alignment;
using kernelgen::Arithmetic;
using kernelgen::Family;
using kernelgen::Kernel;
using kernelgen::ScaleRule;

Graph scalarFlow(Direction direction, std::size_t length) {
    Graph graph(Arithmetic::Single);
    std::vector<Complex<Value>> x;
    for (int n = 0; n < static_cast<int>(length); ++n)
        x.push_back({Value(graph, graph.input(2 * n)), Value(graph, graph.input(2 * n + 1))});
    const std::vector<Complex<Value>> y = scalarTransform(direction, x);
    for (std::size_t k = 0; k < length; ++k) {
        graph.output(static_cast<int>(2 * k), scaled(y[k].re).id());
        graph.output(static_cast<int>(2 * k + 1), scaled(y[k].im).id());
    }
    return graph;
}

Graph laneFlow(Direction direction, std::size_t length) {
    Graph graph(Arithmetic::SingleLanes);
    Lanes lanes(graph);
    if (hasBluestein(length))
        lanes.store(bluestein(lanes, direction, lanes.load(length + 1)));
    else if (hasRader(length))
        lanes.store(rader(lanes, direction, lanes.load(length)));
    else
        lanes.store(
            Joins(lanes, direction).run(singleDecomposition(length), {lanes.load(length)})[0]);
    graph.removeDeadNodes();
    return graph;
}

namespace {

// The lengths whose kernels touch src and dst by 8-byte halves only: the Rader primes, and those
// whose elements hardly ever come as neighbours.
bool touchesHalvesOnly(int length) {
    switch (length) {
        case 6:
        case 10:
        case 12:
        case 15:
        case 20:
            return true;
        case 47:
        case 59:
            return false;
        default:
            break;
    }
    for (int d = 2; d * d <= length; ++d)
        if (length % d == 0) return false;
    return length > 5;
}

// The short lengths that the sixteen registers hold all values of.
bool fitsRegisters(int length) {
    return length <= 9 ? length != 5 : length == 12 || length == 13 || length == 16 || length == 17;
}

std::string method(std::size_t length) {
    if (hasRader(length)) return "Rader, cycle " + raderCycle(length)->stages();
    if (hasBluestein(length)) return "Bluestein, " + bluesteinForward(length)->stages();
    return singleDecomposition(length)->stages();
}

Kernel kernel(const std::string& family, Direction direction, int length) {
    const auto n = static_cast<std::size_t>(length);
    const bool scalar = length <= 5;
    return {kernelgen::memberName(family, length),
            length,
            method(n),
            direction == Direction::Forward ? ScaleRule::ForwardByN : ScaleRule::InverseByN,
            scalar ? Alignment::Any : Alignment::Twin,
            touchesHalvesOnly(length),
            true,
            scalar ? scalarFlow(direction, n) : laneFlow(direction, n),
            fitsRegisters(length)};
}

Family family(const std::string& name, Direction direction, const std::vector<int>& lengths) {
    return {name, lengths, [name, direction](int n) { return kernel(name, direction, n); }};
}

}  // namespace

std::vector<Family> complexSingleFamilies() {
    std::vector<int> lengths;
    for (int n = 2; n <= 64; ++n) lengths.push_back(n);
    return {family("orvgDFTFwd_CToC_32fc", Direction::Forward, lengths),
            family("orvgDFTInv_CToC_32fc", Direction::Inverse, lengths)};
}

}  // namespace orvgen::dft
