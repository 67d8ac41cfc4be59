#include "app/speed_limit_dialog.h"

void SpeedLimitDialog() {}
