#include "common/unique_name.h"

#include <filesystem>
#include <vector>

#include "platform/clock.h"
#include "support/temp_dir.h"

namespace tqv {
namespace {

class UniqueName : public testing::TempDirTest {
 protected:
  void PinClock(std::int64_t time) {
    platform::SetCurrentTimeSource([time] { return time; });
  }
};

TEST_F(UniqueName, NameIsTheClockInHexCountingUpPastExistingNames) {
  PinClock(0x12345678);
  EXPECT_EQ(MakeUniqueName(Dir(), "TXT"), Dir() + "\\12345678.TXT");
  EXPECT_EQ(MakeUniqueName(Dir() + "\\", ".TXT"), Dir() + "\\12345678.TXT");
  EXPECT_FALSE(Exists(PathOf("12345678.TXT")));
  WriteFile(PathOf("12345678.TQV"), "");
  WriteFile(PathOf("12345679.TQV"), "");
  EXPECT_EQ(MakeUniqueName(Dir(), "TQV"), Dir() + "\\1234567A.TQV");

  // The clock is taken as 32 bits, and the count wraps with it.
  PinClock(0x1000000ABLL);
  EXPECT_EQ(MakeUniqueName(Dir(), "TQV"), Dir() + "\\000000AB.TQV");
  PinClock(0xFFFFFFFFLL);
  WriteFile(PathOf("FFFFFFFF.TQV"), "");
  EXPECT_EQ(MakeUniqueName(Dir(), "TQV"), Dir() + "\\00000000.TQV");
}

TEST_F(UniqueName, ContinuedWalkStillChecksEveryName) {
  PinClock(0x100);
  for (const char *name : {"00000100.TQV", "00000101.TQV"})
    WriteFile(PathOf(name), "");
  EXPECT_EQ(MakeUniqueName(Dir(), "TQV"), Dir() + "\\00000102.TQV");
  // Taken behind the caller's back since the last walk.
  for (const char *name : {"00000102.TQV", "00000103.TQV"})
    WriteFile(PathOf(name), "");
  EXPECT_EQ(MakeUniqueName(Dir(), "TQV"), Dir() + "\\00000104.TQV");
  // A free clock name is always the answer, whatever earlier walks found.
  std::filesystem::remove(PathOf("00000100.TQV"));
  EXPECT_EQ(MakeUniqueName(Dir(), "TQV"), Dir() + "\\00000100.TQV");

  // The names ran ahead of the clock: a later second inside the walked stretch goes on from its
  // end, and a name freed behind it waits until the clock gets there.
  for (const char *name : {"00000100.TQV", "00000104.TQV"})
    WriteFile(PathOf(name), "");
  EXPECT_EQ(MakeUniqueName(Dir(), "TQV"), Dir() + "\\00000105.TQV");
  std::filesystem::remove(PathOf("00000102.TQV"));
  PinClock(0x101);
  EXPECT_EQ(MakeUniqueName(Dir(), "TQV"), Dir() + "\\00000105.TQV");
  PinClock(0x102);
  EXPECT_EQ(MakeUniqueName(Dir(), "TQV"), Dir() + "\\00000102.TQV");
}

TEST_F(UniqueName, VariantsFollowTheShortNameSequences) {
  struct Sequence {
    std::string wanted;
    std::vector<std::string> names;  // each returned while all before it exist
  };
  const Sequence sequences[] = {
      {"AB.DOC",
       {"AB1.DOC", "AB2.DOC", "AB3.DOC", "AB4.DOC", "AB5.DOC", "AB6.DOC", "AB7.DOC", "AB8.DOC", "AB9.DOC",
        "AB910.DOC", "AB91011.DOC", "AB910112.DOC", "AB910113.DOC"}},
      {"REPORT.DOC",
       {"REPORT1.DOC", "REPORT12.DOC", "REPORT13.DOC", "REPORT14.DOC", "REPORT15.DOC", "REPORT16.DOC",
        "REPORT17.DOC", "REPORT18.DOC", "REPORT19.DOC", "REPORT10.DOC", "REPORT11.DOC", "REPORT20.DOC"}},
      {"LONGNAME.DOC", {"LONGNAM1.DOC"}},
      {"NOEXT", {"NOEXT1", "NOEXT2"}},
  };
  for (const auto &sequence : sequences) {
    // A free name is its own variant.
    EXPECT_EQ(MakeUniqueVariant(Dir() + "\\" + sequence.wanted), Dir() + "\\" + sequence.wanted);
    WriteFile(PathOf(sequence.wanted), "");
    for (const auto &name : sequence.names) {
      EXPECT_EQ(MakeUniqueVariant(Dir() + "\\" + sequence.wanted), Dir() + "\\" + name);
      WriteFile(PathOf(name), "");
    }
  }

  // The extension comes from the file name, not from a dotted directory.
  std::filesystem::create_directory(PathOf("v1.0"));
  WriteFile(PathOf("v1.0/AB"), "");
  EXPECT_EQ(MakeUniqueVariant(PathOf("v1.0") + "\\AB"), PathOf("v1.0") + "\\AB1");
}

}  // namespace
}  // namespace tqv
