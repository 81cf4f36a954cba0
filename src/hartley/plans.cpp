#include <algorithm>
#include <iterator>

#include "hartley.h"

namespace orvgen::hartley {

using flows::Carry;
using realdft::Arrangement;
using realdft::PackedFormat;

namespace {

constexpr int kForward[] = {2,  3,  4,  5,  6,  7,  8,  9,  11, 16, 17, 19, 21, 22,
                            24, 26, 29, 38, 39, 41, 47, 49, 50, 52, 57, 59, 61, 63};

// The others run the inverse real flow of their length, but for this order of the factors
struct PlanRow {
    int length;
    const char* plan;
};
constexpr PlanRow kPlans[] = {
    {58, "2x29"},
};

// and for these values that go on unrounded.
constexpr int kOtherCarries[] = {46, 54, 58};
constexpr Carry kCarries[] = {
    {54, "/first0/second1:re"},
    {54, "/first1/second1:re"},
};

bool contains(const int* begin, const int* end, int n) { return std::find(begin, end, n) != end; }

}  // namespace

bool runsForwardFlow(int n) { return contains(std::begin(kForward), std::end(kForward), n); }

Arrangement arrangement(int n) {
    Arrangement a = realdft::inverseArrangement(n, PackedFormat::Pack);
    for (const PlanRow& row : kPlans)
        if (row.length == n) a.plan = flows::parsePlan(row.plan);
    if (contains(std::begin(kOtherCarries), std::end(kOtherCarries), n)) a.carries.clear();
    for (const Carry& c : kCarries)
        if (c.length == n) a.carries.push_back(c.place);
    return a;
}

std::string method(int n) {
    if (runsForwardFlow(n)) return "forward real, " + realdft::forwardMethod(n);
    std::string plan = realdft::inverseMethod(n, PackedFormat::Pack);
    for (const PlanRow& row : kPlans)
        if (row.length == n) plan = row.plan;
    return "inverse real, " + plan;
}

}  // namespace orvgen::hartley
