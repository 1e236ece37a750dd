#include "shell/qt_text.h"
