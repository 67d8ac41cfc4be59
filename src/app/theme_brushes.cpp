#include "app/theme_brushes.h"

namespace {

ThemeBrushes& brushes = *new ThemeBrushes;

}  // namespace

const ThemeBrushes& Brushes() { return brushes; }

void CreateThemeBrushes() {
  brushes.darkBackground.Reset(CreateSolidBrush(kBlack));
  brushes.lightBackground.Reset(CreateSolidBrush(kWhite));
  brushes.controlBackground.Reset(CreateSolidBrush(kBlack));
  brushes.menuItemHot.Reset(CreateSolidBrush(RGB(0x41, 0x41, 0x41)));
  brushes.menuItemSelected.Reset(CreateSolidBrush(RGB(0x45, 0x45, 0x45)));
}

void DeleteThemeBrushes() { brushes = ThemeBrushes(); }
