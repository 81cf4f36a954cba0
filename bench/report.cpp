// SPDX-License-Identifier: MIT
#include "report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include "frame/names.h"

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

using Families = std::vector<const FamilyInfo*>;

Families familiesOf(const std::vector<Result>& results) {
    Families families;
    for (const Result& r : results) {
        if (families.empty() || families.back() != r.family) families.push_back(r.family);
    }
    return families;
}

// Geometric mean and worst of a family's ratios.
class Ratios {
  public:
    enum class Worst { least, largest };
    explicit Ratios(Worst worst) : isLargestWorst_(worst == Worst::largest) {}

    void add(double ratio, const Result& result) {
        logs_ += std::log(ratio);
        below_ += ratio < 1;
        if (count_++ == 0 || (isLargestWorst_ ? ratio > worst_ : ratio < worst_)) {
            worst_ = ratio;
            worstResult_ = &result;
        }
    }
    bool empty() const { return count_ == 0; }
    int count() const { return count_; }
    int below() const { return below_; }  // of them below 1
    std::string mean() const { return number("%.2f", std::exp(logs_ / count_)); }
    std::string worst() const { return number("%.2f", worst_); }
    const Result& worstResult() const { return *worstResult_; }

  private:
    bool isLargestWorst_;
    double logs_ = 0;
    int count_ = 0, below_ = 0;
    double worst_ = 0;
    const Result* worstResult_ = nullptr;
};

// No family stands for all of them.
bool isOf(const Result& r, const FamilyInfo* family) {
    return family == nullptr || r.family == family;
}

// Their cycles over ours.
Ratios toLibrary(const std::vector<Result>& results, const FamilyInfo* family,
                 const std::string& library) {
    Ratios ratios(Ratios::Worst::least);
    for (const Result& r : results) {
        const Cycles* c = theirs(r, library);
        if (isOf(r, family) && c) ratios.add(c->least / r.ours.burst.least, r);
    }
    return ratios;
}

// Cycles of the first build over those of the second.
Ratios toSecond(const std::vector<Result>& results, const FamilyInfo* family) {
    Ratios ratios(Ratios::Worst::least);
    for (const Result& r : results) {
        if (isOf(r, family) && r.second) ratios.add(r.ours.burst.least / r.second->burst.least, r);
    }
    return ratios;
}

// Their cycles over those of the second build.
Ratios fromSecond(const std::vector<Result>& results, const FamilyInfo* family,
                  const std::string& library) {
    Ratios ratios(Ratios::Worst::least);
    for (const Result& r : results) {
        const Cycles* c = theirs(r, library);
        if (isOf(r, family) && r.second && c) ratios.add(c->least / r.second->burst.least, r);
    }
    return ratios;
}

// Our cycles over the bound of our operations.
Ratios toBound(const std::vector<Result>& results, const FamilyInfo* family) {
    Ratios ratios(Ratios::Worst::largest);
    for (const Result& r : results)
        if (r.family == family && r.bound) ratios.add(r.ours.burst.least / *r.bound, r);
    return ratios;
}

// The summary as a table of Markdown: mean, worst, and the length of the worst.
std::string summaryPage(const Heading& heading, const std::vector<Result>& results) {
    std::string text = "| family |", rule = "\n|---|";
    for (const std::string& l : heading.libraries) {
        text += " " + l + " |";
        rule += "---|";
    }
    text += " ours / bound |";
    rule += "---|";
    if (heading.secondBuild) {
        text += " ours / v3 |";
        rule += "---|";
        for (const std::string& l : heading.libraries) {
            text += " " + l + " / v3 |";
            rule += "---|";
        }
    }
    text += rule + "\n";
    const auto cell = [](const Ratios& r) {
        if (r.empty()) return std::string(" |");
        return " " + r.mean() + ", " + r.worst() + " at " + std::to_string(r.worstResult().length) +
               " |";
    };
    for (const FamilyInfo* family : familiesOf(results)) {
        text += "| `" + shortName(*family) + "` |";
        for (const std::string& l : heading.libraries) text += cell(toLibrary(results, family, l));
        text += cell(toBound(results, family));
        if (heading.secondBuild) {
            text += cell(toSecond(results, family));
            for (const std::string& l : heading.libraries)
                text += cell(fromSecond(results, family, l));
        }
        text += "\n";
    }
    return text;
}

void writeCsv(const std::filesystem::path& file, const Heading& heading,
              const std::vector<Result>& results) {
    std::ofstream out(file);
    out << "kernel,family,length";
    for (const std::string& l : heading.libraries) out << ",ratio " << l;
    out << ",cycles over bound,cycles,median,short,short median,latency,latency median,bound";
    for (const std::string& l : heading.libraries) out << "," << l << "," << l << " median";
    if (heading.secondBuild) {
        out << ",ratio of builds,v3 cycles,v3 median,v3 short,v3 short median,v3 latency,"
               "v3 latency median";
    }
    out << "\n";
    for (const Result& r : results) {
        out << r.name << "," << shortName(*r.family) << "," << r.length;
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
        if (r.second) {
            out << "," << number("%.3f", r.ours.burst.least / r.second->burst.least);
            for (const Cycles* c : {&r.second->burst, &r.second->brief, &r.second->latency})
                out << number(",%.1f", c->least) << number(",%.1f", c->median);
        }
        out << "\n";
    }
}

