#include "plan.h"

#include <cctype>
#include <stdexcept>

namespace orvgen::flows {

namespace {

PlanPtr make(Method method, int length, std::vector<PlanPtr> parts = {},
             std::vector<PlanPtr> complexParts = {}) {
    Plan plan;
    plan.method = method;
    plan.length = length;
    plan.parts = std::move(parts);
    plan.complexParts = std::move(complexParts);
    return std::make_shared<const Plan>(std::move(plan));
}

class Parser {
  public:
    explicit Parser(std::string_view text) : text_(text) {}

    PlanPtr whole() {
        PlanPtr p = plan();
        if (skipBlanks(); at_ != text_.size()) fail("end of plan expected");
        return p;
    }

  private:
    struct Factor {
        PlanPtr real, complex;
    };

    PlanPtr plan() {
        const Factor first = factor();
        Method method;
        bool conjugateRows = false;
        if (accept("x"))
            method = Method::GoodThomas;
        else if (accept("."))
            method = Method::CooleyTukey;
        else if (accept(":"))
            method = Method::CooleyTukey, conjugateRows = true;
        else if (first.complex)
            fail("a plan for complex rows belongs to a factor");
        else
            return first.real;
        const Factor second = factor();
        Plan join;
        join.method = method;
        join.length = first.real->length * second.real->length;
        join.conjugateRows = conjugateRows;
        join.parts = {first.real, second.real};
        join.complexParts = {first.complex, second.complex};
        return std::make_shared<const Plan>(std::move(join));
    }

    Factor factor() {
        Factor f{atom(), nullptr};
        const bool samples = accept("'");
        if (samples || accept("\"")) {
            Plan renumbered = *f.real;
            renumbered.renumbering = samples ? Renumbering::Samples : Renumbering::Bins;
            f.real = std::make_shared<const Plan>(std::move(renumbered));
        }
        if (accept("|")) f.complex = atom();
        return f;
    }

    PlanPtr atom() {
        if (accept("lanes(")) {
            const auto parts = list();
            return make(Method::Lanes, parts.at(0)->length, parts);
        }
        if (accept("inverse-rader(")) {
            auto parts = list();
            if (parts.size() != 3 && parts.size() != 4) fail("three or four plans expected");
            const int length = 2 * parts[0]->length + 1;
            return make(Method::InverseRader, length, std::move(parts));
        }
        if (accept("rader(")) {
            auto parts = list();
            if (parts.size() != 3) fail("three plans expected");
            const int length = parts[0]->length + 1;
            return make(Method::Rader, length, std::move(parts));
        }
        if (accept("(")) {
            PlanPtr p = plan();
            if (!accept(")")) fail(") expected");
            return p;
        }
        skipBlanks();
        int length = 0;
        while (at_ < text_.size() && std::isdigit(static_cast<unsigned char>(text_[at_])))
            length = 10 * length + (text_[at_++] - '0');
        if (length == 0) fail("length expected");
        if (accept("g")) {
            Plan direct;
            direct.method = Method::Direct;
            direct.length = length;
            direct.inRootOrder = true;
            return std::make_shared<const Plan>(std::move(direct));
        }
        return make(accept("d") ? Method::Direct : Method::Named, length);
    }

    std::vector<PlanPtr> list() {
        std::vector<PlanPtr> plans;
        do plans.push_back(plan());
        while (accept(";"));
        if (!accept(")")) fail(") expected");
        return plans;
    }

    void skipBlanks() {
        while (at_ < text_.size() && text_[at_] == ' ') ++at_;
    }

    bool accept(std::string_view word) {
        skipBlanks();
        if (text_.substr(at_, word.size()) != word) return false;
        at_ += word.size();
        return true;
    }

    [[noreturn]] void fail(const std::string& what) const {
        throw std::logic_error("plan \"" + std::string(text_) + "\" at " + std::to_string(at_) +
                               ": " + what);
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

}  // namespace

PlanPtr parsePlan(std::string_view text) { return Parser(text).whole(); }

void Plans::add(std::span<const PlanRow> rows) {
    for (const PlanRow& row : rows) add(row);
}

void Plans::add(const PlanRow& row) {
    PlanPtr plan = parsePlan(row.plan);
    if (plan->length != row.length)
        throw std::logic_error("plan \"" + std::string(row.plan) + "\" is not of length " +
                               std::to_string(row.length));
    rows_[{row.transform, row.length}] = std::move(plan);
}

PlanPtr Plans::find(Transform transform, int length) const {
    const auto found = rows_.find({transform, length});
    return found == rows_.end() ? nullptr : found->second;
}

PlanPtr Plans::resolve(Transform transform, const PlanPtr& plan) const {
    if (plan->method != Method::Named) return plan;
    if (PlanPtr row = find(transform, plan->length)) return row;
    return make(Method::Direct, plan->length);
}

}  // namespace orvgen::flows
