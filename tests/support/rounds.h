#pragma once

/// How many rounds a test of random cases has that usually has `all`: a tenth with --tenth, which
/// is for emulators.
int Rounds(int all);
