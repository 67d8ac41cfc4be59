#include "app/delete_app_data.h"

void DeleteAppData() {}
