// SPDX-License-Identifier: MIT
// Prints tests/data/digests.csv for a library: that which is built here, or the file of the first
// argument.
#include <iostream>

#include "digests/digests.h"

using namespace orvgen::test;

int main(int count, char** arguments) {
    const LoadedLibrary library(count > 1 ? arguments[1] : ORVGEN_LIBRARY_FILE);
    std::cout
        << "# Digests of what every exported function answers (tests/digests/): its results over fixed\n"
           "# inputs of five kinds under all flags and rounding modes, and its statuses. They show a change\n"
           "# and say nothing of right or wrong. Written by: ./dev digests\n"
           "name";
    for (const std::string& column : digestColumns) std::cout << ',' << column;
    std::cout << '\n';
    for (const std::string& group : digestGroups()) {
        for (const DigestRow& row : digestRows(library, group)) {
            std::cout << row.name;
            for (const std::string& digest : row.digests) std::cout << ',' << digest;
            std::cout << '\n';
        }
    }
    return 0;
}
