// The numbers of the resources. Included by C++ sources and by the resource script.
#pragma once

#define KEL_CHECK_ICON 1
