// Complex transforms in lanes: a real transform of the real parts and one of the imaginary parts,
// Y[k] = A[k] + i B[k], Y[n-k] = conj A[k] + i conj B[k].
#pragma once

#include "flow.h"

namespace orvgen::flows {

template <class V>
Bins<V> complexByLanes(Flow<V>& flow, const PlanPtr& plan, long e, const Bins<V>& z) {
    const int n = static_cast<int>(z.size());
    std::vector<V> re, im;
    for (const Bin<V>& bin : z) {
        re.push_back(bin.re.formed());
        im.push_back(bin.im.formed());
    }
    Bins<V> a, b;
    {
        const typename Flow<V>::Scope scope(flow, "re");
        a = flow.real(plan, e, re);
    }
    {
        const typename Flow<V>::Scope scope(flow, "im");
        b = flow.real(plan, e, im);
    }
    Bins<V> y(z.size());
    for (int k = 0; 2 * k <= n; ++k) {
        const auto i = static_cast<std::size_t>(k);
        if (k == 0 || 2 * k == n) {
            y[i] = {a[i].re, b[i].re};
            continue;
        }
        const V ar = narrow(a[i].re), ai = narrow(a[i].im);
        const V br = narrow(b[i].re), bi = narrow(b[i].im);
        y[i] = {ar - bi, ai + br};
        y[static_cast<std::size_t>(n - k)] = {ar + bi, br - ai};
    }
    return y;
}

}  // namespace orvgen::flows
