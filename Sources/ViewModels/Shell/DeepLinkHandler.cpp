#include "Shell/DeepLinkHandler.h"
