// The order of stages decides the rounding. The composite lengths without a factor from 13 on are
// computed here a second time, from the tables alone and in plain numbers: the joins as they are
// defined, and the butterflies as formulas. The flows give the same bits.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <sstream>

#include "dft/families.h"
#include "kernelgen/evaluate.h"
#include "support/data_table.h"

namespace orvgen {
namespace {

struct Number {
    float re, im;
};
using Numbers = std::vector<Number>;

Number operator+(Number a, Number b) { return {a.re + b.re, a.im + b.im}; }
Number operator-(Number a, Number b) { return {a.re - b.re, a.im - b.im}; }
Number operator*(float c, Number a) { return {c * a.re, c * a.im}; }
Number plusTurned(Number m, Number p) { return {m.re + p.im, m.im - p.re}; }
Number minusTurned(Number m, Number p) { return {m.re - p.im, m.im + p.re}; }

float cosine(std::size_t num, std::size_t den) {
    return static_cast<float>(
        std::cos(2 * M_PIl * static_cast<long double>(num % den) / static_cast<long double>(den)));
}
float sine(std::size_t num, std::size_t den) {
    return static_cast<float>(
        std::sin(2 * M_PIl * static_cast<long double>(num % den) / static_cast<long double>(den)));
}

// The direct form: a sum of sines begins with its first positive term.
float sumOfTerms(const std::vector<float>& c, const std::vector<float>& d) {
    std::size_t first = 0;
    while (first < c.size() && c[first] < 0) ++first;
    if (first == c.size()) first = 0;
    float sum = c[first] * d[first];
    for (std::size_t j = 0; j < c.size(); ++j)
        if (j != first) sum += c[j] * d[j];
    return sum;
}

Numbers direct(const Numbers& z) {
    const std::size_t p = z.size(), h = (p - 1) / 2;
    Numbers s, d, y(p);
    for (std::size_t j = 1; j <= h; ++j) {
        s.push_back(z[j] + z[p - j]);
        d.push_back(z[j] - z[p - j]);
    }
    Number sum = s[0];
    for (std::size_t j = 1; j < h; ++j) sum = sum + s[j];
    y[0] = sum + z[0];
    for (std::size_t k = 1; k <= h; ++k) {
        Number a = z[0];
        std::vector<float> plus, minus, re, im;
        for (std::size_t j = 1; j <= h; ++j) {
            a = a + cosine(j * k, p) * s[j - 1];
            plus.push_back(sine(j * k, p));
            minus.push_back(-plus.back());
            re.push_back(d[j - 1].re);
            im.push_back(d[j - 1].im);
        }
        const Number q{sumOfTerms(plus, im), sumOfTerms(minus, re)};
        y[k] = a + q;
        y[p - k] = a - q;
    }
    return y;
}

Numbers butterfly(const Numbers& z) {
    switch (z.size()) {
        case 2:
            return {z[0] + z[1], z[0] - z[1]};
        case 3: {
            const Number t = z[1] + z[2], d = z[1] - z[2];
            const Number m = z[0] - 0.5F * t, p = sine(1, 6) * d;
            return {z[0] + t, plusTurned(m, p), minusTurned(m, p)};
        }
        case 4: {
            const Number a = z[0] + z[2], b = z[1] + z[3], c = z[0] - z[2], d = z[1] - z[3];
            return {a + b, plusTurned(c, d), a - b, minusTurned(c, d)};
        }
        case 5: {
            const float c1 = cosine(1, 5), c2 = -cosine(2, 5), s1 = sine(1, 5), s2 = sine(2, 5);
            const Number a = z[1] + z[4], d = z[1] - z[4], b = z[3] + z[2], e = z[3] - z[2];
            const Number A1 = (c1 * a + z[0]) - c2 * b, A2 = (z[0] - c2 * a) + c1 * b;
            const Number P1 = s1 * d - s2 * e, P2 = s2 * d + s1 * e;
            return {(a + b) + z[0], plusTurned(A1, P1), plusTurned(A2, P2), minusTurned(A2, P2),
                    minusTurned(A1, P1)};
        }
        default:
            return direct(z);
    }
}

// The stages of a row: radices, and whether twiddles stand before each but the first.
struct Stages {
    std::vector<std::size_t> radices;
    std::vector<bool> twiddled;

