// SPDX-License-Identifier: MIT
// What is printed of a plan says all of it: read back, it is the same tree.
#include <gtest/gtest.h>

#include <cctype>
#include <optional>

#include "dft/double_plans.h"
#include "dft/single_lengths.h"
#include "hartley/hartley.h"
#include "plan/notation.h"
#include "realdft/plans.h"
#include "support/plan_tree.h"

namespace orvgen::test {
namespace {

using namespace orvgen::plan;

// Reads the notation into terms, without knowing any table.
class Reader {
  public:
    explicit Reader(std::string text) : text_(std::move(text)) {}

    Term whole() {
        Term term = plan();
        if (at_ != text_.size()) fail("the end");
        return term;
    }

  private:
    using Words = std::vector<std::string>;

    Term plan() {
        const Factor first = factor();
        if (accept(", ")) return goodThomas(first, factor());
        if (accept(" T")) {
            TwiddledJoin choices;
            for (const std::string& word : braces()) choose(choices, word);
            expect(" ");
            return cooleyTukey(first, factor(), choices);
        }
        if (!last_) fail("a join");
        return *last_;
    }

    // A factor; where it is made in one way, last_ is that.
    Factor factor() {
        last_.reset();
        if (!accept("[")) {
            const Term term = primary();
            last_ = term;
            return term;
        }
        std::optional<Factor> f;
        do {
            if (accept("complex ")) {
                const Term term = plan();
                f = (f ? *f : Factor(term)).complexRows(term);
            } else if (accept("odd ")) {
                f = f.value().oddRow(plan());
            } else if (const std::optional<int> number = numberBeforeColon()) {
                f = f.value().at(*number, plan());
            } else {
                f = Factor(plan());
            }
        } while (accept("; "));
        expect("]");
        last_.reset();
        return *f;
    }

    Term primary() {
        if (accept("(")) {
            const Term inner = plan();
            expect(")");
            return withRenumbering(inner, braces());
        }
        if (accept("lanes(")) {
            const Term re = plan();
            const Term im = accept(" | ") ? plan() : re;
            expect(")");
            return lanes(re, im);
        }
        if (accept("Bluestein ")) {
            const int length = number();
            const std::vector<Term> parts = list();
            return bluestein(length, parts.at(0), parts.at(1));
        }
        if (accept("inverse Rader ")) return inverseRaderOf(number());
        if (accept("Rader ")) {
            const int length = number();
            const std::vector<Term> parts = list();
            if (parts.size() == 1) return complexRader(parts[0], form());
            const Term term = rader({parts.at(0), parts.at(1), parts.at(2)});
            EXPECT_EQ(term.length(), length);
            return withRenumbering(term, braces());
        }
        if (accept("lane Rader ")) return laneRaderOf(number());
        return blockOf(number());
    }

    Term inverseRaderOf(int length) {
        const std::vector<Term> parts = list();
        const Words words = braces();
        const Unrounded head = words.empty() ? Unrounded::None : Unrounded::Head;
        const Term term =
            parts.size() == 3
                ? inverseRader({parts[0], parts[1], parts[2], head})
                : splitInverseRader({parts.at(0), parts.at(1), parts.at(2), parts.at(3), head});
        EXPECT_EQ(term.length(), length);
        return term;
    }

    ComplexRader::Form form() {
        if (accept("{packed}")) return ComplexRader::Form::Packed;
        if (accept("{lone pair}")) return ComplexRader::Form::SplitWithLone;
        return ComplexRader::Form::Split;
    }

    Term laneRaderOf(int length) {
        LaneRader choices;
        for (const std::string& word : braces()) {
            if (word.starts_with("from g^"))
                choices.offset = std::stoi(word.substr(7));
            else if (word.starts_with("sin 60 in bins"))
                choices.sineFolds = integers(word.substr(14));
            else
                fail("a choice of a lane Rader block");
        }
        return laneRader(length, choices);
    }

