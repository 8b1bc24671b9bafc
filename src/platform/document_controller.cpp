#include "platform/document_controller.h"
