// pxrom: fitted response surfaces on the command line. It uses only the library's public headers.

#include "run.h"

int main(int argc, char** argv) { return pxrom_command::Run(argc, argv); }
