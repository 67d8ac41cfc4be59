// The arithmetic of the speed limit dialog, whose slider is a percentage of a scale that grows with the value. Speeds
// are in KB/s. No Windows header: also built natively.
#pragma once

#include <cstdint>
#include <string>

// The end of the scale that fits a value.
uint32_t SpeedScaleMax(uint32_t speed);

// The slider's position (0 to 100) for a value on a scale, and the value at a position.
uint32_t PositionOfSpeed(uint32_t speed, uint32_t scaleMax);
uint32_t SpeedAtPosition(uint32_t position, uint32_t scaleMax);

// The speed that a text stands for: decimal, hexadecimal after "0x", octal after "0", as far as its characters go; 0
// for a text that is no number.
uint32_t ParseSpeed(const std::wstring& text);

// The text of a speed: empty for no limit.
std::wstring SpeedText(uint32_t speed);
