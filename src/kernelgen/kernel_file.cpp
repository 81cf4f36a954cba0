// SPDX-License-Identifier: MIT
#include "kernel_file.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>

#include "compiler_digest.h"

namespace orvgen::kernelgen {

namespace {

std::ostream& operator<<(std::ostream& out, const Lane& lane) {
    return out << lane.node << '.' << lane.lane;
}

void describe(std::ostream& out, const Graph& flow) {
    out << static_cast<int>(flow.arithmetic());
    for (const Node& n : flow.nodes()) {
        out << '\n'
            << static_cast<int>(n.op) << ' ' << static_cast<int>(n.type) << ' ' << n.a << ' ' << n.b
            << ' ' << n.index << ' ' << n.stage;
        if (n.op == Op::Mul)
            for (const Constant& c : flow.constant(n).lanes)
                out << ' ' << c.asDouble() << ' ' << c.asFloat() << ' ' << c.formula();
        if (n.op == Op::Pack)
            for (const Lane& lane : flow.lanes(n)) out << ' ' << lane;
        if (n.op == Op::Output && n.type == Type::F32Pair) {
            const Graph::PairOutput& pair = flow.pairOutput(n);
            out << ' ' << pair.element << ' ' << pair.re << ' ' << pair.im;
        }
    }
    for (const std::string& stage : flow.stages()) out << '\n' << stage;
}

void describe(std::ostream& out, const Address& a) {
    out << ' ' << static_cast<int>(a.base) << ' ' << a.offset;
}

void describe(std::ostream& out, const Pass& pass) {
    const auto& [forms, allocation, frameLimit, from, to, trips, advance, name, what] = pass;
    const auto& [foldSrc, storesEndAllOfSrc, commute, loadSrcOnce] = allocation;
    out << '\n'
        << foldSrc << storesEndAllOfSrc << commute << loadSrcOnce << ' ' << frameLimit << ' '
        << static_cast<int>(from) << ' ' << static_cast<int>(to) << ' ' << trips << ' ' << advance
        << ' ' << name << ' ' << what;
    for (const Code& code : forms) {
        for (const Instruction& i : code.instructions) {
            out << '\n'
                << static_cast<int>(i.op) << ' ' << i.dst << ' ' << i.a << ' ' << i.b << ' '
                << i.hasAddress << i.broadcast << ' ' << i.immediate << ' ' << i.stage << ' '
                << i.width;
            describe(out, i.address);
            describe(out, i.high);
        }
        for (const PoolEntry& entry : code.pool) {
            out << '\n' << static_cast<int>(entry.type) << ' ' << entry.text;
            for (const double lane : entry.lanes) out << ' ' << lane;
        }
        for (const std::string& stage : code.stages) out << '\n' << stage;
        out << '\n' << static_cast<int>(code.scale.type) << code.scale.widened;
    }
}

void describe(std::ostream& out, const Passes& passes) {
    const auto& [tiles, tile, tileBytes, last, bufferBytes, scratchAt] = passes;
    out << '\n' << tiles << ' ' << tileBytes << ' ' << bufferBytes << ' ' << scratchAt;
    for (const Pass& pass : tile) describe(out, pass);
    describe(out, last);
}

// The whole file, or nothing where it cannot be read.
std::string contents(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void write(const std::string& file, const std::string& text) {
    std::ofstream out(file, std::ios::binary);
    out << text;
    if (!out.flush()) throw std::runtime_error("cannot write " + file);
}

}  // namespace

std::string keyOf(const Kernel& kernel) {
    // Names every member, so that a new one is not forgotten here.
    const auto& [name, length, method, scale, alignment, halvesOnly, readsAllFirst, flow,
                 registersOnly, passes] = kernel;
    std::ostringstream all;
    all << std::hexfloat << compilerDigest << '\n'
        << name.stem << '\n'
        << method << '\n'
        << length << ' ' << static_cast<int>(scale) << ' ' << static_cast<int>(alignment) << ' '
        << halvesOnly << ' ' << readsAllFirst << ' ' << registersOnly << ' ';
    describe(all, flow);
    if (passes) describe(all, *passes);
    return std::to_string(std::hash<std::string>()(all.str()));
}

void writeKernelFile(const std::string& file, const std::string& key,
                     const std::function<std::string()>& text) {
    const std::string keyFile = file + ".key";
    const std::string before = contents(file);
    if (!before.empty() && contents(keyFile) == key) return;
    if (const std::string now = text(); now != before) write(file, now);
    write(keyFile, key);
}

}  // namespace orvgen::kernelgen
