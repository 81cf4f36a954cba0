// SPDX-License-Identifier: MIT
// write_site_data KERNELS TABLES FOLDER: what the kernel explorer shows, as scripts that a page
// opened from disk can load: FOLDER/kernels.js, the list, and FOLDER/kernels/NAME.js, a script for
// each kernel. KERNELS is the folder of the assembly that the build has written, TABLES that of the
// count tables.
#include <filesystem>
#include <fstream>
#include <iostream>

#include "generator/head.h"
#include "generator/registry.h"
#include "kernel_data.h"

namespace {

using namespace orvgen;
using site::Json;

void write(const std::filesystem::path& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path.string());
}

void writeAll(const std::string& kernels, const std::string& tables,
              const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder / "kernels");
    std::vector<Json> families, rows, marks;
    for (const KernelFamily& family : generator::allFamilies()) {
        for (const int length : family.info->numbers) {
            const kernelgen::Kernel kernel = family.kernel(length);
            const std::string assembly = generator::assemblyOf(kernels, kernel.name.exported());
            rows.push_back(
                site::rowOf(kernel, static_cast<int>(families.size()), length, assembly));
            write(folder / "kernels" / (kernel.name.exported() + ".js"),
                  "explorer.kernel(" + site::quoted(kernel.name.exported()).text + "," +
                      site::pageOf(kernel, *family.info, length, tables, assembly).text + ");\n");
        }
        families.push_back(site::quoted(nameOf(*family.info)));
    }
    for (const site::Mark& mark : site::marks())
        marks.push_back(site::array({site::quoted(mark.mark), site::quoted(mark.text)}));
    write(folder / "kernels.js", "explorer.kernels(" +
                                     site::object({{"families", site::array(families)},
                                                   {"marks", site::array(marks)},
                                                   {"rows", site::array(rows)}})
                                         .text +
                                     ");\n");
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 4) {
        std::cerr << "write_site_data: usage: write_site_data KERNELS TABLES FOLDER\n";
        return 2;
    }
    try {
        writeAll(argv[1], argv[2], argv[3]);
        return 0;
    } catch (const std::exception& e) {
        std::cerr << "write_site_data: " << e.what() << "\n";
        return 1;
    }
}
