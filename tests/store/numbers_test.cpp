#include "store/numbers.h"

#include "support/faults.h"

namespace quillon {
namespace {

TEST(Rounding, GoesToTheNearestInteger)
{
    EXPECT_EQ(Round(2.4999999999), 2);
    EXPECT_EQ(Round(2.5000000001), 3);
    EXPECT_EQ(Round(-2.4), -2);
    EXPECT_EQ(Round(-2.6), -3);
}

TEST(Rounding, TakesTiesToTheEvenInteger)
{
    EXPECT_EQ(Round(0.5), 0);
    EXPECT_EQ(Round(1.5), 2);
    EXPECT_EQ(Round(2.5), 2);
    EXPECT_EQ(Round(-0.5), 0);
    EXPECT_EQ(Round(-1.5), -2);
    EXPECT_EQ(Round(-2.5), -2);
    for (int k = -3000; k <= 3000; ++k) {
        const int rounded = Round(k + 0.5);
        EXPECT_EQ(rounded % 2, 0);
        EXPECT_TRUE(rounded == k || rounded == k + 1);
    }
}

TEST(Rounding, PastAnIntIsAnOverflow)
{
    EXPECT_EQ(Round(2147483647.4), 2147483647);
    EXPECT_EQ(Round(-2147483648.5), -2147483647 - 1);
    EXPECT_FAULT(Round(2147483647.5), Overflow);
    EXPECT_FAULT(Round(-1e300), Overflow);
    EXPECT_FAULT(Round(std::numeric_limits<double>::infinity()), Overflow);
    EXPECT_FAULT(Round(std::numeric_limits<double>::quiet_NaN()), Overflow);
}

TEST(Rounding, FloorGoesDown)
{
    EXPECT_EQ(Floor(2.9), 2);
    EXPECT_EQ(Floor(-2.1), -3);
    EXPECT_FAULT(Floor(2147483648.0), Overflow);
}

TEST(IntegerDivision, RoundsBothOperandsFirstAndCutsTheQuotient)
{
    EXPECT_EQ(IntegerDivide(7, 2), 3);
    EXPECT_EQ(IntegerDivide(-7, 2), -3);
    EXPECT_EQ(IntegerDivide(7, -2), -3);
    EXPECT_EQ(IntegerDivide(7.5, 2.5), 4);  // 8 by 2
    EXPECT_EQ(IntegerDivide(6.5, 3.5), 1);  // 6 by 4
}

TEST(IntegerDivision, ByWhatRoundsToZeroIsADivisionByZero)
{
    EXPECT_FAULT(IntegerDivide(1, 0), DivisionByZero);
    EXPECT_FAULT(IntegerDivide(1, 0.5), DivisionByZero);
    EXPECT_FAULT(IntegerDivide(1, -0.3), DivisionByZero);
}

TEST(IntegerDivision, WhoseQuotientIsPastAnIntIsAnOverflow)
{
    EXPECT_FAULT(IntegerDivide(-2147483648.0, -1), Overflow);
}

TEST(SixteenBits, HoldTheirWholeRange)
{
    EXPECT_EQ(Int16(32767), 32767);
    EXPECT_EQ(Int16(-32768), -32768);
    EXPECT_EQ(Int16(), 0);
}

TEST(SixteenBits, OverflowOnEveryWayIn)
{
    EXPECT_FAULT(Int16(32768), Overflow);
    EXPECT_FAULT(Int16(-32769), Overflow);
    Int16 most = 32767;
    EXPECT_FAULT(++most, Overflow);
    EXPECT_FAULT(most += 1, Overflow);
    EXPECT_FAULT(most = most + 1, Overflow);
    EXPECT_EQ(most, 32767) << "a failed assignment changes nothing";
    Int16 least = -32768;
    EXPECT_FAULT(--least, Overflow);
    EXPECT_FAULT(least -= 1, Overflow);
}

TEST(Val, ReadsTheLeadingNumber)
{
    EXPECT_EQ(Val("12"), 12);
    EXPECT_EQ(Val("12abc"), 12);
    EXPECT_EQ(Val("-7"), -7);
    EXPECT_EQ(Val("+7"), 7);
    EXPECT_EQ(Val(".75"), 0.75);
    EXPECT_EQ(Val("14."), 14);
    EXPECT_EQ(Val("1.2.3"), 1.2);
    EXPECT_EQ(Val("5-3"), 5);
    EXPECT_EQ(Val("007"), 7);
}

TEST(Val, IsZeroWithoutANumber)
{
    for (const char* text :
         {"", " ", "abc", "-", "+", ".", "-.", "--5", "x12", "e5", "\"5\"", "(3)"})
        EXPECT_EQ(Val(text), 0) << text;
}

TEST(Val, SkipsBlanksEverywhere)
{
    EXPECT_EQ(Val("  1 2 . 5"), 12.5);
    EXPECT_EQ(Val("- 3"), -3);
    EXPECT_EQ(Val("\t4\r\n2"), 42);
}

TEST(Val, TakesAnExponentOfEitherLetter)
{
    EXPECT_EQ(Val("1e3"), 1000);
    EXPECT_EQ(Val("1d3"), 1000);
    EXPECT_EQ(Val("2E-1"), 0.2);
    EXPECT_EQ(Val("1D+2x"), 100);
    EXPECT_EQ(Val("5e"), 5);
    EXPECT_EQ(Val("5e+"), 5);
    EXPECT_EQ(Val("5ex"), 5);
}

TEST(Val, PastADoubleIsAnOverflow)
{
    EXPECT_FAULT(Val("1e400"), Overflow);
    EXPECT_FAULT(Val("-1e400"), Overflow);
    EXPECT_FAULT(Val(std::string(400, '9')), Overflow);
    EXPECT_EQ(Val("1e-400"), 0);
    EXPECT_EQ(Val("0e999"), 0);
}

TEST(Val, EndsAtASecondPointForGood)
{
    EXPECT_FAULT(Val(std::string(400, '9') + ".5.5e-9"), Overflow);
}

TEST(Val, OutOfRangeIsTinyOnlyWithANegativeExponentOrWithoutADigitButZero)
{
    for (const char* text : {"0.00e999", "-0e999", "9e-999", "0.1e-999"})
        EXPECT_EQ(Val(text), 0) << text;
    for (const char* text : {"0.01e999", "1.0e999", "9d+999"})
        EXPECT_FAULT(Val(text), Overflow);
}

TEST(Single, HoldsTheRangeOfASingleWithItsEnds)
{
    constexpr double kMost = std::numeric_limits<float>::max();
    EXPECT_EQ(Single(kMost), std::numeric_limits<float>::max());
    EXPECT_EQ(Single(-kMost), -std::numeric_limits<float>::max());
    EXPECT_FAULT(Single(kMost * 1.01), Overflow);
    EXPECT_FAULT(Single(-kMost * 1.01), Overflow);
    EXPECT_FAULT(Single(std::numeric_limits<double>::quiet_NaN()), Overflow);
}

TEST(Val, WithoutASignTakesNoSignedNumber)
{
    EXPECT_EQ(ValUnsigned("-5"), 0);
    EXPECT_EQ(ValUnsigned("+5"), 0);
    EXPECT_EQ(ValUnsigned(" 12^"), 12);
}

TEST(NumberText, IsTheShortestThatReadsBack)
{
    EXPECT_EQ(NumberText(10.0), "10");
    EXPECT_EQ(NumberText(14.5), "14.5");
    EXPECT_EQ(NumberText(-0.25), "-0.25");
    EXPECT_EQ(NumberText(.7F), "0.7");
    EXPECT_EQ(NumberText(8.25F), "8.25");
}

TEST(Faults, SayTheirNumberAndWords)
{
    EXPECT_STREQ(Fault(Error::SubscriptOutOfRange).what(),
                 "run-time error 9: subscript out of range");
    EXPECT_STREQ(Fault(Error::Overflow).what(), "run-time error 6: overflow");
    EXPECT_STREQ(Fault(Error::InvalidProcedureCall).what(),
                 "run-time error 5: invalid procedure call");
    EXPECT_STREQ(Fault(Error::DivisionByZero).what(), "run-time error 11: division by zero");
    EXPECT_STREQ(Fault(Error::FileNotFound).what(), "run-time error 53: file not found");
    EXPECT_STREQ(Fault(Error::InputPastEnd).what(), "run-time error 62: input past end of file");
    EXPECT_STREQ(Fault(Error::PathFileAccess).what(), "run-time error 75: path/file access error");
    EXPECT_STREQ(Fault(Error::ObjectRequired).what(), "run-time error 424: object required");
    EXPECT_STREQ(Fault(Error::ControlArrayElement).what(),
                 "run-time error 340: control array element does not exist");
    EXPECT_STREQ(Fault(Error::InvalidPropertyValue).what(),
                 "run-time error 380: invalid property value");
    EXPECT_EQ(Fault(Error::SubscriptOutOfRange, "No Coda follows measure 12.").Explanation(),
              "No Coda follows measure 12.");
}

}  // namespace
}  // namespace quillon
