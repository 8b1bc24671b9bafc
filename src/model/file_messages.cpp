#include "model/file_messages.h"
