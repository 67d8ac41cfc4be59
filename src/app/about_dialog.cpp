#include "app/about_dialog.h"

void AboutDialog() {}
