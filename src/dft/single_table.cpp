#include "single_table.h"

#include <stdexcept>

namespace orvgen::dft {

namespace {

// A number stands for the row of that length, and for the block itself where there is none.
struct Term {
    Part part;
    Term(std::size_t length) : part(singleDecomposition(length)) {}
    Term(int length) : Term(static_cast<std::size_t>(length)) {}
    Term(Part p) : part(std::move(p)) {}
};

Part GT(const Term& first, const Term& second) { return goodThomas(first.part, second.part); }
Part CT(const Term& first, const Term& second, std::vector<std::size_t> columns = {}) {
    return cooleyTukey(first.part, second.part, std::move(columns));
}

}  // namespace

// Which factor runs first is fixed for every length, for it decides the rounding. At 18, 50 and 54
// column c begins with x[2 c], so that the two-point stage stands inside the odd part and the
// twiddles have the denominator 9, 25 and 27.
Part singleDecomposition(std::size_t length) {
    switch (length) {
        case 6:
            return GT(2, 3);
        case 8:
            return CT(4, 2);
        case 9:
            return CT(3, 3);
        case 10:
            return GT(5, 2);
        case 12:
            return GT(4, 3);
        case 14:
            return GT(2, 7);
        case 15:
            return GT(5, 3);
        case 16:
            return CT(4, 4);
        case 18:
            return CT(GT(3, 2), 3, {0, 2, 4});
        case 20:
            return GT(4, 5);
        case 21:
            return GT(7, 3);
        case 22:
            return GT(2, 11);
        case 24:
            return CT(4, GT(3, 2));
        case 25:
            return CT(5, 5);
        case 26:
            return GT(13, 2);
        case 27:
            return CT(9, 3);
        case 28:
            return GT(4, 7);
        case 30:
            return GT(10, 3);
        case 32:
            return CT(4, 8);
        case 33:
            return GT(11, 3);
        case 34:
            return GT(2, 17);
        case 35:
            return GT(5, 7);
        case 36:
            return GT(4, 9);
        case 38:
            return GT(2, 19);
        case 39:
            return GT(13, 3);
        case 40:
            return CT(10, 4);
        case 42:
            return GT(GT(7, 2), 3);
        case 44:
            return GT(4, 11);
        case 45:
            return CT(15, 3);
        case 46:
            return GT(23, 2);
        case 48:
            return CT(4, GT(3, 4));
        case 49:
            return CT(7, 7);
        case 50:
            return CT(10, 5, {0, 2, 4, 6, 8});
        case 51:
            return GT(17, 3);
        case 52:
            return GT(4, 13);
        case 54:
            return CT(GT(2, 9), 3, {0, 2, 4});
        case 55:
            return GT(5, 11);
        case 56:
            return CT(GT(7, 2), 4);
        case 57:
            return GT(19, 3);
        case 58:
            return GT(2, 29);
        case 60:
            return CT(4, 15);
        case 62:
            return GT(31, 2);
        case 63:
            return GT(9, 7);
        case 64:
            return CT(8, 8);
        default:
            return block(length);
    }
}

}  // namespace orvgen::dft