    Term blockOf(int length) {
        Block choices;
        Words others;
        for (const std::string& word : braces()) {
            if (word == "head")
                choices.unrounded = Unrounded::Head;
            else if (word == "both")
                choices.unrounded = Unrounded::Both;
            else if (word == "re")
                choices.unrounded = Unrounded::RealPart;
            else if (word == "cosines by g")
                choices.sums = SumOrder{.cosinePairs = SumOrder::Pairs::PowersOfRoot};
            else
                others.push_back(word);
        }
        return withRenumbering(block(length, choices), others);
    }

    Term withRenumbering(const Term& term, const Words& words) {
        if (words.empty()) return term;
        if (words[0] == "samples renumbered") return renumbered(Renumbered::What::Samples, term);
        if (words[0] == "bins renumbered") return renumbered(Renumbered::What::Bins, term);
        fail("a choice");
    }

    void choose(TwiddledJoin& choices, const std::string& word) {
        if (word == "conjugate rows")
            choices.conjugateRows = true;
        else if (word == "twiddles of columns")
            choices.twiddleLanes = TwiddleLanes::Columns;
        else if (word.starts_with("columns"))
            choices.columns = integers(word.substr(7));
        else if (word.starts_with("rows"))
            choices.rows = integers(word.substr(4));
        else
            fail("a choice of a join");
    }

    static std::vector<int> integers(const std::string& text) {
        std::vector<int> list;
        for (std::size_t at = text.find(' '); at != std::string::npos; at = text.find(' ', at + 1))
            list.push_back(std::stoi(text.substr(at + 1)));
        return list;
    }

    std::vector<Term> list() {
        expect("(");
        std::vector<Term> terms;
        do terms.push_back(plan());
        while (accept("; "));
        expect(")");
        return terms;
    }

    Words braces() {
        Words words;
        if (!accept("{")) return words;
        do {
            const std::size_t end = text_.find_first_of(";}", at_);
            words.push_back(text_.substr(at_, end - at_));
            at_ = end;
        } while (accept("; "));
        expect("}");
        return words;
    }

    int number() {
        std::size_t end = at_;
        while (end < text_.size() && std::isdigit(static_cast<unsigned char>(text_[end]))) ++end;
        if (end == at_) fail("a number");
        const int value = std::stoi(text_.substr(at_, end - at_));
        at_ = end;
        return value;
    }

    std::optional<int> numberBeforeColon() {
        const std::size_t end = text_.find_first_not_of("0123456789", at_);
        if (end == at_ || text_.compare(end, 2, ": ") != 0) return std::nullopt;
        const int value = number();
        expect(": ");
        return value;
    }

    bool accept(const std::string& word) {
        if (text_.compare(at_, word.size(), word) != 0) return false;
        at_ += word.size();
        return true;
    }
    void expect(const std::string& word) {
        if (!accept(word)) fail("'" + word + "'");
    }
    [[noreturn]] void fail(const std::string& what) const {
        throw std::logic_error(what + " expected in " + text_ + " at " + std::to_string(at_));
    }

    std::string text_;
    std::size_t at_ = 0;
    std::optional<Term> last_;
};

void expectReadBack(const Plan& plan) {
    const std::string text = notation(plan);
    const Term term = Reader(text).whole();
    ASSERT_EQ(term.length(), plan.length) << text;
    const PlanPtr again = Table(plan.transform, {{plan.length, term}}).plan(plan.length);
    EXPECT_EQ(notation(*again), text);
    EXPECT_TRUE(sameTree(*again, plan)) << text;
}

TEST(PlanNotation, SaysAllOfAPlan) {
    for (const int n : kLengths) {
        expectReadBack(*realdft::forwardPlans().plan(n));
        for (const auto format : realdft::kPackedFormats)
            expectReadBack(*realdft::inversePlans(format).plan(n));
        expectReadBack(*hartley::planOf(n));
        expectReadBack(*dft::doublePlans().plan(n));
        expectReadBack(*dft::singleLength(n).plan);
    }
}

}  // namespace
}  // namespace orvgen::test
