#include "store/project_file.h"
