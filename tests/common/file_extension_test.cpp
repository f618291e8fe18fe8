#include "common/file_extension.h"

#include <gtest/gtest.h>

namespace tqv {
namespace {

TEST(FileExtension, TakesTheTextAfterTheLastDotOrFax) {
  EXPECT_EQ(ExtensionOf("report.final.PDF"), "PDF");
  EXPECT_EQ(ExtensionOf("README"), "FAX");
  EXPECT_EQ(ExtensionOf("trailing."), "");
}

TEST(FileExtension, UntrustedNamesNeverEscapeTheirDirectory) {
  const char *escaping[] = {
      "x.\\..\\..\\WINDOWS\\evil", "x./etc/passwd", "x.C:", "a.b\tc", "a.b\x7f", "a.TX?", "a.b|c"};
  for (const char *name : escaping)
    EXPECT_EQ(SafeExtensionOf(name), "FAX") << name;
  EXPECT_EQ(SafeExtensionOf("..\\..\\evil"), "FAX") << "a separator after the last dot";
  EXPECT_EQ(SafeExtensionOf("Brief an Müller.doc"), "doc");
  EXPECT_EQ(SafeExtensionOf("x./etc/passwd", "RTF") + SafeExtensionOf("letterhead", "RTF"), "RTFRTF");
}

}  // namespace
}  // namespace tqv
