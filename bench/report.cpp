#include "report.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace orvgen::bench {
namespace {

std::string number(const char* format, double value) {
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

std::string padded(const std::string& s, std::size_t width) {
    return s.size() >= width ? s : std::string(width - s.size(), ' ') + s;
}

const Cycles* theirs(const Result& r, const std::string& library) {
    const auto it = r.others.find(library);
    return it == r.others.end() || it->second.least <= 0 ? nullptr : &it->second;
}

std::vector<std::string> familiesOf(const std::vector<Result>& results) {
    std::vector<std::string> names;
    for (const Result& r : results) {
        if (names.empty() || names.back() != r.family) names.push_back(r.family);
    }
    return names;
}

struct Mean {
    double logs = 0;
    int count = 0;
    double worst = 0;
    std::string worstName;

    void add(double ratio, bool worse, const std::string& name) {
        logs += std::log(ratio);
        if (count++ == 0 || worse) {
            worst = ratio;
            worstName = name;
        }
    }
    std::string text() const {
        return "geometric mean " + number("%.2f", std::exp(logs / count)) + ", worst " +
               number("%.2f", worst) + " (" + worstName + ")";
    }
};

void writeCsv(const std::filesystem::path& file, const Heading& heading,
              const std::vector<Result>& results) {
    std::ofstream out(file);
    out << "kernel,family,length";
    for (const std::string& l : heading.libraries) out << ",ratio " << l;
    out << ",cycles over bound,cycles,median,short,short median,latency,latency median,bound";
    for (const std::string& l : heading.libraries) out << "," << l << "," << l << " median";
    out << "\n";
    for (const Result& r : results) {
        out << r.name << "," << r.family << "," << r.length;
        for (const std::string& l : heading.libraries) {
            const Cycles* c = theirs(r, l);
            out << "," << (c ? number("%.3f", c->least / r.ours.burst.least) : "");
        }
        out << "," << (r.bound ? number("%.3f", r.ours.burst.least / *r.bound) : "");
        for (const Cycles* c : {&r.ours.burst, &r.ours.brief, &r.ours.latency}) {
            out << number(",%.1f", c->least) << number(",%.1f", c->median);
        }
        out << "," << (r.bound ? number("%.1f", *r.bound) : "");
        for (const std::string& l : heading.libraries) {
            const Cycles* c = theirs(r, l);
            out << (c ? number(",%.1f", c->least) + number(",%.1f", c->median) : ",,");
        }
        out << "\n";
    }
}

// One panel a family: the ratios over the length.
void plot(const std::filesystem::path& folder, const Heading& heading,
          const std::vector<Result>& results) {
    const std::vector<std::string> families = familiesOf(results);
    std::ofstream data(folder / "plot.dat");
    for (const std::string& family : families) {
        for (const Result& r : results) {
            if (r.family != family) continue;
            data << r.length;
            for (const std::string& l : heading.libraries) {
                const Cycles* c = theirs(r, l);
                data << " " << (c ? number("%.4f", c->least / r.ours.burst.least) : "?");
            }
            data << " " << (r.bound ? number("%.4f", *r.bound / r.ours.burst.least) : "?") << "\n";
        }
        data << "\n\n";
    }
    data.close();
    const auto panels = static_cast<int>(families.size());
    const int columns = panels > 12 ? 4 : panels > 4 ? 3 : panels > 1 ? 2 : 1;
    const int rows = (panels + columns - 1) / columns;
    std::ofstream script(folder / "plot.gp");
    script << "set terminal pngcairo size " << 560 * columns << "," << 380 * rows
           << " font 'sans,9'\nset output '" << (folder / "ratios.png").string() << "'\n"
           << "set datafile missing '?'\nset grid ytics\nset logscale y\nset key below\n"
           << "set ytics (0.25,0.5,0.7,1,1.5,2,3,4,6,8,12,16)\nset xlabel 'length'\n"
           << "set ylabel 'their cycles / ours'\n"
           << "set multiplot layout " << rows << "," << columns
           << " title 'Cycles of other libraries over ours (above 1: ours is faster)'\n";
    int index = 0;
    for (const std::string& family : families) {
        const bool doubling = family.starts_with("WHT") || family.starts_with("DCT4");
        script << "set title '" << family << "' noenhanced\n"
               << (doubling ? "set logscale x 2\n" : "unset logscale x\n")
               << "plot 1 lc 'black' notitle";
        int column = 2;
        for (const std::string& l : heading.libraries) {
            script << ", 'plot.dat' index " << index << " using 1:" << column++
                   << " with linespoints pt 7 ps 0.5 title '" << l << "'";
        }
        script << ", '' index " << index << " using 1:" << column
               << " with lines dt 2 lc 'gray40' title 'bound'\n";
        ++index;
    }
    script.close();
    const std::string command = "cd '" + folder.string() + "' && gnuplot plot.gp >plot.log 2>&1";
    if (std::system(command.c_str()) != 0) {
        std::fprintf(stderr, "bench: no plot (gnuplot is missing or failed, see plot.log)\n");
    }
}

void writeText(const std::filesystem::path& file, const std::string& text) {
    std::ofstream out(file);
    out << text;
    if (!out) throw std::runtime_error("cannot write " + file.string());
}

}  // namespace

std::string tableHead(const Heading& heading) {
    std::string text;
    for (const std::string& note : heading.notes) text += "# " + note + "\n";
    for (const std::string& l : heading.libraries) text += padded(l, 12);
    text += padded("/bound", 9) + padded("cycles", 10) + padded("median", 10) +
            padded("short", 10) + padded("latency", 10) + padded("bound", 10) + "  kernel\n";
    return text;
}

std::string tableRow(const Heading& heading, const Result& r) {
    std::string text;
    for (const std::string& l : heading.libraries) {
        const Cycles* c = theirs(r, l);
        text += padded(c ? number("%.2f", c->least / r.ours.burst.least) : "-", 12);
    }
    text += padded(r.bound ? number("%.2f", r.ours.burst.least / *r.bound) : "-", 9);
    text += padded(number("%.1f", r.ours.burst.least), 10);
    text += padded(number("%.1f", r.ours.burst.median), 10);
    text += padded(number("%.1f", r.ours.brief.median), 10);
    text += padded(number("%.1f", r.ours.latency.least), 10);
    text += padded(r.bound ? number("%.1f", *r.bound) : "-", 10);
    return text + "  " + r.name + "\n";
}

std::string summary(const Heading& heading, const std::vector<Result>& results) {
    std::string text;
    for (const std::string& family : familiesOf(results)) {
        text += family + "\n";
        for (const std::string& l : heading.libraries) {
            Mean mean;
            for (const Result& r : results) {
                const Cycles* c = theirs(r, l);
                if (r.family != family || !c) continue;
                const double ratio = c->least / r.ours.burst.least;
                mean.add(ratio, ratio < mean.worst, r.name);
            }
            if (mean.count) text += "    " + l + " / ours: " + mean.text() + "\n";
        }
        Mean mean;
        for (const Result& r : results) {
            if (r.family != family || !r.bound) continue;
            const double ratio = r.ours.burst.least / *r.bound;
            mean.add(ratio, ratio > mean.worst, r.name);
        }
        if (mean.count) text += "    ours / bound: " + mean.text() + "\n";
    }
    return text;
}

void writeReport(const std::filesystem::path& folder, const Heading& heading,
                 const std::vector<Result>& results) {
    std::filesystem::create_directories(folder);
    std::string table = tableHead(heading);
    for (const Result& r : results) table += tableRow(heading, r);
    writeText(folder / "table.txt", table);
    writeText(folder / "summary.txt", summary(heading, results));
    writeCsv(folder / "table.csv", heading, results);
    if (!results.empty()) plot(folder, heading, results);
}

}  // namespace orvgen::bench
