#include "app/speed_scale.h"

#include <gtest/gtest.h>

TEST(SpeedScale, EndsAboveTheSpeed) {
  const struct {
    uint32_t speed, scaleMax;
  } cases[] = {{0, 1'000},       {999, 1'000},     {1'000, 10'000},   {9'999, 10'000},    {10'000, 15'000},
               {14'999, 15'000}, {15'000, 30'000}, {29'999, 30'000},  {30'000, 60'000},   {59'999, 60'000},
               {60'000, 90'000}, {89'999, 90'000}, {90'000, 100'000}, {100'000, 100'000}, {UINT32_MAX, 100'000}};
  for (const auto& test : cases) EXPECT_EQ(SpeedScaleMax(test.speed), test.scaleMax) << test.speed;
}

TEST(SpeedScale, PositionIsAPercentage) {
  const struct {
    uint32_t speed, scaleMax, position;
  } cases[] = {{0, 1'000, 0},
               {9, 1'000, 0},
               {10, 1'000, 1},
               {999, 1'000, 99},
               {2'500, 10'000, 25},
               {1'000, 10'000, 10},
               {14'999, 15'000, 99},
               {100'000, 100'000, 100},
               {42'949'673, 100'000, 100},
               {UINT32_MAX, 100'000, 100}};
  for (const auto& test : cases) EXPECT_EQ(PositionOfSpeed(test.speed, test.scaleMax), test.position) << test.speed;
}

TEST(SpeedScale, EveryPositionOfEveryScaleIsAWholeShareOfIt) {
  for (const uint32_t scaleMax : {1'000u, 10'000u, 15'000u, 30'000u, 60'000u, 90'000u, 100'000u}) {
    for (uint32_t position = 0; position <= 100; ++position) {
      EXPECT_EQ(SpeedAtPosition(position, scaleMax), scaleMax / 100 * position) << scaleMax;
    }
  }
}

TEST(SpeedScale, ReadsWhatWasTyped) {
  const struct {
    const wchar_t* text;
    uint32_t speed;
  } cases[] = {{L"", 0},       {L"0", 0},     {L"2500", 2500},     {L"010", 8},
               {L"09", 0},     {L"0x10", 16}, {L"0X1f", 31},       {L"0x", 0},
               {L"12abc", 12}, {L"abc", 0},   {L" 7", 7},          {L"+7", 7},
               {L"7 8", 7},    {L"1.5", 1},   {L"-1", UINT32_MAX}, {L"999999999", 999'999'999}};
  for (const auto& test : cases) EXPECT_EQ(ParseSpeed(test.text), test.speed) << testing::PrintToString(test.text);
}

TEST(SpeedScale, NoLimitHasNoText) {
  EXPECT_EQ(SpeedText(0), L"");
  EXPECT_EQ(SpeedText(100'000), L"100000");
}

// 4,194,304 KB/s is one byte more than the counter holds, and must not become a limit of nothing.
