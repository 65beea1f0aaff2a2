#pragma once

/// The version of the library, and the one place where it stands: the build reads it here.
#define PXROM_VERSION_STRING "0.1.0"
