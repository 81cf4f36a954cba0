// Prints the page of docs/accuracy.md.
#include <iostream>

#include "accuracy_page.h"

int main() {
    std::cout << orvgen::test::accuracyPage();
    return 0;
}
