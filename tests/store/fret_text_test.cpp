#include "store/fret_text.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

TEST(FretText, ATieStandsAnywhere)
{
    EXPECT_TRUE(HasTie("7^"));
    EXPECT_TRUE(HasTie("^7"));
    EXPECT_FALSE(HasTie("7"));
}

TEST(FretText, AReleaseIsFoundBeforeABendWhereverTheyStand)
{
    EXPECT_EQ(FindBend("5>"), 1U);
    EXPECT_EQ(FindBend("5>7<"), 3U);
    EXPECT_EQ(FindBend("5"), kNone);
}

TEST(FretText, AHammerOnIsFoundBeforeASlideWhereverTheyStand)
{
    EXPECT_EQ(FindConnection("3=5"), 1U);
    EXPECT_EQ(FindConnection("3=5-7"), 3U);
    EXPECT_EQ(FindConnection("35"), kNone);
}

}  // namespace
}  // namespace quillon
