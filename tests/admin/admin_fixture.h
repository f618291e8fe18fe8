// An installation with one administrator, ann, who has the installation's cover page and template
// (entry 0), a cover page Memo and a template Old that is her default; and bob, who may fax but
// not administer. Texts of the string file read "E<number>" with their value, so a test sees
// which text a request chose.
#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "host/entry_points.h"
#include "support/installation.h"

namespace tqv::testing {

class AdminTest : public InstallationTest {
 protected:
  void SetUp() override {
    InstallationTest::SetUp();
    std::string strings = "[English]\r\nT670=[covers]\r\nT900=OK:\r\nT901=FAILED:\r\n";
    for (int number : {800, 801, 802, 803, 804, 806, 807, 810, 812, 814, 820, 821, 822, 823, 824, 825, 828})
      strings += "T" + std::to_string(number) + "=E" + std::to_string(number) + "\r\n";
    for (int number : {809, 811, 813, 815, 816, 817})
      strings += "T" + std::to_string(number) + "=E" + std::to_string(number) + " %d\r\n";
    for (int number : {818, 904, 905})
      strings += "T" + std::to_string(number) + "=E" + std::to_string(number) + " %s\r\n";
    WriteFile(ProductDir() + "/tqstring.ini", strings);

    std::filesystem::create_directories(CoverDir());
    for (const char *name : {"std.rtf", "memo.rtf", "tmpl.rtf", "old.rtf"})
      WriteFile(CoverDir() + "/" + name, "{\\rtf}");
    WriteFile(ProductDir() + "/tqvadmin.ini",
              "[Recipient List]\r\nann=Ann\r\nbob=Bob\r\n[Recipients Properties]\r\nann=7425\r\nbob=1\r\n"
              "[ann]\r\nC_00000=COVERPGE," +
                  CoverDir() + "/std.rtf\r\nC_00001=Memo," + CoverDir() + "/memo.rtf\r\nT_00000=TEMPLATE," +
                  CoverDir() + "/tmpl.rtf\r\nT_00001=Old," + CoverDir() +
                  "/old.rtf\r\nDefaultTemplate=old\r\n");
    ASSERT_EQ(host::Initialise(0, ""), 0);
  }

  std::string CoverDir() const { return ProductDir() + "/COVER"; }
  std::string AttachDir() const { return ProductDir() + "/ATTACH"; }
  std::string MessageText() const { return PathOf("tqvmesg.tmp"); }
  std::string Database() const { return ReadFile(ProductDir() + "/tqvadmin.ini"); }

  // A file attached to the request, as the conversion extracted it.
  std::string Attach(std::string_view name, std::string_view bytes) const {
    const std::string path = PathOf(name);
    WriteFile(path, bytes);
    return path;
  }

  // The names in a directory, sorted.
  static std::vector<std::string> FilesIn(const std::string &directory) {
    std::vector<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(directory))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }

  // The one reply a request left in the gateway-in directory, taken out of it; "(none)" or
  // "(several)" when the request did not leave exactly one.
  std::string TakeReply() const {
    std::vector<std::filesystem::path> paths;
    for (const auto &entry : std::filesystem::directory_iterator(GatewayIn()))
      if (entry.is_regular_file()) paths.push_back(entry.path());
    if (paths.size() != 1) return paths.empty() ? "(none)" : "(several)";
    std::string reply = ReadFile(paths[0].string());
    std::filesystem::remove(paths[0]);
    return reply;
  }
  // The reply's subject, and " | " and the error text of its listing when it has one.
  static std::string Outcome(const std::string &reply) {
    const std::size_t subject = reply.find("Subject:");
    const std::size_t error = reply.find("###ERROR: ");
    std::string outcome = reply.substr(subject + 8, reply.find("\r\n", subject) - subject - 8);
    if (error != std::string::npos)
      outcome += " | " + reply.substr(error + 10, reply.find("\r\n\r\n[covers]", error) - error - 10);
    return outcome;
  }
};

}  // namespace tqv::testing
