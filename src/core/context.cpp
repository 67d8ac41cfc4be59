#include "core/context.h"

AppContext& app = *new AppContext;
