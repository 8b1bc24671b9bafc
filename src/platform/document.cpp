#include "platform/document.h"
