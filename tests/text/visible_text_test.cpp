#include <gtest/gtest.h>

#include "pxrom/findings.h"

namespace Tarvane::Plexura::PXROM {
namespace {

TEST(VisibleText, EscapesEachControlOfDirectionAndKeepsTheRest) {
  EXPECT_EQ(VisibleText("a\u202Eb\u2066cd\u061Ce"), "a\\u202Eb\\u2066cd\\u061Ce");
  EXPECT_EQ(VisibleText("\u202E\u202E"), "\\u202E\\u202E");
  // Other characters that begin with the same bytes.
  EXPECT_EQ(VisibleText("\u0627 \u2014 \xE2"), "\u0627 \u2014 \xE2");
}

}  // namespace
}  // namespace Tarvane::Plexura::PXROM
