#pragma once

/// The version of the library. Only this file holds it: the build reads it here.
#define PXROM_VERSION_STRING "0.1.0"
