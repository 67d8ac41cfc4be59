#include "app/speed_scale.h"

#include <algorithm>
#include <cwchar>

uint32_t SpeedScaleMax(uint32_t speed) {
  for (const uint32_t scaleMax : {1'000u, 10'000u, 15'000u, 30'000u, 60'000u, 90'000u}) {
    if (speed < scaleMax) return scaleMax;
  }
  return 100'000;
}

uint32_t PositionOfSpeed(uint32_t speed, uint32_t scaleMax) {
  const uint64_t position = uint64_t{speed} * 100 / scaleMax;
  return static_cast<uint32_t>(std::min<uint64_t>(position, 100));
}

uint32_t SpeedAtPosition(uint32_t position, uint32_t scaleMax) {
  return static_cast<uint32_t>(static_cast<float>(scaleMax) * static_cast<float>(position) / 100.0f);
}

uint32_t ParseSpeed(const std::wstring& text) { return static_cast<uint32_t>(std::wcstoul(text.c_str(), nullptr, 0)); }

std::wstring SpeedText(uint32_t speed) { return speed != 0 ? std::to_wstring(speed) : L""; }
