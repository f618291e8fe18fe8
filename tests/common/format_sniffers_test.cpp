#include "common/format_sniffers.h"

#include "platform/file.h"
#include "support/temp_dir.h"

namespace tqv {
namespace {

class FormatSniffers : public testing::TempDirTest {};

TEST_F(FormatSniffers, TiffIsRecognisedByLittleEndianMarkOnly) {
  const std::pair<std::string, bool> cases[] = {{std::string("II*\0", 4), true},
                                                {"II", true},
                                                {std::string("MM\0*", 4), false},
                                                {"I", false},
                                                {"", false},
                                                {"ii", false}};
  for (const auto &[bytes, expected] : cases) {
    WriteFile(PathOf("FAX.TIF"), bytes);
    EXPECT_EQ(IsTiffFile(PathOf("FAX.TIF")), expected) << bytes;
  }
  EXPECT_FALSE(IsTiffFile(PathOf("MISSING.TIF")));
}

TEST_F(FormatSniffers, StartFaxMarkMustMatchExactly) {
  const std::pair<std::string, bool> cases[] = {
      {"<StartFax>\r\nbody", true}, {"<StartFax>", true}, {"<startfax>", false}, {"<StartFax", false}};
  for (const auto &[bytes, expected] : cases) {
    WriteFile(PathOf("DOC.TXT"), bytes);
    EXPECT_EQ(IsStartFaxFile(PathOf("DOC.TXT")), expected) << bytes;
  }
}

TEST_F(FormatSniffers, FileHeldByAnotherWriterIsNotRecognised) {
  WriteFile(PathOf("FAX.TIF"), "II*");
  const auto held = platform::File::OpenExclusive(PathOf("FAX.TIF"));
  ASSERT_TRUE(held.has_value());
  EXPECT_FALSE(IsTiffFile(PathOf("FAX.TIF")));
}

TEST(IsRtfFile, LooksAtTheTextAfterTheLastDot) {
  const std::pair<const char *, bool> cases[] = {
      {"letter.rtf", true},      {"C:\\DOCS\\LETTER.RTF", true}, {"letter.Rtf", true},    {"letter", false},
      {"letter.rtf.bak", false}, {"letter.rtfx", false},         {"C:\\my.rtf\\x", false}};
  for (const auto &[name, expected] : cases)
    EXPECT_EQ(IsRtfFile(name), expected) << name;
}

}  // namespace
}  // namespace tqv
