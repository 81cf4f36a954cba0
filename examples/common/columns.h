// SPDX-License-Identifier: MIT
// The figures of a stream whose length is not known beforehand, in bounded memory: each cell holds
// those of `step` items, and when there are too many cells, neighbours are merged and the step
// doubles.

#ifndef EXAMPLES_COLUMNS_H
#define EXAMPLES_COLUMNS_H

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

// Figure has merge(const Figure&).
template <class Figure>
class Columns {
  public:
    // A long stream ends with `fewest` cells or up to twice as many.
    explicit Columns(std::size_t fewest) : fewest_(fewest) {}

    void add(const Figure& figure) {
        if (count_ % step_ != 0) {
            cells_.back().merge(figure);
        } else {
            if (cells_.size() == 2 * fewest_) halve();
            cells_.push_back(figure);
        }
        ++count_;
    }

    std::size_t count() const { return count_; }  // items

    // The figures of the items from the one that `first` lies in to the one that `last` ends: whole
    // cells, at least one. There must be items.
    Figure over(double first, double last) const {
        const double cells = static_cast<double>(cells_.size());
        const double step = static_cast<double>(step_);
        const auto begin =
            static_cast<std::size_t>(std::clamp(std::floor(first / step), 0.0, cells - 1));
        const auto end = static_cast<std::size_t>(std::clamp(std::ceil(last / step), 0.0, cells));
        Figure all = cells_[begin];
        for (std::size_t i = begin + 1; i < end; ++i) all.merge(cells_[i]);
        return all;
    }

  private:
    void halve() {
        for (std::size_t i = 0; i < fewest_; ++i) {
            Figure pair = std::move(cells_[2 * i]);
            pair.merge(cells_[2 * i + 1]);
            cells_[i] = std::move(pair);
        }
        cells_.erase(cells_.begin() + static_cast<std::ptrdiff_t>(fewest_), cells_.end());
        step_ *= 2;
    }

    std::size_t fewest_;
    std::size_t step_ = 1;
    std::size_t count_ = 0;
    std::vector<Figure> cells_;
};

#endif
