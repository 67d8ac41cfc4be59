#include "app/context.h"

AppContext& app = *new AppContext;