// The ratios over the length, one panel a family, so many in a row.
struct Picture {
    std::string file;
    Families families;
    int columns = 1;
};

std::string plotScript(const Picture& picture, const Heading& heading, const Families& dataBlocks) {
    const auto panels = static_cast<int>(picture.families.size());
    const int rows = (panels + picture.columns - 1) / picture.columns;
    std::string text = "set terminal pngcairo size " + std::to_string(440 * picture.columns) + "," +
                       std::to_string(340 * rows) + " font 'sans,9'\nset output '" + picture.file +
                       "'\nset multiplot layout " + std::to_string(rows) + "," +
                       std::to_string(picture.columns) +
                       " title 'Cycles of other libraries over ours (above 1: ours is faster)'\n";
    for (const FamilyInfo* family : picture.families) {
        const bool doubling = family->byOrder || family->numbers.doubling;
        const auto block = std::find(dataBlocks.begin(), dataBlocks.end(), family);
        const std::string index = std::to_string(block - dataBlocks.begin());
        text += "set title '" + shortName(*family) + "' noenhanced\n";
        text += doubling ? "set logscale x 2\n" : "unset logscale x\n";
        text += "plot 1 lc 'black' notitle";
        int column = 2;
        for (const std::string& l : heading.libraries)
            text += ", 'plot.dat' index " + index + " using 1:" + std::to_string(column++) +
                    " with linespoints pt 7 ps 0.5 title '" + l + "'";
        text += ", '' index " + index + " using 1:" + std::to_string(column) +
                " with lines dt 2 lc 'gray40' title 'bound'\n";
    }
    return text + "unset multiplot\n";
}

// Each transform once, CCS for the real ones; element types below each other.
Families overview(const Families& families) {
    const auto isPacked = [](Layout l) { return l == Layout::Pack || l == Layout::Perm; };
    Families single, twice;
    for (const FamilyInfo* f : families) {
        if (f->direction == Direction::Inverse || isPacked(f->src) || isPacked(f->dst)) continue;
        (f->isSingle() ? single : twice).push_back(f);
    }
    single.insert(single.end(), twice.begin(), twice.end());
    return single;
}

void plot(const std::filesystem::path& folder, const Heading& heading,
          const std::vector<Result>& results) {
    const Families families = familiesOf(results);
    std::ofstream data(folder / "plot.dat");
    for (const FamilyInfo* family : families) {
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
    const auto columnsFor = [](std::size_t panels) {
        return panels > 12 ? 4 : panels > 4 ? 3 : panels > 1 ? 2 : 1;
    };
    const Families some = overview(families);
    const int half = static_cast<int>(some.size() + 1) / 2;
    std::ofstream script(folder / "plot.gp");
    script << "set datafile missing '?'\nset grid ytics\nset logscale y\nset key below\n"
           << "set ytics (0.25,0.5,0.7,1,1.5,2,3,4,6,8,12,16)\n"
           << "set ylabel 'their cycles / ours'\n"
           << plotScript({"ratios.png", families, columnsFor(families.size())}, heading, families);
    if (!some.empty()) script << plotScript({"overview.png", some, half}, heading, families);
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
    if (heading.secondBuild) text += padded("v3", 8);
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
    if (r.second) text += padded(number("%.2f", r.ours.burst.least / r.second->burst.least), 8);
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
    const auto line = [&](const std::string& what, const Ratios& r) {
        if (r.empty()) return;
        text += "    " + what + ": geometric mean " + r.mean() + ", worst " + r.worst() + " (" +
                r.worstResult().name + ")\n";
    };
    for (const FamilyInfo* family : familiesOf(results)) {
        text += shortName(*family) + "\n";
        for (const std::string& l : heading.libraries)
            line(l + " / ours", toLibrary(results, family, l));
        line("ours / bound", toBound(results, family));
        line("ours / v3", toSecond(results, family));
        for (const std::string& l : heading.libraries)
            line(l + " / v3", fromSecond(results, family, l));
    }
    text += "all\n";
    const auto ahead = [&](const std::string& what, const Ratios& r) {
        line(what, r);
        if (!r.empty())
            text += "        below 1: " + std::to_string(r.below()) + " of " +
                    std::to_string(r.count()) + "\n";
    };
    for (const std::string& l : heading.libraries)
        ahead(l + " / ours", toLibrary(results, nullptr, l));
    ahead("ours / v3", toSecond(results, nullptr));
    for (const std::string& l : heading.libraries)
        ahead(l + " / v3", fromSecond(results, nullptr, l));
    return text;
}

void writeReport(const std::filesystem::path& folder, const Heading& heading,
                 const std::vector<Result>& results) {
    std::filesystem::create_directories(folder);
    std::string table = tableHead(heading);
    for (const Result& r : results) table += tableRow(heading, r);
    writeText(folder / "table.txt", table);
    writeText(folder / "summary.txt", summary(heading, results));
    writeText(folder / "summary.md", summaryPage(heading, results));
    writeCsv(folder / "table.csv", heading, results);
    if (!results.empty()) plot(folder, heading, results);
}

}  // namespace orvgen::bench
