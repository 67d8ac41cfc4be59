#include "app/speed_scale.h"

#include <gtest/gtest.h>

TEST(SpeedScale, EndsAboveTheSpeed) {
  const std::tuple<uint32_t, uint32_t, uint32_t> cases[] = {
      {0, 1'000, 0},        {9, 1'000, 0},           {999, 1'000, 99},          {1'000, 10'000, 10},
      {14'999, 15'000, 99}, {100'000, 100'000, 100}, {42'949'673, 100'000, 100}};
  for (const auto& [speed, scaleMax, position] : cases) {
    EXPECT_EQ(SpeedScaleMax(speed), scaleMax) << speed;
    EXPECT_EQ(PositionOfSpeed(speed, scaleMax), position) << speed;
  }
  for (uint32_t position = 0; position <= 100; ++position) EXPECT_EQ(SpeedAtPosition(position, 15'000), position * 150);
}
