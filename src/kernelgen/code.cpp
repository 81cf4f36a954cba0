#include "code.h"

namespace orvgen::kernelgen {

bool isLoad(Opcode op) { return op <= Opcode::Zero; }

bool isStore(Opcode op) { return op >= Opcode::StoreSS && op <= Opcode::StoreZero8; }

bool isCommutative(Opcode op) {
    switch (op) {
        case Opcode::AddSS:
        case Opcode::MulSS:
        case Opcode::AddSD:
        case Opcode::MulSD:
        case Opcode::AddPS:
        case Opcode::MulPS:
        case Opcode::AddPD:
        case Opcode::MulPD:
        case Opcode::XorPS:
            return true;
        default:
            return false;
    }
}

int resultSize(Opcode op) {
    switch (op) {
        case Opcode::LoadSS:
        case Opcode::AddSS:
        case Opcode::SubSS:
        case Opcode::MulSS:
        case Opcode::Narrow:
            return 4;
        case Opcode::LoadSD:
        case Opcode::AddSD:
        case Opcode::SubSD:
        case Opcode::MulSD:
        case Opcode::Widen:
            return 8;
        default:
            return 16;
    }
}

int accessSize(Opcode op) {
    switch (op) {
        case Opcode::LoadSS:
        case Opcode::SpreadSS:
        case Opcode::AddSS:
        case Opcode::SubSS:
        case Opcode::MulSS:
        case Opcode::Widen:
        case Opcode::StoreSS:
        case Opcode::StoreZero4:
            return 4;
        case Opcode::LoadSD:
        case Opcode::SpreadSD:
        case Opcode::LoadHalf:
        case Opcode::LoadHalves:
        case Opcode::AddSD:
        case Opcode::SubSD:
        case Opcode::MulSD:
        case Opcode::Narrow:
        case Opcode::StoreSD:
        case Opcode::StoreLow:
        case Opcode::StoreHigh:
        case Opcode::StoreZero8:
            return 8;
        case Opcode::Zero:
            return 0;
        default:
            return 16;
    }
}

}  // namespace orvgen::kernelgen
