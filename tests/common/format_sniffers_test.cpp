#include "common/format_sniffers.h"

#include "platform/file.h"
#include "support/temp_dir.h"

namespace tqv {
namespace {

class FormatSniffers : public testing::TempDirTest {};

TEST_F(FormatSniffers, ContentMarksMustMatchExactly) {
  const struct {
    bool (*sniff)(std::string_view);
    std::string bytes;
    bool expected;
  } cases[] = {{IsTiffFile, std::string("II*\0", 4), true},  {IsTiffFile, "II", true},
               {IsTiffFile, std::string("MM\0*", 4), false}, {IsTiffFile, "I", false},
               {IsStartFaxFile, "<StartFax>\r\nbody", true}, {IsStartFaxFile, "<startfax>", false},
               {IsStartFaxFile, "<StartFax", false}};
  for (const auto &c : cases) {
    WriteFile(PathOf("FAX.DAT"), c.bytes);
    EXPECT_EQ(c.sniff(PathOf("FAX.DAT")), c.expected) << c.bytes;
  }
  EXPECT_FALSE(IsTiffFile(PathOf("MISSING.TIF")));

  // A file still held by its writer is not recognised yet.
  WriteFile(PathOf("FAX.TIF"), "II*");
  const auto held = platform::File::OpenExclusive(PathOf("FAX.TIF"));
  ASSERT_TRUE(held.has_value());
  EXPECT_FALSE(IsTiffFile(PathOf("FAX.TIF")));
}

TEST(IsRtfFile, LooksAtTheTextAfterTheLastDot) {
  const std::pair<const char *, bool> cases[] = {{"letter.rtf", true},
                                                 {"C:\\DOCS\\LETTER.RTF", true},
                                                 {"letter", false},
                                                 {"letter.rtf.bak", false},
                                                 {"C:\\my.rtf\\x", false}};
  for (const auto &[name, expected] : cases)
    EXPECT_EQ(IsRtfFile(name), expected) << name;
}

}  // namespace
}  // namespace tqv
