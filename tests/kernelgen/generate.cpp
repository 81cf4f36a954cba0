// The kernel compiler with the test's own flows.
#include "kernelgen/command.h"
#include "small_flows.h"

int main(int argc, char** argv) {
    return orvgen::kernelgen::runCommand(argc, argv, orvgen::test::smallFamilies());
}
