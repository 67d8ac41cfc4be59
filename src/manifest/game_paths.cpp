#include "manifest/game_paths.h"

GamePaths& gamePaths = *new GamePaths;

bool DetectGameInstallations(bool) {
  return false;
}
