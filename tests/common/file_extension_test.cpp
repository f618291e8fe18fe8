#include "common/file_extension.h"

#include <gtest/gtest.h>

namespace tqv {
namespace {

// The text after the last dot, or FAX; from an untrusted name only what cannot leave its directory.
TEST(FileExtension, LastDotAndUntrustedNamesNeverEscapeTheirDirectory) {
  EXPECT_EQ(ExtensionOf("report.final.PDF") + "|" + ExtensionOf("README") + "|" + ExtensionOf("trailing."),
            "PDF|FAX|");
  const char *escaping[] = {
      "x.\\..\\..\\WINDOWS\\evil", "x./etc/passwd", "x.C:", "a.b\tc", "a.b\x7f", "a.TX?", "a.b|c"};
  for (const char *name : escaping)
    EXPECT_EQ(SafeExtensionOf(name), "FAX") << name;
  EXPECT_EQ(SafeExtensionOf("..\\..\\evil"), "FAX") << "a separator after the last dot";
  EXPECT_EQ(SafeExtensionOf("Brief an Müller.doc"), "doc");
  EXPECT_EQ(SafeExtensionOf("x./etc/passwd", "RTF") + SafeExtensionOf("letterhead", "RTF"), "RTFRTF");
}

// A copy in the pending directory must never be found by the queue's "*.TQV": not in another case,
// not through the blanks Windows drops, not through the three characters of a short name.
TEST(FileExtension, DocumentCopiesNeverTakeTheJobFileExtension) {
  const struct {
    const char *extension;
    const char *copy;
  } cases[] = {{"TQV", "FAX"},  {"tqv", "FAX"},  {".TqV", "FAX"}, {"TQV ", "FAX"},  {"T QV", "FAX"},
               {"tqvx", "FAX"}, {"TQV1", "FAX"}, {"TQ", "TQ"},    {"XTQV", "XTQV"}, {"tif", "tif"},
               {"PDF", "PDF"},  {"TXT", "TXT"},  {"txt", "txt"},  {"", ""},         {".pdf", ".pdf"}};
  for (const auto &c : cases)
    EXPECT_EQ(DocumentCopyExtension(c.extension), c.copy) << c.extension;
}

}  // namespace
}  // namespace tqv
