#include "NotificationCenter.h"
