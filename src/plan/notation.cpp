// SPDX-License-Identifier: MIT
#include "notation.h"

#include <set>

namespace orvgen::plan {

namespace {

std::string inBraces(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : "; ") + word;
    return text.empty() ? "" : "{" + text + "}";
}

bool isJoin(const Plan& plan) {
    if (const auto* odd = plan.as<Alternating>()) return isJoin(*odd->plan);
    return plan.as<GoodThomas>() || plan.as<CooleyTukey>();
}

std::string factorText(const Plan& plan) {
    return isJoin(plan) ? "(" + notation(plan) + ")" : notation(plan);
}

std::string word(Unrounded unrounded) {
    switch (unrounded) {
        case Unrounded::Head:
            return "head";
        case Unrounded::Both:
            return "both";
        case Unrounded::RealPart:
            return "re";
        default:
            return "";
    }
}

std::string word(SumOrder::Pairs pairs) {
    switch (pairs) {
        case SumOrder::Pairs::PowersOfInverseRoot:
            return "by 1/g";
        case SumOrder::Pairs::PowersOfRoot:
            return "by g";
        case SumOrder::Pairs::Ascending:
            return "up";
        default:
            return "down";
    }
}

std::string word(SumOrder::Sines sines) {
    switch (sines) {
        case SumOrder::Sines::AsTheyCome:
            return "sines as they come";
        case SumOrder::Sines::PositiveFirst:
            return "positive sine first";
        case SumOrder::Sines::NegativeFirst:
            return "negative sine first";
        default:
            return "minuses of sines turned";
    }
}

std::string word(ComplexRader::Form form) {
    switch (form) {
        case ComplexRader::Form::SplitWithLone:
            return "{lone pair}";
        case ComplexRader::Form::Packed:
            return "{packed}";
        default:
            return "";
    }
}

// What is another than in the real kernels.
std::vector<std::string> words(const SumOrder& sums) {
    const SumOrder usual;
    std::vector<std::string> list;
    if (sums.cosinePairs != usual.cosinePairs) list.push_back("cosines " + word(sums.cosinePairs));
    if (sums.sinePairs != usual.sinePairs) list.push_back("sines " + word(sums.sinePairs));
    if (sums.centre != usual.centre) list.emplace_back("x[0] first");
    if (sums.sines != usual.sines) list.push_back(word(sums.sines));
    return list;
}

struct Printer {
    const Plan& plan;

    std::string length() const { return std::to_string(plan.length); }

    std::string operator()(const Block& block) const {
        std::vector<std::string> choices;
        if (block.unrounded != Unrounded::None) choices.push_back(word(block.unrounded));
        if (block.sums)
            for (const std::string& w : words(*block.sums)) choices.push_back(w);
        return length() + inBraces(choices);
    }

    std::string operator()(const GoodThomas& join) const {
        return stage(join.first) + ", " + stage(join.second);
    }

    std::string operator()(const CooleyTukey& join) const {
        std::vector<std::string> choices;
        const auto name = [&](const char* what, const std::vector<int>& list) {
            bool counts = true;
            std::string text = what;
            for (std::size_t i = 0; i < list.size(); ++i) {
                counts = counts && list[i] == static_cast<int>(i);
                text += " " + std::to_string(list[i]);
            }
            if (!counts) choices.push_back(text);
        };
        name("columns", join.columns);
        name("rows", join.rows);
        if (join.twiddleLanes == TwiddleLanes::Columns) choices.emplace_back("twiddles of columns");
        if (join.conjugateRows) choices.emplace_back("conjugate rows");
        return stage(join.first) + " T" + inBraces(choices) + " " + stage(join.second);
    }

    std::string operator()(const RealRader& rader) const {
        return "Rader " + length() + "(" + notation(*rader.cycle) + "; " + notation(*rader.even) +
               "; " + notation(*rader.odd) + ")";
    }

