// SPDX-License-Identifier: MIT
#include "batch/summary.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <stdexcept>

#include "frame/names.h"

namespace orvgen::bench {
namespace {

using Results = std::vector<const BatchResult*>;

// Different values of a column, in their order.
template <class Column>
std::vector<std::string> valuesOf(const std::vector<BatchResult>& results, const Column& column) {
    std::vector<std::string> values;
    for (const BatchResult& r : results) {
        const std::string value = column(r);
        bool known = false;
        for (const std::string& v : values) known = known || v == value;
        if (!known) values.push_back(value);
    }
    return values;
}

// Geometric mean of the ratios and the least of them.
template <class Others>
std::string ratios(const Results& results, const Others& others) {
    double logs = 0, least = std::numeric_limits<double>::infinity();
    int count = 0;
    for (const BatchResult* r : results) {
        const double ratio = others(*r) / r->ours;
        if (!std::isfinite(ratio)) continue;
        logs += std::log(ratio);
        least = std::min(least, ratio);
        ++count;
    }
    if (count == 0) return "-";
    char text[48];
    std::snprintf(text, sizeof text, "%.2f (%.2f)", std::exp(logs / count), least);
    return text;
}

std::string kindOf(const BatchResult& r) {
    return std::string(r.family->isComplex() ? "complex" : "real, Hartley") +
           (r.family->isSingle() ? " binary32" : " binary64");
}

void writeTable(const std::filesystem::path& file, const std::vector<BatchResult>& results) {
    std::ofstream out(file);
    out << "| Layout | From | Transforms | Target | FFTW | Single calls |\n|---|---|---|---|---|---|\n";
    const auto key = [](const BatchResult& r) {
        return "| " + r.layout + " | " + r.from + " | " + kindOf(r) + " | " + r.target + " | ";
    };
    for (const std::string& row : valuesOf(results, key)) {
        Results these;
        for (const BatchResult& r : results)
            if (key(r) == row) these.push_back(&r);
        out << row << ratios(these, [](const BatchResult& r) { return r.fftw; }) << " | "
            << ratios(these, [](const BatchResult& r) { return r.single; }) << " |\n";
    }
    if (!out.flush()) throw std::runtime_error("cannot write " + file.string());
}

void plot(const std::filesystem::path& folder, const std::vector<BatchResult>& results) {
    std::vector<BatchResult> rows;
    for (const BatchResult& r : results)
        if (r.layout == "rows" && r.from == "cache") rows.push_back(r);
    if (rows.empty()) return;
    const auto families = valuesOf(rows, [](const BatchResult& r) { return shortName(*r.family); });
    const auto targets = valuesOf(rows, [](const BatchResult& r) { return r.target; });
    std::ofstream data(folder / "plot.dat"), script(folder / "plot.gp");
    const std::size_t columns = std::min<std::size_t>(4, families.size());
    script << "set terminal pngcairo size 1500,1000\nset output 'batch.png'\nset grid ytics\n"
           << "set logscale y\nset ytics (0.5,1,2,4,8,16)\nset yrange [0.4:22]\nset xrange [0:66]\n"
           << "set xtics 16\nset multiplot layout " << families.size() / columns + 1 << ','
           << columns
           << " title 'Rows in the cache: cycles of others over ours, by length "
              "(above 1: ours is faster)'\n";
    // The titles have a panel of their own, the last one.
    std::string titles = "unset title\nunset border\nunset tics\nset key center\nplot 1/0 notitle";
    int index = 0;
    for (const std::string& family : families) {
        script << "set title '" << family << "' noenhanced\nplot 1 lc 'black' notitle";
        int color = 1;
        for (const std::string& target : targets) {
            for (const BatchResult& r : rows)
                if (shortName(*r.family) == family && r.target == target)
                    data << r.length << " " << r.fftw / r.ours << " " << r.single / r.ours << "\n";
            data << "\n\n";
            const auto curve = [&](const char* column, const char* style, const char* title) {
                const std::string look = std::string(style) + " lc " + std::to_string(color);
                script << ", 'plot.dat' index " << index << " using " << column << " with " << look
                       << " notitle";
                if (index < static_cast<int>(targets.size()))
                    titles.append(", 1/0 with ").append(look).append(" title '").append(title);
                if (index < static_cast<int>(targets.size())) titles.append(target).append("'");
            };
            curve("1:2", "linespoints pt 7 ps 0.4", "FFTW, ");
            curve("1:3", "lines dt 2", "single calls, ");
            ++index;
            ++color;
        }
        script << "\n";
    }
    script << titles << "\nunset multiplot\n";
    data.close();
    script.close();
    const std::string command = "cd '" + folder.string() + "' && gnuplot plot.gp >plot.log 2>&1";
    if (std::system(command.c_str()) != 0)
        std::fprintf(stderr, "bench: no plot (gnuplot is missing or failed, see plot.log)\n");
}

}  // namespace

void writeSummary(const std::filesystem::path& folder, const std::vector<BatchResult>& results) {
    std::filesystem::create_directories(folder);
    writeTable(folder / "summary.md", results);
    plot(folder, results);
}

}  // namespace orvgen::bench