    std::size_t length() const {
        std::size_t n = 1;
        for (const std::size_t r : radices) n *= r;
        return n;
    }
    Stages part(std::size_t from, std::size_t to) const {
        Stages s;
        for (std::size_t i = from; i < to; ++i) {
            s.radices.push_back(radices[i]);
            s.twiddled.push_back(twiddled[i]);
        }
        return s;
    }
};

Stages parse(const std::string& text) {
    Stages s;
    std::istringstream words(text);
    bool twiddled = false;
    for (std::string word; words >> word;) {
        if (word == "T") {
            twiddled = true;
            continue;
        }
        s.radices.push_back(std::stoul(word));
        s.twiddled.push_back(twiddled);
        twiddled = false;
    }
    return s;
}

// `first` is the length of the first factor. `step` spreads the columns: c is represented by the
// multiple of it that leaves c modulo M.
Numbers transform(const Stages& s, std::size_t first, std::size_t step, const Numbers& x) {
    if (s.radices.size() == 1) return butterfly(x);
    std::size_t split = 1;
    while (s.part(0, split).length() != first) ++split;
    const Stages left = s.part(0, split), right = s.part(split, s.radices.size());
    const std::size_t R = left.length(), M = right.length(), N = R * M;
    Numbers y(N);
    std::vector<Numbers> u;
    for (std::size_t c = 0; c < M; ++c) {
        std::size_t column = c;
        while (column % step != 0) column += M;
        Numbers z;
        for (std::size_t t = 0; t < R; ++t)
            z.push_back(s.twiddled[split] ? x[(column + M * t) % N] : x[(M * t + R * c) % N]);
        u.push_back(transform(left, left.radices[0], 1, z));
        if (!s.twiddled[split]) continue;
        for (std::size_t k = 0; k < R; ++k) {
            const Number v = u.back()[k];
            const float wr = cosine(column * k, N), wi = -sine(column * k, N);
            if (4 * column * k % N == 0) {  // a quarter turn is exact either way
                const std::size_t quarter = 4 * column * k / N % 4;
                const Number turns[] = {v, {v.im, -v.re}, {-v.re, -v.im}, {-v.im, v.re}};
                u.back()[k] = turns[quarter];
            } else {
                u.back()[k] = {v.re * wr - v.im * wi, v.re * wi + v.im * wr};
            }
        }
    }
    for (std::size_t k1 = 0; k1 < R; ++k1) {
        Numbers z;
        for (std::size_t c = 0; c < M; ++c) z.push_back(u[c][k1]);
        const Numbers out = transform(right, right.radices[0], 1, z);
        for (std::size_t k2 = 0; k2 < M; ++k2) {
            std::size_t k = s.twiddled[split] ? k1 + R * k2 : k1;
            while (!s.twiddled[split] && k % M != k2) k += R;
            y[k] = out[k2];
        }
    }
    return y;
}

TEST(SingleStages, OrderIsThatOfTheTable) {
    const auto forward = dft::complexSingleFamilies()[0];
    int compared = 0;
    for (const auto& row : test::dataTable("complex_f32_composite").rows()) {
        const auto n = static_cast<std::size_t>(row.integer("length"));
        const Stages stages = parse(row.text("stages"));
        if (stages.radices.size() < 2 || *std::ranges::max_element(stages.radices) > 11) continue;
        // The first factor of the top join; of three coprime ones the first two. At 18, 50 and 54
        // the two-point stage stands inside the odd part's: even columns.
        const std::string top = row.text("top");
        std::size_t first = std::stoul(top.substr(top.find(' ') + 1));
        if (n == 30 || n == 42) first *= 2;
        const bool even = n == 18 || n == 50 || n == 54;
        if (even) first = n == 50 ? 10 : n / 3;
        const auto kernel = forward.kernel(static_cast<int>(n));
        std::mt19937 random(static_cast<unsigned>(n));
        std::uniform_real_distribution<float> uniform(-1, 1);
        for (int i = 0; i < 50; ++i) {
            Numbers x(n), y(n);
            for (Number& z : x) z = {uniform(random), uniform(random)};
            kernelgen::evaluate(kernel.flow, x.data(), y.data(), 1.0);
            const Numbers expected = transform(stages, first, even ? 2 : 1, x);
            EXPECT_EQ(std::memcmp(y.data(), expected.data(), n * sizeof(Number)), 0) << n;
        }
        ++compared;
    }
    EXPECT_EQ(compared, 34);
}

}  // namespace
}  // namespace orvgen
