// Resource ids. Included by C++ sources and by the resource script.
#pragma once

#define KEL_PROJECT_NAME 100
#define KEL_TOOLBOX_BITMAP 102
#define KEL_REGISTRATION_SCRIPT 106
