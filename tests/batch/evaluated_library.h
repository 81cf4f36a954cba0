// SPDX-License-Identifier: MIT
// The batch library on a processor that is evaluated.
#pragma once

#include "batch/families.h"
#include "evaluator/processor.h"

namespace orvgen::test::batch {

class EvaluatedLibrary {
  public:
    // No call has been made yet on it.
    explicit EvaluatedLibrary(const evaluator::Features& features);
    ~EvaluatedLibrary();
    EvaluatedLibrary(const EvaluatedLibrary&) = delete;
    EvaluatedLibrary& operator=(const EvaluatedLibrary&) = delete;

    std::uint64_t call(const void* function, std::span<const std::uint64_t> arguments);
    std::uint32_t targets();
    OrvStatus use(std::uint32_t target);

    evaluator::Processor& processor() { return processor_; }
    // The library's functions as they stand in this program.
    struct Function {
        std::string name;
        const void* address;
        std::uint64_t size;
    };
    static std::vector<Function> functions();
    static Function function(const std::string& name);

  private:
    evaluator::Processor processor_;
    // The library's one mutable word: the evaluated processor has a value of its own, and the
    // processor at hand finds what was there before.
    std::uint32_t* word_;
    std::uint32_t before_ = 0, own_ = 0;
    bool isInside_ = false;  // a call, also one that a forbidden access has ended
};

// The features that a target asks for, and no more.
evaluator::Features featuresFor(std::uint32_t target);

}  // namespace orvgen::test::batch
