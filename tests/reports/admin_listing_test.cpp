#include "reports/admin_listing.h"

#include <gtest/gtest.h>

#include <string>

#include "reports/report_fixture.h"

namespace tqv {
namespace {

class AdminListing : public testing::ReportTest {
 protected:
  void WriteDatabase(const std::string &lines) const { WriteFile(ProductDir() + "/tqvadmin.ini", lines); }
};

TEST_F(AdminListing, ListsSavedFilesWithSizesDefaultsResolutionAndHeader) {
  WriteFile(PathOf("letter.rtf"), std::string(512, 'l'));
  WriteFile(PathOf("scan.tif"), "II*");
  WriteDatabase(
      "[Recipients Properties]\r\nann=16\r\n[FaxHeaders]\r\nann=From Ann\r\n[ann]\r\nC_00000=Letter," +
      PathOf("letter.rtf") + "\r\nC_00001=Gone," + PathOf("gone.rtf") +
      "\r\nDefaultCover=letter\r\nA_00000=Scan," + PathOf("scan.tif") +
      "\r\nA_00001=Broken\r\nA_00002=After," + PathOf("scan.tif") + "\r\n");
  // Templates: none. Attachments: the list ends at the entry without a comma. Names stand in 30
  // columns and two spaces; resolution in 15, header in 50, each with two more.
  const auto entry = [](std::string name, std::size_t width, const std::string &value) {
    name.resize(width, ' ');
    return "    " + name + value + "\r\n";
  };
  EXPECT_EQ(FormatAdminListing("ann", "Unknown command"),
            "###ERROR: Unknown command\r\n\r\nCovers:\r\n" + entry("Letter", 32, "512 bytes") +
                entry("Gone", 32, "(missing)") + "\r\nDefault cover:\r\n" + entry("letter", 32, "512 bytes") +
                "\r\n\r\nTemplates:\r\n\r\nDefault template:\r\n\r\n\r\nAttachments:\r\n" +
                entry("Scan", 32, "3 bytes") + "\r\n\r\nResolution:\r\n" + entry("Fine", 17, "") +
                "\r\nHeader:\r\n" + entry("From Ann", 52, "") + "\r\n");

  WriteDatabase("[Recipients Properties]\r\nbob=1\r\n");
  EXPECT_EQ(FormatAdminListing("bob", ""),
            "Covers:\r\n\r\nDefault cover:\r\n\r\n\r\nTemplates:\r\n\r\nDefault template:\r\n"
            "\r\n\r\nAttachments:\r\n\r\n\r\nResolution:\r\n" +
                entry("Standard", 17, "") + "\r\nHeader:\r\n\r\n");
}

// Entry lines stop once the text reaches the mark; the sections after the list still follow.
TEST_F(AdminListing, LongListsStopAtTheMarkAndTheListingStaysInItsBuffer) {
  std::string lines = "[ann]\r\n";
  for (int i = 100000; i < 100200; ++i)
    lines += "A_" + std::to_string(i).substr(1) + "=" + std::string(40, 'n') + "," + PathOf("none") + "\r\n";
  WriteDatabase(lines);
  const std::string listing = FormatAdminListing("ann", std::string(600, 'e'));
  const std::size_t resolution = listing.find("(missing)\r\n\r\n\r\nResolution:\r\n");
  EXPECT_GE(resolution, kAdminListingFullMark - 9);
  EXPECT_LT(resolution, kAdminListingFullMark + 40);
  EXPECT_TRUE(listing.ends_with("Header:\r\n\r\n"));
}

}  // namespace
}  // namespace tqv
