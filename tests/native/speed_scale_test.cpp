#include "app/speed_scale.h"

#include <gtest/gtest.h>

TEST(SpeedScale, EndsAboveTheSpeed) {
  const struct {
    uint32_t speed, scaleMax, position;
  } cases[] = {{0, 1'000, 0},       {9, 1'000, 0},        {999, 1'000, 99},           {1'000, 10'000, 10},
               {9'999, 10'000, 99}, {10'000, 15'000, 66}, {42'949'673, 100'000, 100}, {UINT32_MAX, 100'000, 100}};
  for (const auto& [speed, scaleMax, position] : cases) {
    EXPECT_EQ(SpeedScaleMax(speed), scaleMax) << speed;
    EXPECT_EQ(PositionOfSpeed(speed, scaleMax), position) << speed;
  }
}

TEST(SpeedScale, EveryPositionOfEveryScaleIsAWholeShareOfIt) {
  for (const uint32_t scaleMax : {1'000u, 10'000u, 15'000u, 30'000u, 60'000u, 90'000u, 100'000u}) {
    for (uint32_t position = 0; position <= 100; ++position) {
      EXPECT_EQ(SpeedAtPosition(position, scaleMax), scaleMax / 100 * position) << scaleMax;
    }
  }
}

TEST(SpeedScale, ReadsWhatWasTyped) {
  const std::pair<const wchar_t*, uint32_t> cases[] = {{L"", 0},      {L"2500", 2500},    {L"010", 8}, {L"09", 0},
                                                       {L"0x10", 16}, {L"12abc", 12},     {L"abc", 0}, {L" 7", 7},
                                                       {L"1.5", 1},   {L"-1", UINT32_MAX}};
  for (const auto& [text, speed] : cases) EXPECT_EQ(ParseSpeed(text), speed) << testing::PrintToString(text);
  EXPECT_EQ(SpeedText(0), L"") << "no limit";
}
