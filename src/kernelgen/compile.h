// From a kernel's flow to its assembly.
#pragma once

#include <string>

#include "emit.h"
#include "kernel.h"

namespace orvgen::kernelgen {

// One basic block, in the best of the candidate orders.
struct Block {
    std::vector<MachineInstruction> instructions;  // pool addresses are entry numbers still
    int frameBytes = 0;
    int spills = 0;
    double modelCycles = 0;
    double portBound = 0;
    double cost = 0;  // what the order was chosen by: cycles, spills, instructions
};
Block compileBlock(const Code& code, const AllocationOptions& options);

struct KernelFigures {
    int instructions = 0;  // of the body, as assembled for aligned buffers
    int frameBytes = 0;
    int spills = 0;
    double modelCycles = 0;
    double portBound = 0;
};

struct CompiledKernel {
    std::string assembly;  // a whole source file: functions, pool
    KernelFigures figures;
};
CompiledKernel compileKernel(const Kernel& kernel);

// The stored scale for a flag's kind, as part of every kernel's pool.
enum class ScaleKind : std::uint8_t { None, BySqrtN, ByN };
double storedScale(ScaleKind kind, int length, bool single);

// The gate in front of a body: what it tests, in order, and the registers it leaves behind
// (rax: address of the scale). `pool` is the register that holds the pool's address, plus a bias.
struct GateScales {
    int none = 0, bySqrtN = 0, byN = 0;  // byte offsets in the pool
};
std::string printFlagGate(const GateScales& scales, ScaleRule rule, const Binding& pool,
                          const std::string& bodyLabel);

// Directives around a function: section, alignment, type, CFI start; and the end.
std::string functionHead(const std::string& name, bool exported);
std::string functionTail(const std::string& name);

}  // namespace orvgen::kernelgen