    std::string operator()(const InverseRealRader& rader) const {
        std::string text =
            "inverse Rader " + length() + "(" + notation(*rader.even) + "; " + notation(*rader.odd);
        for (const PlanPtr& part : {rader.cycle, rader.cycleEven, rader.cycleOdd})
            if (part) text += "; " + notation(*part);
        return text + ")" +
               (rader.unrounded == Unrounded::None ? "" : "{" + word(rader.unrounded) + "}");
    }

    std::string operator()(const ComplexRader& rader) const {
        return "Rader " + length() + "(" + notation(*rader.cycle) + ")" + word(rader.form);
    }

    std::string operator()(const LaneRader& rader) const {
        std::vector<std::string> choices;
        if (rader.offset != 0) choices.push_back("from g^" + std::to_string(rader.offset));
        std::string folds;
        for (const int bin : rader.sineFolds) folds += " " + std::to_string(bin);
        if (!folds.empty()) choices.push_back("sin 60 in bins" + folds);
        return "lane Rader " + length() + inBraces(choices);
    }

    std::string operator()(const Bluestein& chirp) const {
        return "Bluestein " + length() + "(" + notation(*chirp.forward) + "; " +
               notation(*chirp.back) + ")";
    }

    std::string operator()(const Lanes& lanes) const {
        const std::string re = notation(*lanes.re), im = notation(*lanes.im);
        if (re != im) return "lanes(" + re + " | " + im + ")";
        return lanes.re->as<Block>() ? re : "lanes(" + re + ")";
    }

    std::string operator()(const Alternating& odd) const { return notation(*odd.plan); }

    std::string operator()(const Renumbered& block) const {
        return factorText(*block.plan) + (block.what == Renumbered::What::Samples
                                              ? "{samples renumbered}"
                                              : "{bins renumbered}");
    }

    // A stage by the plan of its real rows, and whatever differs from that.
    std::string stage(const Stage& blocks) const {
        if (plan.transform == Transform::Complex) return factorText(*blocks.front());
        // What stands for all rows: the plan of the first one, or of its lanes.
        const Plan& first = *blocks.front();
        const auto* inLanes = first.as<Lanes>();
        const Plan& main = inLanes ? *inLanes->re : first;
        const std::string text = notation(main);
        const auto isUsual = [&](const PlanPtr& block) {
            const auto* lanes = block->as<Lanes>();
            if (lanes) return notation(*lanes->re) == text && notation(*lanes->im) == text;
            return block->transform != Transform::Complex && notation(*block) == text;
        };

        std::vector<std::string> others;
        // What is one for all rows of a kind is told of the kind.
        const auto tell = [&](const char* kind, const std::vector<std::size_t>& rows) {
            std::set<std::string> texts;
            for (const std::size_t i : rows) texts.insert(notation(*blocks[i]));
            if (texts.size() == 1 && !isUsual(blocks[rows[0]])) {
                others.push_back(kind + *texts.begin());
                return;
            }
            for (const std::size_t i : rows)
                if (!isUsual(blocks[i]))
                    others.push_back(std::to_string(i) + ": " + notation(*blocks[i]));
        };
        std::vector<std::size_t> likeTheFirst, complex, odd;
        for (std::size_t i = 0; i < blocks.size(); ++i)
            (blocks[i]->transform == Transform::Complex ? complex
             : blocks[i]->transform == first.transform  ? likeTheFirst
                                                        : odd)
                .push_back(i);
        tell("", likeTheFirst);
        tell("complex ", complex);
        tell("odd ", odd);
        if (others.empty()) return factorText(main);
        std::string list = isUsual(blocks.front()) ? text : "";
        for (const std::string& other : others) list += (list.empty() ? "" : "; ") + other;
        return "[" + list + "]";
    }
};

}  // namespace

std::string notation(const Plan& plan) { return std::visit(Printer{plan}, plan.node); }

}  // namespace orvgen::plan
