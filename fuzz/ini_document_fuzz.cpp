// Any bytes as an INI file: every query answers, and an edit that was accepted reads back after
// the file is written and parsed again, with every other key where it was.
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz_support.h"
#include "platform/ini_document.h"

namespace {

using tqv::fuzz::Fail;

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char *>(data), size);
  tqv::platform::IniDocument document(bytes);

  std::size_t keys = 0;
  for (const std::string_view section : document.SectionNames())
    for (const std::string_view key : document.KeyNames(section)) {
      ++keys;
      if (!document.Value(section, key)) Fail("a listed key without a value");
    }

  // Edit the first key of the first section (or make one) and read it back from the written bytes.
  const auto sections = document.SectionNames();
  const std::string section = sections.empty() ? "Fuzz" : std::string(sections.front());
  const auto names = document.KeyNames(section);
  const std::string key = names.empty() ? "Key" : std::string(names.front());
  if (!document.SetValue(section, key, "value 42")) return 0;
  const tqv::platform::IniDocument reread(document.Serialize());
  const auto value = reread.Value(section, key);
  if (!value || *value != "value 42") Fail("an accepted edit does not read back");

  std::size_t rereadKeys = 0;
  for (const std::string_view other : reread.SectionNames())
    rereadKeys += reread.KeyNames(other).size();
  if (rereadKeys != keys + (names.empty() ? 1 : 0)) Fail("an edit changed the number of keys");
  return 0;
}
