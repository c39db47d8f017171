#include "store/note_codes.h"

#include "store/sign_codes.h"

#include <gtest/gtest.h>

#include <iterator>

namespace quillon {
namespace {

// Tune files have these numbers.
TEST(NoteCodes, AreCountedFromTheShortestNoteUp)
{
    const int notes[] = {kTripletSixteenth, kSixteenth,     kTripletEighth,
                         kEighth,           kDottedEighth,  kTripletQuarter,
                         kQuarter,          kDottedQuarter, kHalf,
                         kDottedHalf,       kWhole};
    for (int i = 0; i < kNoteValues; ++i)
        EXPECT_EQ(notes[i], i + 1);
    const int rests[] = {kHalfRest,          kWholeRest,  kTripletSixteenthRest, kSixteenthRest,
                         kTripletEighthRest, kEighthRest, kTripletQuarterRest,   kQuarterRest};
    for (int i = 0; i < kRests; ++i)
        EXPECT_EQ(rests[i], 92 + i);
    EXPECT_EQ(kHead, 999);
}

TEST(BeamShapes, AreCountedFrom0)
{
    const BeamShape shapes[] = {kNoBeam,           kSixteenthFlag, kBothBeams,          kBackStub,
                                kEighthFlag,       kMainBeam,      kDottedMainBeam,     kDotAlone,
                                kDottedEighthFlag, kForwardStub,   kMainBeamForwardStub};
    for (int i = 0; i < static_cast<int>(std::size(shapes)); ++i)
        EXPECT_EQ(shapes[i], i);
}

TEST(BeamShapes, ThreeOfThemBearADot)
{
    for (int code = -1; code <= 12; ++code)
        EXPECT_EQ(HasDot(code), code == 6 || code == 7 || code == 8) << code;
}

TEST(SignCodes, AreTheTextsOfTuneFiles)
{
    EXPECT_EQ(kPlainBar, "93");
    EXPECT_EQ(kDoubleBar, "94");
    EXPECT_EQ(kBeginDoubleBar, "95");
    EXPECT_EQ(kRepeatStart, "98");
    EXPECT_EQ(kRepeatEnd, "99");
    EXPECT_EQ(kDs, "81");
    EXPECT_EQ(kDc, "82");
    EXPECT_EQ(kFine, "83");
    EXPECT_EQ(kCoda, "84");
    EXPECT_EQ(kDcAlCoda, "85");
    EXPECT_EQ(kDcAlFine, "86");
    EXPECT_EQ(kSign, "87");
    EXPECT_EQ(kDsAlCoda, "88");
    EXPECT_EQ(kDsAlFine, "89");
    EXPECT_EQ(kLineBreak, "NL");
}

TEST(TimeSignatures, CountAnyLowerFigureBut4As8)
{
    EXPECT_EQ(TicksPerBeat(4), 12);
    EXPECT_EQ(TicksPerBeamGroup(4), 12);
    for (int unit : {-4, 0, 2, 8, 16}) {
        EXPECT_EQ(TicksPerBeat(unit), 6) << unit;
        EXPECT_EQ(TicksPerBeamGroup(unit), 18) << unit;
    }
}

TEST(NoteValues, HaveTheTicksAndSpacingOfTheirCode)
{
    const int ticks[] = {2, 3, 4, 6, 9, 8, 12, 18, 24, 36, 48};
    const int spacing[] = {2, 2, 2, 3, 3, 3, 4, 4, 8, 12, 16};
    for (int code = 1; code <= 11; ++code) {
        EXPECT_EQ(TicksOf(code), ticks[code - 1]) << code;
        EXPECT_EQ(SpacingOf(code), spacing[code - 1]) << code;
        EXPECT_EQ(ValueOf(code), code);
    }
    const int restTicks[] = {24, 48, 2, 3, 4, 6, 8, 12};  // 92 to 99
    const int restSpacing[] = {8, 16, 2, 2, 2, 3, 3, 4};
    const int restValue[] = {9, 11, 1, 2, 3, 4, 6, 7};
    for (int code = 92; code <= 99; ++code) {
        EXPECT_EQ(TicksOf(code), restTicks[code - 92]) << code;
        EXPECT_EQ(SpacingOf(code), restSpacing[code - 92]) << code;
        EXPECT_EQ(ValueOf(code), restValue[code - 92]) << code;
    }
    for (int code : {-1, 0, 12, 91, 100, kHead}) {
        EXPECT_EQ(TicksOf(code), 0) << code;
        EXPECT_EQ(SpacingOf(code), 0) << code;
        EXPECT_EQ(ValueOf(code), 0) << code;
    }
}

TEST(NoteValues, HaveTheWidthOfTheirCodeOnThePage)
{
    const int width[] = {2, 2, 2, 2, 2, 2, 3, 3, 5, 8, 12};
    for (int code = 1; code <= kNoteValues; ++code)
        EXPECT_EQ(PageWidthOf(code), width[code - 1]) << code;
    const int restWidth[] = {5, 12, 3, 3, 3, 3, 3, 3};  // 92 to 99
    for (int code = kHalfRest; code <= kQuarterRest; ++code)
        EXPECT_EQ(PageWidthOf(code), restWidth[code - kHalfRest]) << code;
    for (int code : {-1, 0, 12, 91, 100, kHead})
        EXPECT_EQ(PageWidthOf(code), 0) << code;
}

TEST(NoteValues, ThreeOfSixCodesMakeATriplet)
{
    for (int code = -1; code <= kHead; ++code) {
        const bool triplet =
            code == 1 || code == 3 || code == 6 || code == 94 || code == 96 || code == 98;
        EXPECT_EQ(IsTriplet(code), triplet) << code;
    }
}

TEST(NoteValues, HaveTheRestOfTheirButton)
{
    const int rests[] = {kTripletSixteenthRest,
                         kSixteenthRest,
                         kTripletEighthRest,
                         kEighthRest,
                         kEighthRest,
                         kTripletQuarterRest,
                         kQuarterRest,
                         kQuarterRest,
                         kHalfRest,
                         kHalfRest,
                         kWholeRest};
    for (int value = 1; value <= 11; ++value)
        EXPECT_EQ(RestCodeOf(value), rests[value - 1]) << value;
    EXPECT_EQ(RestCodeOf(0), 0);
    EXPECT_EQ(RestCodeOf(12), 0);
}

TEST(NoteValues, ARestOfTheDottedQuarterCounts12TicksAndItsNote18)
{
    EXPECT_EQ(TicksOf(RestCodeOf(8)), 12);
    EXPECT_EQ(TicksOf(8), 18);
}

}  // namespace
}  // namespace quillon
