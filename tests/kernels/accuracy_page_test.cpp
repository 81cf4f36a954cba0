// The page says what is so.
#include "accuracy_page.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

TEST(AccuracyPage, IsWhatIsMeasured) {
    std::ifstream file(ORVGEN_ACCURACY_PAGE);
    std::stringstream text;
    text << file.rdbuf();
    EXPECT_EQ(text.str(), orvgen::test::accuracyPage()) << "write it again: ./dev accuracy";
}
